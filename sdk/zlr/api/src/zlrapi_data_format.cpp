#include "zlrapi_data_format.h"

#include "xpugixml.h"

#include <string>

namespace zlr {
namespace {

StringBimap checkedMap(std::initializer_list<StringBimap::Row> rows, const char* name,
                       std::size_t expected)
{
    StringBimap map(rows);
    assert_bimap_size(map, name, expected);
    return map;
}

// Built while the library loads, so that a broken table never loads at all.
const StringBimap SAMPLE_OCCURRENCE_STRING_MAP = checkedMap(
    {{"SYNC", 0}, {"ASYNC", 1}, {"SINGLE_VALUE", 2}, {"NEVER", 3}},
    "SAMPLE_OCCURRENCE_STRING_MAP", 4);

// The codes of the last six rows are not ascending; they are the host's.
const StringBimap SAMPLE_FORMAT_STRING_MAP = checkedMap(
    {{"none", 1},    {"byte", 2},     {"sint8", 3},   {"sint16", 4}, {"sint24", 5},
     {"sint32", 6},  {"sint64", 7},   {"uint8", 8},   {"uint16", 9}, {"uint32", 10},
     {"uint64", 11}, {"float", 12},   {"double", 13}, {"can", 18},   {"flexray", 19},
     {"cfloat", 14}, {"cdouble", 15}, {"rvideo", 16}, {"utf8str", 17}},
    "SAMPLE_FORMAT_STRING_MAP", 19);

const StringBimap REDUCED_FORMAT_STRING_MAP =
    checkedMap({{"r_r_r", 1}, {"r_sf_sf", 2}}, "REDUCED_FORMAT_STRING_MAP", 2);

const StringBimap SAMPLE_VALUE_TYPE_STRING_MAP = checkedMap(
    {{"scalar", 1},
     {"can_message", 2},
     {"vector", 3},
     {"complex_vector", 4},
     {"video", 5},
     {"string", 6},
     {"flexray_message", 7},
     {"byte_vector", 8}},
    "SAMPLE_VALUE_TYPE_STRING_MAP", 8);

// Looks the attribute's text up; a missing attribute or an unknown text
// leaves `field` alone.
bool lookUp(pugi::xml_node element, const char* attribute, const StringBimap& map,
            std::uint32_t& field)
{
    const pugi::xml_attribute a = element.attribute(attribute);
    if (!a) {
        return false;
    }
    return map.findNumber(a.value(), field);
}

} // namespace

const StringBimap& sampleOccurrenceMap()
{
    return SAMPLE_OCCURRENCE_STRING_MAP;
}
const StringBimap& sampleFormatMap()
{
    return SAMPLE_FORMAT_STRING_MAP;
}
const StringBimap& sampleValueTypeMap()
{
    return SAMPLE_VALUE_TYPE_STRING_MAP;
}
const StringBimap& reducedFormatMap()
{
    return REDUCED_FORMAT_STRING_MAP;
}

bool writeDataFormat(pugi::xml_node parent, const DataFormat& format)
{
    if (format.m_sample_format == SAMPLE_FORMAT_UNSET) {
        return false;
    }
    // The element is built in a document of its own and joins the parent as
    // text through the fragment parser: the resulting tree is the same.
    pugi::xml_document own;
    pugi::xml_node element = own.append_child("DataFormat");
    element.append_attribute("sample_occurrence") =
        SAMPLE_OCCURRENCE_STRING_MAP.textOf(format.m_sample_occurrence).c_str();
    element.append_attribute("sample_format") =
        SAMPLE_FORMAT_STRING_MAP.textOf(format.m_sample_format).c_str();
    element.append_attribute("sample_dimension") = format.m_sample_dimension;
    if (format.m_reduced_format != REDUCED_FORMAT_NONE) {
        element.append_attribute("reduced_format") =
            REDUCED_FORMAT_STRING_MAP.textOf(format.m_reduced_format).c_str();
    }
    if (format.m_sample_value_type != SAMPLE_VALUE_TYPE_UNSET) {
        element.append_attribute("sample_value_type") =
            SAMPLE_VALUE_TYPE_STRING_MAP.textOf(format.m_sample_value_type).c_str();
    }
    const std::string text = xpugi::to_xml(element, false);
    return static_cast<bool>(parent.append_buffer(text.data(), text.size()));
}

bool readDataFormat(pugi::xml_node element, DataFormat& format)
{
    if (std::string(element.name()) != "DataFormat") {
        return false;
    }
    bool known = lookUp(element, "sample_occurrence", SAMPLE_OCCURRENCE_STRING_MAP,
                        format.m_sample_occurrence);
    known = lookUp(element, "sample_format", SAMPLE_FORMAT_STRING_MAP, format.m_sample_format) &&
            known;
    lookUp(element, "sample_value_type", SAMPLE_VALUE_TYPE_STRING_MAP,
           format.m_sample_value_type);
    lookUp(element, "reduced_format", REDUCED_FORMAT_STRING_MAP, format.m_reduced_format);
    format.m_sample_dimension = element.attribute("sample_dimension").as_uint(1);
    return known;
}

bool parseDataFormat(const char* text, std::size_t length, DataFormat& format)
{
    pugi::xml_document document;
    if (!xpugi::parse(document, text, length)) {
        return false;
    }
    return readDataFormat(document.document_element(), format);
}

} // namespace zlr
