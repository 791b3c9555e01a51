// The list of checks that `validate` runs, each with its name and the
// strictness from which on it runs (1: the entry points and messages alone,
// 2: a channel and its settings, 3: runs over data).
#pragma once

#include "sim_check_context.h"

#include <functional>
#include <string>
#include <vector>

namespace zelvar_sim::validate {

struct Check {
    std::string name;
    int strictness = 1;
    std::string summary;
    std::function<void(CheckContext&)> run;
    // Runs over the long run's data, and so gets a tenth of its length in
    // seconds beyond the time limit.
    bool long_running = false;
};

std::vector<Check> entryPointChecks();
std::vector<Check> messageChecks();
std::vector<Check> channelChecks();
std::vector<Check> dataChecks();

// All of them, in the order they run.
std::vector<Check> allChecks();

} // namespace zelvar_sim::validate
