// The table a run writes: one row per output value, per input in index
// order, under the header "channel,index,time_s,frequency_hz" (with a first
// column "file" when the inputs come from several files). Numbers are the
// shortest text that reads back to the same double; a refused window is
// "nan". And a short summary per input for the terminal.
#pragma once

#include "sim_frequency_series.h"

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

namespace zelvar_sim {

// The shortest text that std::from_chars reads back to `value`; "nan" for
// any NaN.
std::string numberText(double value);

void writeFrequencyTable(std::ostream& out, const std::vector<FrequencySeries>& series);
// Writes to a file; throws FileError when it cannot be written whole.
void writeFrequencyTable(const std::string& path, const std::vector<FrequencySeries>& series);

struct FrequencySummary {
    std::string file;
    std::string channel;
    std::size_t values = 0;
    std::size_t nan_values = 0;
    double median_hz = 0.0; // of the values that are not NaN; NaN when none is
};

FrequencySummary summarise(const FrequencySeries& series);

// One line per input: "<file> <channel>: 40 values, 2 NaN, median 1000.5 Hz".
void printSummaries(std::ostream& out, const std::vector<FrequencySummary>& summaries);

} // namespace zelvar_sim
