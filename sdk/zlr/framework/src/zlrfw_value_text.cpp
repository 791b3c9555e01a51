#include "zlrfw_value_text.h"

#include <cstring>

namespace zlr::framework {

std::optional<std::string> xmlValueText(IfValue* value)
{
    if (!value || value->getType() != VALUE_TYPE_XML) {
        return std::nullopt;
    }
    IfXmlValue* xml = static_cast<IfXmlValue*>(value);
    const char* data = xml->getData();
    if (!data) {
        return std::string();
    }
    const std::int32_t length = xml->getLength();
    return length >= 0 ? std::string(data, static_cast<std::size_t>(length)) : std::string(data);
}

} // namespace zlr::framework
