#include "plugin_loader.h"

#include "sim_values.h"
#include "zlrapi_utils.h"
#include "zlrbase_messages.h"
#include "zlrfw_host_version.h"

#include <dlfcn.h>
#include <pugixml.hpp>

namespace zelvar_sim {

const zlr::PluginInterfaceId HOST_INTERFACE_ID = {
    {0x7A, 0x51, 0xC8, 0x2E, 0x90, 0x3D, 0x46, 0x1B, 0x8E, 0x27, 0xD4, 0x6F, 0x03, 0xB9, 0x5C, 0xA1}};

bool parseManifest(const std::string& text, ManifestInfo& info)
{
    pugi::xml_document document;
    if (!document.load_string(text.c_str())) {
        return false;
    }
    const pugi::xml_node root = document.child("ZelvarPlugin");
    if (!root || !root.attribute("name")) {
        return false;
    }
    const pugi::xml_node host = root.child("Host");
    if (!host || !host.attribute("minimum_version")) {
        return false;
    }
    info.plugin_name = root.attribute("name").value();
    info.version = root.attribute("version").value();
    info.uuid = root.attribute("uuid").value();
    const pugi::xml_node details = root.child("Info");
    info.display_name = details.attribute("name").value();
    info.vendor = details.child("Vendor").attribute("name").value();
    info.description = details.child_value("Description");
    info.minimum_host_version = host.attribute("minimum_version").value();
    return true;
}

namespace {

template <typename Function>
Function resolve(void* handle, const char* symbol, const std::string& path)
{
    void* address = dlsym(handle, symbol);
    if (!address) {
        throw LoadError(path + ": no export " + symbol);
    }
    return reinterpret_cast<Function>(address);
}

} // namespace

PluginLibrary::PluginLibrary(const std::string& path) : m_path(path)
{
    m_handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!m_handle) {
        const char* reason = dlerror();
        throw LoadError(path + ": cannot load: " + (reason ? reason : "unknown reason"));
    }
    try {
        m_create = resolve<CreatePluginFunction>(m_handle, "zvCreatePlugin", path);
        m_delete = resolve<DeletePluginFunction>(m_handle, "zvDeletePlugin", path);
        m_get_manifest = resolve<TextFunction>(m_handle, "zvGetPluginManifest", path);
        m_get_name = resolve<TextFunction>(m_handle, "zvGetPluginName", path);

        if (!m_create(&HOST_INTERFACE_ID, nullptr)) {
            throw LoadError(path + ": speaks another version of the plug-in interface");
        }
        const char* name = m_get_name();
        const char* manifest = m_get_manifest();
        m_name = name ? name : "";
        m_manifest = manifest ? manifest : "";
        if (!parseManifest(m_manifest, m_manifest_info)) {
            throw LoadError(path + ": the manifest is not readable");
        }
        if (m_manifest_info.plugin_name != m_name) {
            throw LoadError(path + ": the manifest names \"" + m_manifest_info.plugin_name +
                            "\" but the plug-in calls itself \"" + m_name + "\"");
        }
    } catch (...) {
        dlclose(m_handle);
        throw;
    }
}

PluginLibrary::~PluginLibrary()
{
    dlclose(m_handle);
}

namespace {

// The host's own look at the manifest: a plug-in that asks for a newer host
// is never created.
void refuseOlderHost(const PluginLibrary& library, SimHost& host)
{
    const auto version = zlr::queryStringValue(&host, zlr::tree::PLUGIN_HOST,
                                               zlr::tree::VERSION_STRING);
    const std::string host_version = version && version->getData() ? version->getData() : "";
    bool new_enough = false;
    try {
        new_enough = zlr::framework::isVersionAtLeast(
            host_version, library.manifestInfo().minimum_host_version);
    } catch (const std::exception&) {
        new_enough = false;
    }
    if (!new_enough) {
        throw LoadError(library.path() + ": needs host version " +
                        library.manifestInfo().minimum_host_version + ", this host is \"" +
                        host_version + "\"");
    }
}

} // namespace

PluginSession::PluginSession(PluginLibrary& library, SimHost& host, SessionOptions options)
    : m_library(library), m_host(host)
{
    if (options.check_minimum_version) {
        refuseOlderHost(library, host);
    }
    if (!library.createFunction()(&HOST_INTERFACE_ID, &m_plugin) || !m_plugin) {
        throw LoadError(library.path() + ": zvCreatePlugin made no plug-in");
    }
    m_plugin->setPluginHost(&host);

    zlr::IfValue* result = nullptr;
    m_init.code = deliver(zlr::PLUGIN_INIT, 0, nullptr, &result);
    if (result) {
        if (result->getType() == zlr::VALUE_TYPE_ERROR) {
            auto* error = static_cast<ErrorValue*>(result);
            m_init.has_error_object = true;
            m_init.error_code = error->code();
            m_init.error_text = error->getText();
        }
        result->release();
    }
}

PluginSession::~PluginSession()
{
    if (m_plugin) {
        finish();
    }
}

std::uint64_t PluginSession::send(std::uint32_t id, std::uint64_t key, zlr::IfValue* value,
                                  zlr::IfValue** result)
{
    return deliver(id, key, value, result);
}

std::uint64_t PluginSession::deliver(std::uint32_t id, std::uint64_t key, zlr::IfValue* value,
                                     zlr::IfValue** result)
{
    if (!m_host.observed()) {
        return m_plugin->pluginMessage(id, key, value, result);
    }
    MessageRecord record;
    record.id = id;
    record.key = key;
    record.wants_result = result != nullptr;
    describeValue(value, record);
    const SimHost::CallStamp stamp = m_host.beginCall();
    record.answer = m_plugin->pluginMessage(id, key, value, result);
    m_host.endCall(stamp, MessageDirection::host_to_plugin, record, result ? *result : nullptr);
    return record.answer;
}

std::uint64_t PluginSession::finish()
{
    if (!m_plugin) {
        return zlr::RESULT_OK;
    }
    const std::uint64_t code = deliver(zlr::PLUGIN_FINISH, 0, nullptr, nullptr);
    m_library.deleteFunction()(&HOST_INTERFACE_ID, m_plugin);
    m_plugin = nullptr;
    return code;
}

} // namespace zelvar_sim
