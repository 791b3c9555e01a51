// A small plug-in of the host's contract that does nothing but start and
// finish, with one fault chosen at build time, so that the validator's
// matching check can be seen to fail while the others pass.
#include "zlrbase_messages.h"
#include "zlrbase_plugin.h"
#include "zlrbase_values.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

#define ZV_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

const zlr::PluginInterfaceId INTERFACE_ID = {
    {0x7A, 0x51, 0xC8, 0x2E, 0x90, 0x3D, 0x46, 0x1B, 0x8E, 0x27, 0xD4, 0x6F, 0x03, 0xB9, 0x5C, 0xA1}};

const char PLUGIN_NAME[] = "BROKEN_EXAMPLE";
const char MANIFEST[] = "<?xml version=\"1.0\"?>\n"
                        "<ZelvarPlugin name=\"BROKEN_EXAMPLE\" version=\"1.0\" "
                        "uuid=\"00000000-0000-0000-0000-000000000001\">\n"
                        "  <Info name=\"Broken example\">\n"
                        "    <Vendor name=\"TEST\"/>\n"
                        "    <Description>a plug-in with one fault</Description>\n"
                        "  </Info>\n"
                        "  <Host minimum_version=\"5.6\"/>\n"
                        "</ZelvarPlugin>\n";

// Copies a string value of the host's tree; false when it has none.
bool hostText(zlr::IfHost* host, const char* key, char* out, std::size_t size)
{
    zlr::IfValue* value = host->queryValue("#PluginHost", key, 0, 0);
    if (!value) {
        return false;
    }
    const bool is_text = value->getType() == zlr::IfStringValue::TYPE_CODE;
    if (is_text) {
        std::strncpy(out, static_cast<zlr::IfStringValue*>(value)->getData(), size - 1);
        out[size - 1] = '\0';
    }
    value->release();
    return is_text;
}

// Major and minor of "a.b..." at least 5.6.
bool newEnough(const char* version)
{
    char* rest = nullptr;
    const long major = std::strtol(version, &rest, 10);
    const long minor = *rest == '.' ? std::strtol(rest + 1, nullptr, 10) : 0;
    return major > 5 || (major == 5 && minor >= 6);
}

class BrokenPlugin final : public zlr::IfPlugin {
public:
    void setPluginHost(zlr::IfHost* host) override { m_host = host; }

    std::uint64_t pluginMessage(std::uint64_t id, std::uint64_t, zlr::IfValue*,
                                [[maybe_unused]] zlr::IfValue** result) override
    {
        if (id == zlr::PLUGIN_INIT) {
            std::string text;
            return init(text);
        }
        if (id == zlr::PLUGIN_FINISH) {
            return deinit() ? zlr::RESULT_OK : zlr::RESULT_FAILED;
        }
#if defined(BROKEN_CRASH)
        if (id == zlr::PLUGIN_CONFIG_CLEAR) {
            volatile int* nowhere = nullptr;
            *nowhere = 1;
        }
#elif defined(BROKEN_LEAK)
        if (id == zlr::PLUGIN_SOFTWARE_CHANNEL_HAS_INSTANCES) {
            m_host->createValue(zlr::IfBooleanValue::TYPE_CODE); // never released
        }
#elif defined(BROKEN_MALFORMED_XML)
        if (id == zlr::PLUGIN_SOFTWARE_CHANNEL_QUERY_ACTION && result) {
            auto* answer = static_cast<zlr::IfXmlValue*>(m_host->createValue(zlr::IfXmlValue::TYPE_CODE));
            answer->set("<QuerySoftwareChannelActionResponse valid=\"true\"><Channels>");
            *result = answer;
            return zlr::RESULT_OK;
        }
#elif defined(BROKEN_HANG)
        if (id == zlr::PLUGIN_EVENT) {
            for (;;) {
                ::pause();
            }
        }
#endif
        return zlr::RESULT_NOT_HANDLED;
    }

    bool handleMessage(std::uint64_t, std::uint64_t, zlr::IfValue*, zlr::IfValue**,
                       std::uint64_t&) override
    {
        return false;
    }

    std::uint64_t init(std::string&) override
    {
        char name[64];
        char version[64];
        if (!m_host || !hostText(m_host, "Name", name, sizeof name) ||
            !hostText(m_host, "VersionString", version, sizeof version) ||
            std::strcmp(name, "Zelvar") != 0 || !newEnough(version)) {
            return zlr::RESULT_HOST_VERSION_REFUSED;
        }
        return zlr::RESULT_OK;
    }

    bool deinit() override { return true; }

private:
    zlr::IfHost* m_host = nullptr;
};

} // namespace

ZV_EXPORT std::intptr_t zvCreatePlugin(const zlr::PluginInterfaceId* id, zlr::IfPlugin** out)
{
    if (!zlr::sameInterfaceId(*id, INTERFACE_ID)) {
        return 0;
    }
    if (out) {
        *out = new BrokenPlugin;
    }
    return 1;
}

ZV_EXPORT std::intptr_t zvDeletePlugin(const zlr::PluginInterfaceId* id, zlr::IfPlugin* plugin)
{
    if (!zlr::sameInterfaceId(*id, INTERFACE_ID)) {
        return 0;
    }
    delete plugin;
    return 1;
}

ZV_EXPORT const char* zvGetPluginManifest()
{
    return MANIFEST;
}

ZV_EXPORT const char* zvGetPluginName()
{
    return PLUGIN_NAME;
}

#if defined(BROKEN_EXTRA_EXPORT)
ZV_EXPORT int zvPluginHelper()
{
    return 7;
}
#endif
