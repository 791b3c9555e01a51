#include "zlrapi_channel_config_changed_xml.h"

#include "xpugixml.h"

#include <exception>
#include <string_view>

namespace zlr {
namespace {

// The properties of one channel, as in UpdateConfig but without constraints.
void readProperties(pugi::xml_node channel, std::vector<Property>& properties)
{
    try {
        for (pugi::xml_node element : channel.children("Property")) {
            const std::string name = element.attribute("name").value();
            if (name.empty()) {
                return;
            }
            for (pugi::xml_node child : element.children()) {
                if (child.type() != pugi::node_element) {
                    continue;
                }
                Property property(name);
                if (!property.readTypeDefiningNode(child, 0.0)) {
                    return;
                }
                properties.push_back(property);
            }
        }
    } catch (const std::exception&) {
        // A number that does not convert ends this channel's list.
    }
}

} // namespace

bool ChannelConfigChangedTelegram::parse(const char* text, std::size_t length)
{
    m_channels.clear();
    pugi::xml_document document;
    if (!xpugi::parse(document, text, length)) {
        return false;
    }
    const pugi::xml_node root = document.document_element();
    if (std::string_view(root.name()) != "ChannelConfigChanged" ||
        !xpugi::has_supported_protocol_version(root)) {
        return false;
    }
    constexpr std::uint64_t missing = ~std::uint64_t{0};
    for (pugi::xml_node element : root.children()) {
        if (std::string_view(element.name()) != "Channel") {
            return false;
        }
        ChangedChannelConfig channel;
        channel.m_channel_id = element.attribute("id").as_ullong(missing);
        if (channel.m_channel_id == missing) {
            return false;
        }
        readProperties(element, channel.m_properties);
        m_channels.push_back(std::move(channel));
    }
    return true;
}

} // namespace zlr
