#include "zlrapi_channel_id_map_xml.h"

#include "xpugixml.h"

#include <string_view>

namespace zlr {

std::string writeChannelIDMap(const std::map<std::uint32_t, std::uint32_t>& map)
{
    pugi::xml_document document;
    pugi::xml_node root = document.append_child("ChannelIDMap");
    for (const auto& [first, second] : map) {
        pugi::xml_node pair = root.append_child("ChannelMappingPair");
        pair.append_attribute("first") = first;
        pair.append_attribute("second") = second;
    }
    return xpugi::to_xml(root, false);
}

bool ChannelIDMapTelegram::parse(const char* text, std::size_t length)
{
    m_map.clear();
    pugi::xml_document document;
    if (!xpugi::parse(document, text, length)) {
        return false;
    }
    const pugi::xml_node root = document.document_element();
    if (std::string_view(root.name()) != "ChannelIDMap") {
        return false;
    }
    for (const pugi::xpath_node& selected : root.select_nodes("ChannelMappingPair")) {
        const pugi::xml_node pair = selected.node();
        m_map[pair.attribute("first").as_ullong(0)] = pair.attribute("second").as_ullong(0);
    }
    return true;
}

} // namespace zlr
