// `zelvar-sim validate PLUGIN`: the conformance checks of a plug-in of this
// host's contract, each in a child process, one line per check and a
// summary; the exit status is 0 only when no check failed.
#pragma once

#include "sim_check_context.h"

#include <CLI/CLI.hpp>

#include <cstdint>
#include <iosfwd>
#include <string>

namespace zelvar_sim::validate {

struct ValidateRequest {
    std::string plugin_path;
    std::uint64_t seed = 0;
    bool seed_given = false;
    unsigned repeat = 1;
    std::string only;
    int strictness = 3;
    double time_limit_seconds = 60.0;
    CheckOptions options;
};

// Runs the checks and prints their lines to `out`; answers the exit status.
int runValidate(std::ostream& out, const ValidateRequest& request);

} // namespace zelvar_sim::validate

// Registers the `validate` subcommand, whose callback runs the checks and
// ends the program with their exit status.
void addValidateCommand(CLI::App& app);
