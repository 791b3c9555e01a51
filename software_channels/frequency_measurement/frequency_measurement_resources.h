// The static texts that the host reads from the plug-in: its name, its
// manifest and the two translation catalogues of its setting keys.
#pragma once

#include "zlrbase_plugin.h"

namespace frequency_measurement {

extern const zlr::PluginInterfaceId PLUGIN_INTERFACE_ID;
extern const char PLUGIN_NAME[];
extern const char PLUGIN_MANIFEST[];
extern const char TRANSLATIONS_EN[];
extern const char TRANSLATIONS_DE[];

} // namespace frequency_measurement
