// Loads a .plugin file the way the host does: dlopen, the four exports, the
// interface probe, the manifest; then creates the plug-in object, sets the
// host on it and sends PLUGIN_INIT, and at the end PLUGIN_FINISH and delete.
#pragma once

#include "sim_host.h"
#include "zlrbase_plugin.h"

#include <cstdint>
#include <stdexcept>
#include <string>

namespace zelvar_sim {

// The id of the contract this host speaks.
extern const zlr::PluginInterfaceId HOST_INTERFACE_ID;

class LoadError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// What the manifest says of the plug-in.
struct ManifestInfo {
    std::string plugin_name;
    std::string version;
    std::string uuid;
    std::string display_name;
    std::string vendor;
    std::string description;
    std::string minimum_host_version;
};

// Reads a manifest text; false when it is not a ZelvarPlugin document with a
// name and a minimum host version.
bool parseManifest(const std::string& text, ManifestInfo& info);

using CreatePluginFunction = std::intptr_t (*)(const zlr::PluginInterfaceId*, zlr::IfPlugin**);
using DeletePluginFunction = std::intptr_t (*)(const zlr::PluginInterfaceId*, zlr::IfPlugin*);
using TextFunction = const char* (*)();

// One opened plug-in library. Closing it (destruction) unloads the module.
class PluginLibrary {
public:
    // Throws LoadError with a readable reason when the file is not a plug-in
    // of this host.
    explicit PluginLibrary(const std::string& path);
    PluginLibrary(const PluginLibrary&) = delete;
    PluginLibrary& operator=(const PluginLibrary&) = delete;
    ~PluginLibrary();

    const std::string& path() const { return m_path; }
    const std::string& name() const { return m_name; }
    const std::string& manifest() const { return m_manifest; }
    const ManifestInfo& manifestInfo() const { return m_manifest_info; }

    // The raw exports, for callers that test the entry points themselves.
    CreatePluginFunction createFunction() const { return m_create; }
    DeletePluginFunction deleteFunction() const { return m_delete; }
    TextFunction nameFunction() const { return m_get_name; }
    TextFunction manifestFunction() const { return m_get_manifest; }

    // The loader's handle of the module, for looking into it (dlinfo).
    void* handle() const { return m_handle; }

private:
    std::string m_path;
    void* m_handle = nullptr;
    CreatePluginFunction m_create = nullptr;
    DeletePluginFunction m_delete = nullptr;
    TextFunction m_get_name = nullptr;
    TextFunction m_get_manifest = nullptr;
    std::string m_name;
    std::string m_manifest;
    ManifestInfo m_manifest_info;
};

// What PLUGIN_INIT gave back.
struct InitOutcome {
    std::uint64_t code = 0;
    bool has_error_object = false;
    std::uint64_t error_code = 0;
    std::string error_text;
};

struct SessionOptions {
    // The host refuses a plug-in whose manifest asks for a newer host before
    // it makes anything; tests of the plug-in's own check turn this off.
    bool check_minimum_version = true;
};

// One plug-in object, from creation to deletion, driven as the host drives it.
class PluginSession {
public:
    // Creates the object, sets the host and sends PLUGIN_INIT. Refuses (with
    // LoadError) a plug-in whose manifest asks for a newer host.
    PluginSession(PluginLibrary& library, SimHost& host, SessionOptions options = {});
    PluginSession(const PluginSession&) = delete;
    PluginSession& operator=(const PluginSession&) = delete;
    // Finishes and deletes the object if that has not happened yet.
    ~PluginSession();

    const InitOutcome& initOutcome() const { return m_init; }
    zlr::IfPlugin* plugin() const { return m_plugin; }

    // Sends one message; `result`, when given, receives the plug-in's result
    // object with one reference that the caller must release.
    std::uint64_t send(std::uint32_t id, std::uint64_t key = 0, zlr::IfValue* value = nullptr,
                       zlr::IfValue** result = nullptr);

    // PLUGIN_FINISH and zvDeletePlugin; answers the finish code.
    std::uint64_t finish();

private:
    // Every message of the host goes out here, so that the host's observer
    // hears it.
    std::uint64_t deliver(std::uint32_t id, std::uint64_t key, zlr::IfValue* value,
                          zlr::IfValue** result);

    PluginLibrary& m_library;
    SimHost& m_host;
    zlr::IfPlugin* m_plugin = nullptr;
    InitOutcome m_init;
};

} // namespace zelvar_sim
