// The host's list of channels (a "Channels" document): which channel ids
// exist, each with an optional status text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zlr {

struct ChannelStatusEntry {
    std::uint64_t m_channel_id = 0;
    std::string m_status;

    bool operator==(const ChannelStatusEntry&) const = default;
};

struct ChannelsTelegram {
    std::vector<ChannelStatusEntry> m_channels;

    // Refuses another root. A "Channel" without a usable "channel_id" stops
    // the read with false; the entries before it stay.
    bool parse(const char* text, std::size_t length);

    bool operator==(const ChannelsTelegram&) const = default;
};

} // namespace zlr
