// Property::readFrom on any text. What it accepts, the writer must turn into
// a text that reads back to the same value. The first written text may still
// differ from the second in line breaks: a carriage return that came in as
// "&#13;" is written as it is and read back as the parser normalises it. From
// the second text on, writing and reading must be a fixed point.
#include "zlr_fuzz_harness.h"

#include "xpugixml.h"
#include "zlrapi_property.h"

#include <string>

namespace {

std::string written(const zlr::Property& property)
{
    pugi::xml_document document;
    property.writeTo(document);
    return xpugi::to_xml(document, false);
}

// A text value read from an element whose first child holds no text is empty;
// the writer writes an empty value as nothing, which the reader refuses. That
// asymmetry is the format's, so such a value ends the check.
bool writesNoText(const zlr::Property& property)
{
    switch (property.getType()) {
    case zlr::Property::NONE:
    case zlr::Property::STRING_VALUE:
    case zlr::Property::RANGE_VALUE:
    case zlr::Property::PROPERTY_LIST_VALUE:
    case zlr::Property::SCALAR_VALUE:
    case zlr::Property::STRING_LIST_VALUE:
    case zlr::Property::POINT_LIST_VALUE:
    case zlr::Property::DECORATED_NUMBER:
    case zlr::Property::DOUBLE_LIST_VALUE:
    case zlr::Property::RATIONAL_VALUE:
    case zlr::Property::POINT:
    case zlr::Property::CHANNEL_ID_LIST:
        return false;
    default:
        return property.getStringValue().empty();
    }
}

// Reads a text that the writer made; false when a number text in it reports
// a range error (a subnormal number read from a hexadecimal text is written
// in decimal, which strtod flags), which ends the check.
bool readWritten(const std::string& text, zlr::Property& property)
{
    pugi::xml_document document;
    zlr::fuzz::expect(xpugi::parse(document, text.c_str()), "the written text parses");
    try {
        zlr::fuzz::expect(property.readFrom(document.document_element(), 0.0),
                          "the written text reads");
    } catch (const std::exception& error) {
        zlr::fuzz::expect(zlr::fuzz::isNumberTextError(error), "only number errors");
        return false;
    }
    return true;
}

void readProperty(const char* text, std::size_t length)
{
    pugi::xml_document document;
    if (!xpugi::parse(document, text, length)) {
        return;
    }
    zlr::Property property;
    if (!property.readFrom(document.document_element(), 0.0)) {
        return;
    }
    if (writesNoText(property)) {
        return;
    }
    const std::string once = written(property);
    zlr::fuzz::expectWrittenForm(once);
    zlr::Property second;
    if (!readWritten(once, second)) {
        return;
    }
    zlr::fuzz::expect(second.getType() == property.getType(), "the type reads back the same");
    if (writesNoText(second)) {
        return;
    }
    const std::string twice = written(second);
    zlr::Property third;
    if (!readWritten(twice, third)) {
        return;
    }
    zlr::fuzz::expect(third == second, "the value reads back the same");
    zlr::fuzz::expect(written(third) == twice, "writing is stable");
}

} // namespace

ZLR_FUZZ_READER(readProperty)
