#include "zlrapi_channel_data_format_xml.h"

#include "xpugixml.h"

#include <string_view>

namespace zlr {

bool ChannelDataFormatTelegram::parse(const char* text, std::size_t length)
{
    pugi::xml_document document;
    if (!xpugi::parse(document, text, length)) {
        return false;
    }
    const pugi::xml_node root = document.document_element();
    if (std::string_view(root.name()) != "Channel") {
        return false;
    }
    constexpr std::uint64_t missing = ~std::uint64_t{0};
    m_channel_id = root.attribute("channel_id").as_ullong(missing);
    if (m_channel_id == missing) {
        return false;
    }
    m_dataformat = DataFormat{};
    return readDataFormat(root.child("DataFormat"), m_dataformat);
}

} // namespace zlr
