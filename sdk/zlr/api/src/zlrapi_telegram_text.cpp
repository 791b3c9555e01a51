#include "zlrapi_telegram_text.h"

#include <sstream>

namespace zlr {

bool parseTelegram(pugi::xml_document& document, const char* text, std::size_t length)
{
    if (!text) {
        return false;
    }
    return static_cast<bool>(
        document.load_buffer(text, length, pugi::parse_default, pugi::encoding_utf8));
}

bool parseTelegram(pugi::xml_document& document, const char* text)
{
    if (!text) {
        return false;
    }
    return static_cast<bool>(document.load_string(text, pugi::parse_default));
}

std::string documentText(const pugi::xml_document& document)
{
    std::ostringstream out;
    document.save(out, "", pugi::format_raw);
    return out.str();
}

std::string nodeText(pugi::xml_node node)
{
    std::ostringstream out;
    node.print(out, "", pugi::format_raw);
    return out.str();
}

} // namespace zlr
