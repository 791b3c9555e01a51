// zelvar-sim: loads a plug-in the way Zelvar does and plays the host's side.
#include "plugin_loader.h"
#include "sim_log_sink.h"
#include "sim_host.h"
#include "zlrbase_messages.h"
#include "zlruni_logger.h"

#include <CLI/CLI.hpp>
#include <omp.h>

#include <iostream>
#include <string>

namespace {

std::string resultText(std::uint64_t code)
{
    switch (code) {
    case zlr::RESULT_OK:
        return "0 (ok)";
    case zlr::RESULT_BAD_ARGUMENT:
        return "1 (bad argument)";
    case zlr::RESULT_FAILED:
        return "4 (failed)";
    case zlr::RESULT_HOST_VERSION_REFUSED:
        return "12 (host version refused)";
    case zlr::RESULT_EXCEPTION:
        return "13 (exception)";
    case zlr::RESULT_NOT_HANDLED:
        return "not handled";
    default:
        return std::to_string(code);
    }
}

// The first line of a telegram, enough to tell what it is.
std::string headline(const std::string& text, std::size_t width = 100)
{
    std::string line = text.substr(0, text.find('\n'));
    if (line.size() > width) {
        line = line.substr(0, width) + "...";
    }
    return line;
}

void printMessages(const zelvar_sim::SimHost& host)
{
    const auto messages = host.messages();
    std::cout << "messages from the plug-in: " << messages.size() << "\n";
    for (const auto& message : messages) {
        std::cout << "  " << zelvar_sim::messageName(message.id) << " key " << message.key;
        if (!message.text.empty()) {
            std::cout << ": " << message.text.size() << " bytes, " << headline(message.text);
        } else if (message.value_type == zlr::VALUE_TYPE_UINT64) {
            std::cout << ": " << message.number;
        }
        std::cout << "\n";
    }
}

} // namespace

int main(int argc, char** argv)
{
    CLI::App app{"zelvar-sim: runs a Zelvar plug-in in a simulated host"};
    std::string plugin_path = ZELVAR_SIM_DEFAULT_PLUGIN;
    std::string host_name = "Zelvar";
    std::string host_version = "5.6";
    bool show_manifest = false;
    unsigned log_level = zlr::UniLogSeverityLevel::Failure;
    app.add_option("--plugin", plugin_path, "the .plugin file to load")->capture_default_str();
    app.add_option("--host-name", host_name, "the name the host gives itself")
        ->capture_default_str();
    app.add_option("--host-version", host_version, "the version the host reports")
        ->capture_default_str();
    app.add_flag("--manifest", show_manifest, "print the plug-in's whole manifest");
    app.add_option("--log-level", log_level,
                   "show the plug-in's log records from this severity on (1 notes, 5 failures, "
                   "6 errors)")
        ->capture_default_str();
    CLI11_PARSE(app, argc, argv);

    zelvar_sim::LogSink log_sink(std::cerr, log_level);

    zelvar_sim::SimHost host;
    host.setIdentity(host_name, host_version);
    std::cout << "host: \"" << host_name << "\" version " << host_version << ", "
              << omp_get_max_threads() << " OpenMP threads\n";

    try {
        zelvar_sim::PluginLibrary library(plugin_path);
        const auto& info = library.manifestInfo();
        std::cout << "plug-in: " << library.path() << "\n"
                  << "name: " << library.name() << "\n"
                  << "manifest: \"" << info.display_name << "\" " << info.version << " by "
                  << info.vendor << ", uuid " << info.uuid << ", needs host "
                  << info.minimum_host_version << "\n"
                  << "description: " << info.description << "\n";
        if (show_manifest) {
            std::cout << library.manifest();
        }
        {
            zelvar_sim::PluginSession session(library, host);
            const auto& init = session.initOutcome();
            std::cout << "PLUGIN_INIT: " << resultText(init.code);
            if (init.has_error_object) {
                std::cout << ", error object with code " << init.error_code;
            }
            std::cout << "\n";
            printMessages(host);
            host.clearMessages();
            std::cout << "PLUGIN_FINISH: " << resultText(session.finish()) << "\n";
            printMessages(host);
        }
    } catch (const zelvar_sim::LoadError& error) {
        std::cerr << "zelvar-sim: " << error.what() << "\n";
        return 2;
    }
    std::cout << "values the plug-in still holds: " << host.valuesOutsideTree() << "\n";
    return 0;
}
