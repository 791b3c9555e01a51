#include "sim_channel_writers.h"

#include "xpugixml.h"

#include <pugixml.hpp>

namespace zelvar_sim {

std::string writeChannels(const std::vector<zlr::ChannelStatusEntry>& channels)
{
    pugi::xml_document document;
    pugi::xml_node root = document.append_child("Channels");
    for (const zlr::ChannelStatusEntry& entry : channels) {
        pugi::xml_node element = root.append_child("Channel");
        element.append_attribute("channel_id") = entry.m_channel_id;
        if (!entry.m_status.empty()) {
            element.append_attribute("status") = entry.m_status.c_str();
        }
    }
    return xpugi::to_xml(document, false);
}

std::string writeChannelDataFormat(std::uint64_t channel_id, const zlr::DataFormat& format)
{
    pugi::xml_document document;
    pugi::xml_node root = document.append_child("Channel");
    root.append_attribute("channel_id") = channel_id;
    zlr::writeDataFormat(root, format);
    return xpugi::to_xml(document, false);
}

std::string writeChannelConfigChanged(const std::vector<zlr::ChangedChannelConfig>& channels)
{
    pugi::xml_document document;
    pugi::xml_node root = document.append_child("ChannelConfigChanged");
    xpugi::set_protocol_version(root);
    for (const zlr::ChangedChannelConfig& channel : channels) {
        pugi::xml_node element = root.append_child("Channel");
        element.append_attribute("id") = channel.m_channel_id;
        for (const zlr::Property& property : channel.m_properties) {
            property.writeTo(element);
        }
    }
    return xpugi::to_xml(document, false);
}

std::string writeDataFormatDocument(const zlr::DataFormat& format, bool wrapped)
{
    pugi::xml_document document;
    pugi::xml_node parent = document;
    if (wrapped) {
        parent = document.append_child("ChannelDataFormat").append_child("Channel");
    }
    zlr::writeDataFormat(parent, format);
    return xpugi::to_xml(document, false);
}

} // namespace zelvar_sim
