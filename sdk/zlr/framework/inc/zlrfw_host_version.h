// The check of the host's name and version that a plug-in runs at start-up.
#pragma once

#include "zlrbase_host.h"

#include <string>

namespace zlr::framework {

// The version a plug-in of this kit needs at least.
inline constexpr const char* REQUIRED_HOST_VERSION = "5.6";

// True when "#PluginHost" names "Zelvar" and its "VersionString" is at least
// REQUIRED_HOST_VERSION. A version part without a number throws
// std::invalid_argument, one that overflows std::out_of_range.
bool checkHostVersion(IfHost* host);

// Compares dotted versions part by part, each part read with automatic base,
// the shorter list padded with zeros: true when required <= actual.
bool isVersionAtLeast(const std::string& actual, const std::string& required);

} // namespace zlr::framework
