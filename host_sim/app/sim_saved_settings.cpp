#include "sim_saved_settings.h"

#include "sim_channel_tree_telegrams.h"
#include "sim_file_error.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace zelvar_sim {
namespace {

const char* const INPUTS_KEY = "FREQUENCY_MEASUREMENT/InputChannels";

} // namespace

SavedSettings savedSettingsOf(const std::string& where, const std::string& record)
{
    std::vector<HostChannel> channels;
    std::string why;
    if (!readUpdatePluginChannels(record, channels, why)) {
        throw FileError(where + ": not a saved record of a channel (" + why + ")");
    }
    SavedSettings settings;
    settings.record = record;
    std::size_t roots = 0;
    for (const HostChannel& channel : channels) {
        if (channel.parent != NO_PARENT) {
            continue;
        }
        const auto inputs = std::find_if(
            channel.properties.begin(), channel.properties.end(), [](const HostProperty& property) {
                return property.value.getName() == INPUTS_KEY &&
                       property.value.getType() == zlr::Property::CHANNEL_ID_LIST;
            });
        if (inputs == channel.properties.end()) {
            continue;
        }
        ++roots;
        settings.root = channel.local_id;
        settings.inputs = inputs->value.getChannelIDListValue();
        for (const HostProperty& property : channel.properties) {
            if (property.value.getType() == zlr::Property::SCALAR_VALUE) {
                settings.numbers.emplace_back(property.value.getName(),
                                              property.value.getScalarValue().m_val);
            }
        }
    }
    if (roots != 1) {
        throw FileError(where + ": not a saved record of one \"Frequency Measurement\" channel (it holds " +
                        std::to_string(roots) + ")");
    }
    return settings;
}

SavedSettings readSavedSettings(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    if (!file || !(text << file.rdbuf())) {
        throw FileError(path + ": cannot be read");
    }
    return savedSettingsOf(path, text.str());
}

void writeSavedSettings(const std::string& path, const std::string& record)
{
    const std::filesystem::path target(path);
    std::filesystem::path partial = target;
    partial.replace_filename("." + target.filename().string() + ".part" + std::to_string(getpid()));
    std::ofstream file(partial, std::ios::binary);
    file << record << '\n';
    file.close();
    std::error_code error;
    if (!file || (std::filesystem::rename(partial, target, error), error)) {
        std::filesystem::remove(partial, error);
        throw FileError(path + ": cannot be written");
    }
}

} // namespace zelvar_sim
