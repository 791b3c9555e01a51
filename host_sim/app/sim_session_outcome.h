// What one host session of "zelvar-sim run" leaves for the command once it
// is over: its status, what it printed, its series and its saved settings.
// A session run in a child process hands it to the parent through a file.
#pragma once

#include "sim_frequency_series.h"

#include <string>
#include <vector>

namespace zelvar_sim {

struct SessionOutcome {
    int status = 0;    // 0 done, 2 bad input, 3 refused
    std::string error; // the one line for a status other than 0
    std::string printed;
    std::string title; // the plot's, with the settings in force
    std::string saved_configuration;
    std::vector<FrequencySeries> series;
};

// Both throw FileError when the file cannot be written or read whole.
void writeSessionOutcome(const std::string& path, const SessionOutcome& outcome);
SessionOutcome readSessionOutcome(const std::string& path);

} // namespace zelvar_sim
