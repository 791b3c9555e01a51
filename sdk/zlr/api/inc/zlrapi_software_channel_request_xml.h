// The host's requests about a software channel: the question whether the
// selected input channels allow one, and the request to create one.
#pragma once

#include "zlrapi_data_format.h"
#include "zlrapi_property.h"

#include <cstdint>
#include <string>
#include <vector>

namespace zlr {

// One input channel the user selected, with its data format.
struct InputChannelFormat {
    std::uint32_t m_channel_id = 0;
    DataFormat m_dataformat;

    bool operator==(const InputChannelFormat&) const = default;
};

struct QuerySoftwareChannelActionTelegram {
    std::vector<InputChannelFormat> m_input_channels;

    // Takes a zero-terminated text. Channels without a readable data format
    // are left out without a failure.
    bool parse(const char* text);

    bool operator==(const QuerySoftwareChannelActionTelegram&) const = default;
};

struct CreateSoftwareChannelTelegram {
    std::string m_service_name;
    std::vector<InputChannelFormat> m_input_channels;
    // The settings the user chose in the host's dialogue.
    std::vector<Property> m_properties;

    // Takes a zero-terminated text. Properties and input channels that do
    // not read are left out without a failure; none at all is legal.
    bool parse(const char* text);

    bool operator==(const CreateSoftwareChannelTelegram&) const = default;
};

namespace detail {
// Reads the "Channels" child of a request's root into `inputs`: the ids of
// that list, each with the "DataFormat" of its "Channel" element.
void readInputChannels(pugi::xml_node root, std::vector<InputChannelFormat>& inputs);
} // namespace detail

} // namespace zlr
