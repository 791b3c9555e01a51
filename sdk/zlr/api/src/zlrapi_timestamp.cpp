#include "zlrapi_timestamp.h"

#include "zlrapi_numbers.h"
#include "xpugixml.h"

#include <stdexcept>

namespace zlr {

bool readTimestampElement(pugi::xml_node element, Timestamp& timestamp)
{
    timestamp.ticks = 0;
    timestamp.frequency = -1.0;
    const pugi::xml_attribute ticks = element.attribute("ticks");
    const pugi::xml_attribute frequency = element.attribute("frequency");
    if (!ticks || !frequency) {
        return false;
    }
    try {
        timestamp.ticks = stoullChecked(ticks.value(), 0);
        timestamp.frequency = stodChecked(frequency.value());
    } catch (const std::logic_error&) {
        return false;
    }
    return true;
}

bool parseTimestamp(const char* text, std::size_t length, Timestamp& timestamp)
{
    if (length == 0) {
        return false;
    }
    pugi::xml_document document;
    if (!xpugi::parse(document, text, length)) {
        return false;
    }
    const pugi::xml_node element = document.document_element();
    if (!element) {
        return false;
    }
    return readTimestampElement(element, timestamp);
}

} // namespace zlr
