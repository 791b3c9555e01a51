// The four functions that the host finds in the library, and nothing else.
#include "frequency_measurement_plugin.h"
#include "frequency_measurement_resources.h"
#include "frequency_runtime_pin.h"

#include <cstdint>

#define ZV_EXPORT extern "C" __attribute__((visibility("default")))

using frequency_measurement::PLUGIN_INTERFACE_ID;

// Answers true without making anything when `out` is null: that is how the
// host probes whether it speaks this contract.
ZV_EXPORT std::intptr_t zvCreatePlugin(const zlr::PluginInterfaceId* id, zlr::IfPlugin** out)
{
    if (!zlr::sameInterfaceId(*id, PLUGIN_INTERFACE_ID)) {
        return 0;
    }
    if (out == nullptr) {
        return 1;
    }
    pinOpenMpRuntime();
    *out = new FrequencyMeasurementPlugin();
    return 1;
}

ZV_EXPORT std::intptr_t zvDeletePlugin(const zlr::PluginInterfaceId* id, zlr::IfPlugin* plugin)
{
    if (!zlr::sameInterfaceId(*id, PLUGIN_INTERFACE_ID)) {
        return 0;
    }
    delete plugin;
    return 1;
}

ZV_EXPORT const char* zvGetPluginManifest()
{
    return frequency_measurement::PLUGIN_MANIFEST;
}

ZV_EXPORT const char* zvGetPluginName()
{
    return frequency_measurement::PLUGIN_NAME;
}
