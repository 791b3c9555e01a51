#include "sim_info_command.h"

#include "sim_host.h"
#include "zlrbase_messages.h"

#include <omp.h>

#include <ostream>

namespace zelvar_sim {
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

void printMessages(std::ostream& out, const SimHost& host)
{
    const auto messages = host.messages();
    out << "messages from the plug-in: " << messages.size() << "\n";
    for (const auto& message : messages) {
        out << "  " << messageName(message.id) << " key " << message.key;
        if (!message.text.empty()) {
            out << ": " << message.text.size() << " bytes, " << headline(message.text);
        } else if (message.value_type == zlr::VALUE_TYPE_UINT64) {
            out << ": " << message.number;
        }
        out << "\n";
    }
}

} // namespace

int runInfo(std::ostream& out, PluginLibrary& library, const InfoRequest& request)
{
    SimHost host;
    host.setIdentity(request.host_name, request.host_version);
    out << "host: \"" << request.host_name << "\" version " << request.host_version << ", "
        << omp_get_max_threads() << " OpenMP threads\n";
    const auto& info = library.manifestInfo();
    out << "plug-in: " << library.path() << "\n"
        << "name: " << library.name() << "\n"
        << "manifest: \"" << info.display_name << "\" " << info.version << " by " << info.vendor
        << ", uuid " << info.uuid << ", needs host " << info.minimum_host_version << "\n"
        << "description: " << info.description << "\n";
    if (request.show_manifest) {
        out << library.manifest();
    }
    {
        PluginSession session(library, host);
        const auto& init = session.initOutcome();
        out << "PLUGIN_INIT: " << resultText(init.code);
        if (init.has_error_object) {
            out << ", error object with code " << init.error_code;
        }
        out << "\n";
        printMessages(out, host);
        host.clearMessages();
        out << "PLUGIN_FINISH: " << resultText(session.finish()) << "\n";
        printMessages(out, host);
    }
    out << "values the plug-in still holds: " << host.valuesOutsideTree() << "\n";
    return 0;
}

} // namespace zelvar_sim
