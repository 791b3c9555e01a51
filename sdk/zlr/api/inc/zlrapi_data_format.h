// What a channel's samples look like: the DataFormat element and the tables
// that translate its attribute texts.
#pragma once

#include "zlrapi_bimap.h"

#include <pugixml.hpp>

#include <cstddef>
#include <cstdint>

namespace zlr {

enum SampleOccurrence : std::uint32_t {
    SAMPLE_OCCURRENCE_SYNC = 0,
    SAMPLE_OCCURRENCE_ASYNC = 1,
    SAMPLE_OCCURRENCE_SINGLE_VALUE = 2,
    SAMPLE_OCCURRENCE_NEVER = 3,
    // Not a telegram value: the format of the channel is not known yet.
    SAMPLE_OCCURRENCE_UNKNOWN = 4,
};

enum SampleFormat : std::uint32_t {
    SAMPLE_FORMAT_UNSET = 0,
    SAMPLE_FORMAT_NONE = 1,
    SAMPLE_FORMAT_BYTE = 2,
    SAMPLE_FORMAT_SINT8 = 3,
    SAMPLE_FORMAT_SINT16 = 4,
    SAMPLE_FORMAT_SINT24 = 5,
    SAMPLE_FORMAT_SINT32 = 6,
    SAMPLE_FORMAT_SINT64 = 7,
    SAMPLE_FORMAT_UINT8 = 8,
    SAMPLE_FORMAT_UINT16 = 9,
    SAMPLE_FORMAT_UINT32 = 10,
    SAMPLE_FORMAT_UINT64 = 11,
    SAMPLE_FORMAT_FLOAT = 12,
    SAMPLE_FORMAT_DOUBLE = 13,
    SAMPLE_FORMAT_CFLOAT = 14,
    SAMPLE_FORMAT_CDOUBLE = 15,
    SAMPLE_FORMAT_RVIDEO = 16,
    SAMPLE_FORMAT_UTF8STR = 17,
    SAMPLE_FORMAT_CAN = 18,
    SAMPLE_FORMAT_FLEXRAY = 19,
};

enum SampleValueType : std::uint32_t {
    SAMPLE_VALUE_TYPE_UNSET = 0,
    SAMPLE_VALUE_TYPE_SCALAR = 1,
    SAMPLE_VALUE_TYPE_CAN_MESSAGE = 2,
    SAMPLE_VALUE_TYPE_VECTOR = 3,
    SAMPLE_VALUE_TYPE_COMPLEX_VECTOR = 4,
    SAMPLE_VALUE_TYPE_VIDEO = 5,
    SAMPLE_VALUE_TYPE_STRING = 6,
    SAMPLE_VALUE_TYPE_FLEXRAY_MESSAGE = 7,
    SAMPLE_VALUE_TYPE_BYTE_VECTOR = 8,
};

enum ReducedFormat : std::uint32_t {
    // The channel is not reduced; this value has no text.
    REDUCED_FORMAT_NONE = 0,
    REDUCED_FORMAT_R_R_R = 1,
    REDUCED_FORMAT_R_SF_SF = 2,
};

const StringBimap& sampleOccurrenceMap();
const StringBimap& sampleFormatMap();
const StringBimap& sampleValueTypeMap();
const StringBimap& reducedFormatMap();

// The fields hold the enumerations' numbers, so that numbers the tables do
// not know can still be carried and are refused only when written.
struct DataFormat {
    std::uint32_t m_sample_format = SAMPLE_FORMAT_UNSET;
    std::uint32_t m_sample_value_type = SAMPLE_VALUE_TYPE_UNSET;
    std::uint32_t m_sample_dimension = ~std::uint32_t{0};
    std::uint32_t m_sample_occurrence = SAMPLE_OCCURRENCE_UNKNOWN;
    std::uint32_t m_reduced_format = REDUCED_FORMAT_NONE;

    bool operator==(const DataFormat&) const = default;
};

// Appends a "DataFormat" element to `parent`. A format code of 0 writes
// nothing and answers false. A value without a row in its table throws
// std::out_of_range("Right side key not found").
bool writeDataFormat(pugi::xml_node parent, const DataFormat& format);

// Reads a "DataFormat" element into `format`. Fields whose text is missing
// or unknown keep their value; the answer is true only when both the sample
// format and the occurrence were recognised.
bool readDataFormat(pugi::xml_node element, DataFormat& format);

// The same for a document whose element is the "DataFormat".
bool parseDataFormat(const char* text, std::size_t length, DataFormat& format);

} // namespace zlr
