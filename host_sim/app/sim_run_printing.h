// What a person wants to see of a frequency run: the inputs, the settings
// in force, the window, and a table of time and frequency per input.
#pragma once

#include "sim_frequency_run.h"

#include <iosfwd>

namespace zelvar_sim {

void printFrequencyRun(std::ostream& out, const FrequencyRunRequest& request,
                       const FrequencyRunResult& result);

} // namespace zelvar_sim
