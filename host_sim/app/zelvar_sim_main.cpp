// zelvar-sim: loads a plug-in the way Zelvar does and plays the host's side.
// Without a command it runs a "Frequency Measurement" channel over its
// built-in recording and prints the frequencies; "run" does so over files;
// "info" shows the start-up dialogue alone.
#include "plugin_loader.h"
#include "sim_demo_recording.h"
#include "sim_frequency_run.h"
#include "sim_info_command.h"
#include "sim_log_sink.h"
#include "sim_run_command.h"
#include "sim_run_printing.h"
#include "sim_validate_command.h"
#include "zlruni_logger.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <optional>
#include <stdexcept>
#include <string>

int main(int argc, char** argv)
{
    CLI::App app{"zelvar-sim: runs a Zelvar plug-in in a simulated host. Without a subcommand it runs "
                 "a \"Frequency Measurement\" channel over the built-in recording and prints the "
                 "frequencies; \"run\" does so over files."};
    std::string plugin_path = ZELVAR_SIM_DEFAULT_PLUGIN;
    unsigned log_level = zlr::UniLogSeverityLevel::Failure;
    app.add_option("--plugin", plugin_path, "the .plugin file to load")
        ->type_name("PATH")
        ->capture_default_str();
    app.add_option("--log-level", log_level,
                   "show the plug-in's log records from this severity on (1 notes, 5 failures, "
                   "6 errors)")
        ->type_name("LEVEL")
        ->capture_default_str();

    std::optional<std::string> window_length;
    std::optional<std::string> overlap;
    std::optional<std::string> min_frequency;
    std::optional<std::string> max_frequency;
    zelvar_sim::RunOptions run;
    bool stream = false;
    app.add_option("--window", window_length,
                   "window duration in s, 0.01 to 1 (default: the plug-in's 0.2 s)")
        ->type_name("S");
    app.add_option("--overlap", overlap, "window overlap in %, 0 to 90 (default: the plug-in's 50 %)")
        ->type_name("PERCENT");
    app.add_option("--min-frequency", min_frequency,
                   "lowest frequency published, in Hz (default: 5 / window length)")
        ->type_name("HZ");
    app.add_option("--max-frequency", max_frequency,
                   "highest frequency searched and published, in Hz (default: half the sample rate)")
        ->type_name("HZ");
    app.add_option("--block-duration", run.block_duration,
                   "seconds of data per block the host hands out; 0 takes the stream's own")
        ->type_name("S")
        ->capture_default_str();
    app.add_option("--process-interval", run.process_interval,
                   "host time between two process steps, in seconds")
        ->type_name("S")
        ->capture_default_str();
    app.add_flag("--stream", stream,
                 "let the plug-in pull its stream instead of giving each process step its time "
                 "span; a stream carries no gaps, so their samples are simply missing (default: "
                 "time spans)");

    zelvar_sim::InfoRequest info;
    CLI::App* info_command =
        app.add_subcommand("info", "only load, initialise and finish the plug-in, showing its messages");
    info_command->add_option("--host-name", info.host_name, "the name the host gives itself")
        ->type_name("NAME")
        ->capture_default_str();
    info_command->add_option("--host-version", info.host_version, "the version the host reports")
        ->type_name("VERSION")
        ->capture_default_str();
    info_command->add_flag("--manifest", info.show_manifest, "print the plug-in's whole manifest");
    zelvar_sim::RunCommandOptions run_files;
    CLI::App* run_command = zelvar_sim::addRunCommand(app, run_files, plugin_path);
    addValidateCommand(app);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) {
            return app.exit(error); // the help that was asked for
        }
        // A mistake on the command line is bad input like any other: one
        // line, status 2.
        std::cerr << "zelvar-sim: " << error.what() << " (see --help)\n";
        return 2;
    }

    zelvar_sim::LogSink log_sink(std::cerr, log_level);
    try {
        zelvar_sim::PluginLibrary library(plugin_path);
        if (info_command->parsed()) {
            return zelvar_sim::runInfo(std::cout, library, info);
        }
        if (run_command->parsed()) {
            return zelvar_sim::runRunCommand(library, run_files, std::cout, std::cerr);
        }
        zelvar_sim::FrequencyRunRequest request;
        request.inputs = zelvar_sim::demoInputs();
        request.run = run;
        request.run.mode =
            stream ? zelvar_sim::ProcessMode::stream : zelvar_sim::ProcessMode::time_stamped;
        const std::pair<const char*, const std::optional<std::string>&> edits[] = {
            {"FREQUENCY_MEASUREMENT/WindowLength", window_length},
            {"FREQUENCY_MEASUREMENT/WindowOverlap", overlap},
            {"FREQUENCY_MEASUREMENT/MinFrequency", min_frequency},
            {"FREQUENCY_MEASUREMENT/MaxFrequency", max_frequency},
        };
        for (const auto& [key, text] : edits) {
            if (text) {
                request.edits.push_back({key, *text});
            }
        }
        std::cout << "plug-in: " << library.path() << " (\"" << library.manifestInfo().display_name
                  << "\" " << library.manifestInfo().version << ")\n";
        const zelvar_sim::FrequencyRunResult result =
            zelvar_sim::runFrequencyMeasurement(library, request);
        zelvar_sim::printFrequencyRun(std::cout, request, result);
        return result.faults.empty() && result.values_left == 0 ? 0 : 3;
    } catch (const zelvar_sim::LoadError& error) {
        std::cerr << "zelvar-sim: " << error.what() << "\n";
        return 2;
    } catch (const std::exception& error) {
        std::cerr << "zelvar-sim: " << error.what() << "\n";
        return 1;
    }
}
