// The plug-in's answers to the host's request to create a software channel
// and to its question whether a creation is possible.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zlr {

struct CreateSoftwareChannelResponseTelegram {
    std::string m_message;
    bool m_show_details = false;
    std::uint32_t m_details_channel = 0;
    std::vector<std::uint32_t> m_created_channels;

    std::string generate() const;

    bool operator==(const CreateSoftwareChannelResponseTelegram&) const = default;
};

struct QuerySoftwareChannelActionResponseTelegram {
    std::vector<std::uint64_t> m_channels;
    bool m_valid = false;

    std::string generate() const;

    bool operator==(const QuerySoftwareChannelActionResponseTelegram&) const = default;
};

} // namespace zlr
