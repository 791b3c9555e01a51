#include "zlrfw_value_text.h"

#include <cstring>

namespace zlr::framework {

std::optional<std::string_view> xmlValueView(IfValue* value)
{
    if (!value || value->getType() != VALUE_TYPE_XML) {
        return std::nullopt;
    }
    IfXmlValue* xml = static_cast<IfXmlValue*>(value);
    const char* data = xml->getData();
    if (!data) {
        return std::string_view();
    }
    const std::int32_t length = xml->getLength();
    return length >= 0 ? std::string_view(data, static_cast<std::size_t>(length))
                       : std::string_view(data);
}

std::optional<std::string> xmlValueText(IfValue* value)
{
    const std::optional<std::string_view> view = xmlValueView(value);
    if (!view) {
        return std::nullopt;
    }
    return std::string(*view);
}

} // namespace zlr::framework
