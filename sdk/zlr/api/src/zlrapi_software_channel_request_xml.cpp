#include "zlrapi_software_channel_request_xml.h"

#include "zlrapi_channels_xml.h"
#include "xpugixml.h"

#include <exception>
#include <string_view>

namespace zlr {
namespace detail {

void readInputChannels(pugi::xml_node root, std::vector<InputChannelFormat>& inputs)
{
    const pugi::xml_node channels = xpugi::find_child(root, "Channels");
    if (!channels) {
        return;
    }
    // The list is read as a Channels document of its own; a bad entry ends
    // it, and what was read before stays in use.
    const std::string list_text = xpugi::to_xml(channels, false);
    ChannelsTelegram list;
    list.parse(list_text.data(), list_text.size());
    for (const ChannelStatusEntry& entry : list.m_channels) {
        const std::string query =
            "Channel[@channel_id=\"" + std::to_string(entry.m_channel_id) + "\"]";
        const pugi::xml_node channel = channels.select_node(query.c_str()).node();
        if (!channel) {
            continue;
        }
        InputChannelFormat input;
        input.m_channel_id = static_cast<std::uint32_t>(entry.m_channel_id);
        if (readDataFormat(channel.child("DataFormat"), input.m_dataformat)) {
            inputs.push_back(input);
        }
    }
}

} // namespace detail

bool CreateSoftwareChannelTelegram::parse(const char* text)
{
    m_service_name.clear();
    m_input_channels.clear();
    m_properties.clear();
    pugi::xml_document document;
    if (!xpugi::parse(document, text)) {
        return false;
    }
    const pugi::xml_node root = document.document_element();
    if (std::string_view(root.name()) != "CreateSoftwareChannel") {
        return false;
    }
    const xpugi::protocol_version version = xpugi::read_protocol_version(root);
    if (!(version == xpugi::protocol_version{1, 0})) {
        return false;
    }
    m_service_name = xpugi::trimmed_text(xpugi::find_child(root, "ServiceName"));
    const double context = version.major + version.minor / 10.0;
    for (const pugi::xpath_node& selected : root.select_nodes("Property")) {
        Property property;
        try {
            if (property.readFrom(selected.node(), context)) {
                m_properties.push_back(property);
            }
        } catch (const std::exception&) {
            // A number that does not convert spoils this property only.
        }
    }
    detail::readInputChannels(root, m_input_channels);
    return true;
}

bool QuerySoftwareChannelActionTelegram::parse(const char* text)
{
    m_input_channels.clear();
    pugi::xml_document document;
    if (!xpugi::parse(document, text)) {
        return false;
    }
    const pugi::xml_node root = document.document_element();
    if (std::string_view(root.name()) != "QuerySoftwareChannelAction" ||
        !xpugi::has_supported_protocol_version(root)) {
        return false;
    }
    detail::readInputChannels(root, m_input_channels);
    return true;
}

} // namespace zlr
