// Checks of the four exports and the start-up dialogue, which need no
// channel: what the file offers the loader, the interface probe, the name
// and manifest, many objects made and deleted, and the host versions.
#include "plugin_loader.h"
#include "sim_elf_exports.h"
#include "sim_validate_checks.h"
#include "zlrbase_messages.h"

#include <algorithm>
#include <memory>
#include <set>

namespace zelvar_sim::validate {
namespace {

const std::set<std::string> ENTRY_POINTS = {"zvCreatePlugin", "zvDeletePlugin",
                                            "zvGetPluginManifest", "zvGetPluginName"};

void checkExports(CheckContext& context)
{
    std::string error;
    const auto symbols = readExportedSymbols(context.pluginPath(), error);
    CheckContext::require(symbols.has_value(), "cannot read the dynamic symbols: " + error);
    std::set<std::string> found;
    std::string extra;
    std::string unique;
    for (const DynamicSymbol& symbol : *symbols) {
        found.insert(symbol.name);
        if (!ENTRY_POINTS.count(symbol.name)) {
            extra += (extra.empty() ? "" : ", ") + symbol.name;
        }
        if (symbol.unique) {
            unique += (unique.empty() ? "" : ", ") + symbol.name;
        }
    }
    for (const std::string& name : ENTRY_POINTS) {
        CheckContext::require(found.count(name) == 1, "the entry point " + name + " is not exported");
    }
    CheckContext::require(extra.empty(), "exports more than the four entry points: " + extra);
    CheckContext::require(unique.empty(),
                          "carries STB_GNU_UNIQUE symbols, so it never leaves memory: " + unique);
}

zlr::PluginInterfaceId wrongId(CheckContext& context)
{
    zlr::PluginInterfaceId id = HOST_INTERFACE_ID;
    const std::size_t byte = context.random()() % sizeof id.bytes;
    id.bytes[byte] = static_cast<unsigned char>(id.bytes[byte] ^ (1u + context.random()() % 255u));
    return id;
}

void checkProbe(CheckContext& context)
{
    PluginLibrary library(context.pluginPath());
    context.trace("zvCreatePlugin with the right id and no place for the object");
    CheckContext::require(library.createFunction()(&HOST_INTERFACE_ID, nullptr) != 0,
                          "zvCreatePlugin refuses the probe with a null out pointer");
    const zlr::PluginInterfaceId wrong = wrongId(context);
    zlr::IfPlugin* plugin = nullptr;
    context.trace("zvCreatePlugin with a wrong interface id");
    CheckContext::require(library.createFunction()(&wrong, &plugin) == 0,
                          "zvCreatePlugin accepts a wrong interface id");
    CheckContext::require(plugin == nullptr, "zvCreatePlugin made an object for a wrong interface id");
    context.trace("zvDeletePlugin with a null object");
    CheckContext::require(library.deleteFunction()(&HOST_INTERFACE_ID, nullptr) != 0,
                          "zvDeletePlugin answers false for a null object");
    CheckContext::require(library.createFunction()(&HOST_INTERFACE_ID, &plugin) != 0 && plugin,
                          "zvCreatePlugin makes no object for the right id");
    context.trace("zvDeletePlugin with a wrong interface id");
    CheckContext::require(library.deleteFunction()(&wrong, plugin) == 0,
                          "zvDeletePlugin accepts a wrong interface id");
    CheckContext::require(library.deleteFunction()(&HOST_INTERFACE_ID, plugin) != 0,
                          "zvDeletePlugin refuses its own object");
}

void checkNameAndManifest(CheckContext& context)
{
    PluginLibrary library(context.pluginPath());
    const char* name = library.nameFunction()();
    const char* manifest = library.manifestFunction()();
    CheckContext::require(name && *name, "zvGetPluginName gives no name");
    CheckContext::require(manifest && *manifest, "zvGetPluginManifest gives no manifest");
    for (int call = 0; call < 3; ++call) {
        CheckContext::require(library.nameFunction()() == name,
                              "zvGetPluginName gives another pointer at a later call");
        CheckContext::require(library.manifestFunction()() == manifest,
                              "zvGetPluginManifest gives another pointer at a later call");
    }
    const std::string name_text = name;
    CheckContext::require(std::all_of(name_text.begin(), name_text.end(),
                                      [](char c) { return c > ' ' && c < 0x7F; }),
                          "the name \"" + name_text + "\" holds blanks or control characters");
    ManifestInfo info;
    CheckContext::require(parseManifest(manifest, info),
                          "the manifest is not a ZelvarPlugin document with a name and a minimum "
                          "host version");
    CheckContext::require(info.plugin_name == name_text,
                          "the manifest names \"" + info.plugin_name + "\", the export \"" +
                              name_text + "\"");
    CheckContext::require(!info.version.empty(), "the manifest gives no version");
}

// Each round makes several objects at once, each in a host of its own, and
// takes them down in another order than they came.
void checkCreateDelete(CheckContext& context)
{
    PluginLibrary library(context.pluginPath());
    constexpr int ROUNDS = 12;
    constexpr int AT_ONCE = 3;
    for (int round = 0; round < ROUNDS; ++round) {
        std::vector<std::unique_ptr<SimHost>> hosts;
        std::vector<std::unique_ptr<PluginSession>> sessions;
        for (int i = 0; i < AT_ONCE; ++i) {
            hosts.push_back(std::make_unique<SimHost>());
            hosts.back()->setIdentity("Zelvar", library.manifestInfo().minimum_host_version);
            context.trace("round " + std::to_string(round) + ": create and PLUGIN_INIT object " +
                          std::to_string(i));
            sessions.push_back(std::make_unique<PluginSession>(library, *hosts.back()));
            CheckContext::require(sessions.back()->initOutcome().code == zlr::RESULT_OK,
                                  "PLUGIN_INIT answers " +
                                      std::to_string(sessions.back()->initOutcome().code) +
                                      " in a host of the manifest's minimum version");
        }
        std::shuffle(sessions.begin(), sessions.end(), context.random());
        for (auto& session : sessions) {
            context.trace("round " + std::to_string(round) + ": PLUGIN_FINISH and delete");
            const std::uint64_t code = session->finish();
            CheckContext::require(code == zlr::RESULT_OK,
                                  "PLUGIN_FINISH answers " + std::to_string(code));
            session.reset();
        }
        for (const auto& host : hosts) {
            CheckContext::require(host->valuesOutsideTree() == 0,
                                  std::to_string(host->valuesOutsideTree()) +
                                      " host value objects still alive after delete");
        }
    }
}

// The minimum version and versions above it are taken; lower ones, another
// host name and a host that does not say who it is are refused.
std::vector<std::string> splitVersion(const std::string& version)
{
    std::vector<std::string> parts;
    std::size_t start = 0;
    for (;;) {
        const std::size_t dot = version.find('.', start);
        parts.push_back(version.substr(start, dot - start));
        if (dot == std::string::npos) {
            return parts;
        }
        start = dot + 1;
    }
}

struct HostIdentity {
    bool present = true;
    std::string name;
    std::string version;
    bool accepted = false;
};

std::vector<HostIdentity> hostIdentities(const std::string& minimum)
{
    std::vector<HostIdentity> identities = {
        {true, "Zelvar", minimum, true},
        {true, "Zelvar", minimum + ".0", true},
        {false, "", "", false},
        {true, "Zelvar ", minimum, false},
        {true, "Other", minimum, false},
    };
    const std::vector<std::string> parts = splitVersion(minimum);
    try {
        identities.push_back({true, "Zelvar", std::to_string(std::stol(parts[0]) + 1), true});
        const long last = std::stol(parts.back());
        std::string lower;
        for (std::size_t i = 0; i + 1 < parts.size(); ++i) {
            lower += parts[i] + ".";
        }
        if (last > 0) {
            identities.push_back({true, "Zelvar", lower + std::to_string(last - 1), false});
            identities.push_back({true, "Zelvar", lower + std::to_string(last - 1) + ".99", false});
        }
    } catch (const std::exception&) {
        // a version that holds no numbers is tried only as it stands
    }
    return identities;
}

void checkHostVersions(CheckContext& context)
{
    PluginLibrary library(context.pluginPath());
    const std::string minimum = library.manifestInfo().minimum_host_version;
    for (const HostIdentity& identity : hostIdentities(minimum)) {
        const std::string who = identity.present
                                    ? "host \"" + identity.name + "\" " + identity.version
                                    : "a host without name and version";
        context.trace("PLUGIN_INIT in " + who);
        SimHost host;
        if (identity.present) {
            host.setIdentity(identity.name, identity.version);
        }
        std::uint64_t code = 0;
        std::size_t registrations = 0;
        {
            PluginSession session(library, host, SessionOptions{.check_minimum_version = false});
            code = session.initOutcome().code;
            registrations = host.messagesWithId(zlr::HOST_REGISTER_SOFTWARE_CHANNEL).size();
            session.finish();
        }
        if (identity.accepted) {
            CheckContext::require(code == zlr::RESULT_OK,
                                  "PLUGIN_INIT answers " + std::to_string(code) + " in " + who);
        } else {
            CheckContext::require(code != zlr::RESULT_OK, "PLUGIN_INIT accepts " + who);
            CheckContext::require(registrations == 0, "a plug-in that refused " + who +
                                                          " still registered a software channel");
        }
        CheckContext::require(host.valuesOutsideTree() == 0,
                              std::to_string(host.valuesOutsideTree()) +
                                  " host value objects still alive after " + who);
    }
}

} // namespace

std::vector<Check> entryPointChecks()
{
    return {
        {"exports", 1, "the file exports the four entry points and nothing else, no unique symbol",
         checkExports},
        {"probe", 1, "the interface probe, a wrong interface id, a null object", checkProbe},
        {"name-and-manifest", 1, "name and manifest stable, well formed and agreeing",
         checkNameAndManifest},
        {"create-delete", 1, "objects made and deleted many times, several at once",
         checkCreateDelete},
        {"host-versions", 1, "PLUGIN_INIT takes the hosts it must and refuses the others",
         checkHostVersions},
    };
}

} // namespace zelvar_sim::validate
