#include "zlrapi_channels_xml.h"

#include "xpugixml.h"

#include <string_view>

namespace zlr {

bool ChannelsTelegram::parse(const char* text, std::size_t length)
{
    m_channels.clear();
    pugi::xml_document document;
    if (!xpugi::parse(document, text, length)) {
        return false;
    }
    const pugi::xml_node root = document.document_element();
    if (std::string_view(root.name()) != "Channels") {
        return false;
    }
    constexpr std::uint64_t missing = ~std::uint64_t{0};
    for (pugi::xml_node channel : root.children("Channel")) {
        ChannelStatusEntry entry;
        entry.m_channel_id = channel.attribute("channel_id").as_ullong(missing);
        if (entry.m_channel_id == missing) {
            return false;
        }
        entry.m_status = channel.attribute("status").value();
        m_channels.push_back(std::move(entry));
    }
    return true;
}

} // namespace zlr
