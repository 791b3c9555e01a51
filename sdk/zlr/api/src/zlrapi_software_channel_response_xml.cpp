#include "zlrapi_software_channel_response_xml.h"

#include "xpugixml.h"

namespace zlr {

std::string CreateSoftwareChannelResponseTelegram::generate() const
{
    pugi::xml_document document;
    const pugi::xml_node root =
        xpugi::append_child_element(document, "CreateSoftwareChannelResponse");
    xpugi::set_protocol_version(root);
    if (!m_message.empty()) {
        xpugi::set_text(xpugi::append_child_element(root, "Message"), m_message);
    }
    if (!m_created_channels.empty()) {
        const pugi::xml_node list = xpugi::append_child_element(root, "CreatedChannels");
        for (const std::uint32_t id : m_created_channels) {
            const pugi::xml_node channel = xpugi::append_child_element(list, "Channel");
            xpugi::set_attribute(channel, "channel_id", std::uint64_t{id});
            if (m_show_details && id == m_details_channel) {
                xpugi::set_attribute(channel, "show_details", "true");
            }
        }
    }
    return xpugi::to_xml(document, false);
}

std::string QuerySoftwareChannelActionResponseTelegram::generate() const
{
    pugi::xml_document document;
    const pugi::xml_node root =
        xpugi::append_child_element(document, "QuerySoftwareChannelActionResponse");
    xpugi::set_protocol_version(root);
    xpugi::set_attribute(xpugi::append_child_element(root, "Valid"), "is_valid",
                         m_valid ? "true" : "false");
    if (!m_channels.empty()) {
        const pugi::xml_node list = xpugi::append_child_element(root, "Channels");
        for (const std::uint64_t id : m_channels) {
            xpugi::set_attribute(xpugi::append_child_element(list, "Channel"), "channel_id", id);
        }
    }
    return xpugi::to_xml(document, false);
}

} // namespace zlr
