#include "zlrapi_process_window_xml.h"

#include "xpugixml.h"

namespace zlr {

bool ProcessWindowTelegram::parse(const char* text, std::size_t length)
{
    m_start = {};
    m_end = {};
    pugi::xml_document document;
    if (!xpugi::parse(document, text, length)) {
        return false;
    }
    const pugi::xml_node root = document.document_element();
    if (!root || !xpugi::has_supported_protocol_version(root)) {
        return false;
    }
    bool readable = true;
    if (const pugi::xml_node start = root.child("Start")) {
        readable = readTimestampElement(start, m_start) && readable;
    }
    if (const pugi::xml_node end = root.child("End")) {
        readable = readTimestampElement(end, m_end) && readable;
    }
    return readable;
}

} // namespace zlr
