// Channel texts that the simulated host sends: the list of its channels and
// the data format of one channel.
#pragma once

#include "zlrapi_channels_xml.h"
#include "zlrapi_channel_config_changed_xml.h"
#include "zlrapi_data_format.h"

#include <cstdint>
#include <string>
#include <vector>

namespace zelvar_sim {

// A "Channels" document; an empty status is left out.
std::string writeChannels(const std::vector<zlr::ChannelStatusEntry>& channels);

// The value of PLUGIN_CHANNEL_DATA_FORMAT.
std::string writeChannelDataFormat(std::uint64_t channel_id, const zlr::DataFormat& format);

// The note that settings of host channels changed.
std::string writeChannelConfigChanged(const std::vector<zlr::ChangedChannelConfig>& channels);

// A channel's "DataFormat" value of the tree: the bare element, or wrapped in
// "ChannelDataFormat/Channel" as some hosts give it.
std::string writeDataFormatDocument(const zlr::DataFormat& format, bool wrapped);

} // namespace zelvar_sim
