// "zelvar-sim run [INPUT ...]": the plug-in on a person's recordings (or on
// the built-in one), with the settings given as options, writing a CSV
// table, a summary per input and, if asked, a plot.
#pragma once

#include "plugin_loader.h"
#include "sim_run_jobs.h"

#include <CLI/CLI.hpp>

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace zelvar_sim {

struct RunCommandOptions {
    std::vector<std::string> inputs; // files; none: the built-in recording
    std::optional<double> window_length; // s
    std::optional<double> overlap;       // %
    std::optional<double> min_frequency; // Hz
    std::optional<double> max_frequency; // Hz
    std::vector<std::string> channels;   // names or 0-based indices; empty: all
    std::optional<double> sample_rate;   // Hz
    double block_duration = 0.01;        // s
    std::string output;                  // "-": standard output
    std::string plot;                    // ".png" or ".svg"
    std::string trace;                   // every message of the run, one a line
    std::string save_config;             // the channel's saved record after the run
    std::string load_config;             // a saved record to restore before the run
    unsigned jobs = processorCount();   // host sessions side by side
    // OpenMP threads a transform may use. One by default: the default
    // window's transform takes some 30 us, too short to be worth a team
    // whose threads meet at a barrier after every stage.
    unsigned threads = 1;
    bool quiet = false;
};

// Adds the subcommand; its --plugin writes to `plugin_path`.
CLI::App* addRunCommand(CLI::App& app, RunCommandOptions& options, std::string& plugin_path);

// Exit status: 0 done, 2 bad input (one line on `err`), 3 the plug-in
// refused the configuration (its status text on `err`).
int runRunCommand(PluginLibrary& library, const RunCommandOptions& options, std::ostream& out,
                  std::ostream& err);

} // namespace zelvar_sim
