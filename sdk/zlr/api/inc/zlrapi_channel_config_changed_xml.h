// The host's note that settings of some of its channels changed: for each
// channel its id and the properties it now has.
#pragma once

#include "zlrapi_property.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zlr {

struct ChangedChannelConfig {
    std::uint64_t m_channel_id = 0;
    std::vector<Property> m_properties;

    bool operator==(const ChangedChannelConfig&) const = default;
};

struct ChannelConfigChangedTelegram {
    std::vector<ChangedChannelConfig> m_channels;

    // Every child of the root must be a "Channel" with an "id". Reading a
    // channel's properties stops at the first one that does not read.
    bool parse(const char* text, std::size_t length);

    bool operator==(const ChannelConfigChangedTelegram&) const = default;
};

} // namespace zlr
