// The settings of a channel kept in a file, so that a person can keep them
// per test rig: the host's saved record of the plug-in's channels (the
// UpdatePluginChannels that PLUGIN_CONFIG_RESTORE gets back).
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace zelvar_sim {

struct SavedSettings {
    std::string record;                // the telegram as the host saved it
    std::uint32_t root = 0;            // the saved channel's local id then
    std::vector<std::uint64_t> inputs; // its input channel ids then, in order
    // Its numeric settings by key, as saved.
    std::vector<std::pair<std::string, double>> numbers;
};

// Reads a file written by writeSavedSettings. Throws FileError when it cannot
// be read or is not a saved record with one "Frequency Measurement" channel.
SavedSettings readSavedSettings(const std::string& path);

// Takes a record as the host saved it; throws FileError when it does not read.
SavedSettings savedSettingsOf(const std::string& where, const std::string& record);

// Writes the record whole or not at all; throws FileError.
void writeSavedSettings(const std::string& path, const std::string& record);

} // namespace zelvar_sim
