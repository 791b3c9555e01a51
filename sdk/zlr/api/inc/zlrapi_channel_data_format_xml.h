// The value of PLUGIN_CHANNEL_DATA_FORMAT: one host channel whose data format
// changed, as a "Channel" element with "channel_id" and a "DataFormat" child.
#pragma once

#include "zlrapi_data_format.h"

#include <cstddef>
#include <cstdint>

namespace zlr {

struct ChannelDataFormatTelegram {
    std::uint64_t m_channel_id = ~std::uint64_t{0};
    DataFormat m_dataformat;

    // Needs the root "Channel", a "channel_id" and a readable "DataFormat".
    bool parse(const char* text, std::size_t length);

    bool operator==(const ChannelDataFormatTelegram&) const = default;
};

} // namespace zlr
