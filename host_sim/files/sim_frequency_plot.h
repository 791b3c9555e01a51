// The plot of a run: frequency over time per input, drawn by gnuplot into a
// PNG (pngcairo) or an SVG, as the file's extension says. A NaN breaks the
// line; the title carries the settings the run used.
#pragma once

#include "sim_frequency_series.h"

#include <string>
#include <vector>

namespace zelvar_sim {

struct PlotRequest {
    std::string path;  // ends in ".png" or ".svg"
    std::string title; // the settings, as a person reads them
    std::vector<FrequencySeries> series;
    std::string gnuplot = "gnuplot"; // the program, looked up on PATH
};

// The gnuplot script that draws the request, data included. Throws
// FileError for a path that is neither PNG nor SVG.
std::string plotScript(const PlotRequest& request);

// Runs gnuplot on the script. Throws FileError when gnuplot is not there
// (with what to install) or does not draw the file.
void plotFrequencies(const PlotRequest& request);

} // namespace zelvar_sim
