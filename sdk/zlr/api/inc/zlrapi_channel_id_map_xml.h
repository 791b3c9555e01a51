// The ChannelIDMap telegram: old channel ids to new ones, after a restore or
// when the host renumbers channels.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

namespace zlr {

// The plug-in's own ids are 32-bit; the pairs go out in key order.
std::string writeChannelIDMap(const std::map<std::uint32_t, std::uint32_t>& map);

struct ChannelIDMapTelegram {
    std::map<std::uint64_t, std::uint64_t> m_map;

    // A repeated "first" overwrites the earlier pair; a missing number is 0.
    bool parse(const char* text, std::size_t length);

    bool operator==(const ChannelIDMapTelegram&) const = default;
};

} // namespace zlr
