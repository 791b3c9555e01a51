// The channel dialogue as the simulated host reads and writes it: the
// plug-in's UpdatePluginChannels (its whole tree of output channels), the
// same telegram as the host saves it and hands back to restore, and the
// ChannelIDMap of old to new channel ids in both directions.
#pragma once

#include "sim_config_telegrams.h"
#include "zlrapi_data_format.h"
#include "zlrapi_timebase.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace zelvar_sim {

inline constexpr std::uint32_t NO_PARENT = ~std::uint32_t{0};

// One output channel of a plug-in as the host knows it.
struct HostChannel {
    std::uint32_t local_id = 0;
    std::uint32_t parent = NO_PARENT;
    std::string default_name;
    std::string domain;
    bool deletable = false;
    bool valid = false;
    std::optional<zlr::DataFormat> data_format;
    zlr::Timebase timebase;
    // Known from the channel's own telegram, or from UpdateConfig since.
    std::vector<HostProperty> properties;
};

// Reads an UpdatePluginChannels. Refuses another root or version than
// "1.0", a child other than "Channel" or "ListTopology", a channel without a
// proper "local_id" or "valid", a local id named twice, an unknown attribute
// or element, a "DataFormat" whose texts the host does not know, a timebase
// without a frequency, a "Parent" without "local_id" and malformed
// properties. The tree's shape (parents) is the caller's to judge.
bool readUpdatePluginChannels(const std::string& text, std::vector<HostChannel>& channels,
                              std::string& why);

// The telegram the host saves for a configuration, channels in the given
// order, each with its properties and their constraints.
std::string writeUpdatePluginChannels(const std::vector<HostChannel>& channels);

// The host's reading of a ChannelIDMap: every child a "ChannelMappingPair"
// with decimal "first" and "second", each "first" once.
bool readChannelIdMap(const std::string& text, std::map<std::uint64_t, std::uint64_t>& map,
                      std::string& why);
std::string writeChannelIdMap(const std::map<std::uint64_t, std::uint64_t>& map);

// The host's reading of a channel's "DataFormat" element: "sample_occurrence"
// and "sample_format" required, all texts known, "sample_dimension" decimal.
bool readHostDataFormat(pugi::xml_node element, zlr::DataFormat& format, std::string& why);

// A readable line of a data format and of a timebase.
std::string describeDataFormat(const zlr::DataFormat& format);
std::string describeTimebase(const zlr::Timebase& timebase);

} // namespace zelvar_sim
