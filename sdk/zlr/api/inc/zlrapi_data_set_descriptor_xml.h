// How the bytes of a data set's blocks are laid out: the stream descriptors
// that the host answers to a data set registration. Positions, sizes and
// strides are in bits.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zlr {

enum SampleType : std::uint32_t {
    SAMPLE_TYPE_DOUBLE = 0,
    SAMPLE_TYPE_16BIT_SINT = 1,
    SAMPLE_TYPE_24BIT_SINT = 2,
    SAMPLE_TYPE_1BIT = 3,
    SAMPLE_TYPE_COMPLEX = 4,
    SAMPLE_TYPE_BLOB = 5,
    SAMPLE_TYPE_REDUCED = 6,
    SAMPLE_TYPE_RAW = 7,
};

// The attribute text of a sample type, and back. An unknown text is reported
// on the assertion channel ("Unsupported Sample Type") and taken as a blob.
const char* sampleTypeText(SampleType type);
SampleType sampleTypeFromText(const std::string& text);

struct ChannelDescriptor {
    std::uint64_t m_channel_id = 0;
    std::uint32_t m_dimension = 0;
    std::uint32_t m_size = 0;
    std::uint32_t m_stride = 0;
    SampleType m_sample_type = SAMPLE_TYPE_DOUBLE;
    double m_scale_factor = 1.0;
    double m_scale_offset = 0.0;
    std::optional<std::int32_t> m_timestamp_position;
    std::optional<std::int32_t> m_sample_size_position;

    bool operator==(const ChannelDescriptor&) const = default;
};

struct StreamDescriptor {
    std::uint64_t m_stream_id = 0;
    std::vector<ChannelDescriptor> m_channels;

    bool operator==(const StreamDescriptor&) const = default;
};

struct StreamDescriptors {
    std::uint64_t m_data_set_key = 0;
    std::vector<StreamDescriptor> m_stream_descriptors;

    // Every number is required and read with automatic base; one that does
    // not convert, or does not fit its field, refuses the whole document.
    bool parse(const char* text, std::size_t length);

    bool operator==(const StreamDescriptors&) const = default;
};

} // namespace zlr
