#include "zlrapi_data_set_descriptor_xml.h"

#include "zlrapi_numbers.h"
#include "xpugixml.h"
#include "zlrbase_assert.h"

#include <cstdlib>
#include <limits>
#include <stdexcept>
#include <string_view>

namespace zlr {
namespace {

constexpr const char* SAMPLE_TYPE_TEXTS[] = {"double",  "16bit_sint", "24bit_sint", "1bit",
                                             "complex", "blob",       "reduced",    "raw"};

// Any failure below throws std::logic_error and refuses the document.
std::uint64_t readNumber(pugi::xml_node element, const char* name)
{
    return stoullChecked(element.attribute(name).value(), 0);
}

std::uint32_t readNumber32(pugi::xml_node element, const char* name)
{
    const std::uint64_t value = readNumber(element, name);
    if (value > std::numeric_limits<std::uint32_t>::max()) {
        throw std::out_of_range("stoull argument out of range");
    }
    return static_cast<std::uint32_t>(value);
}

std::int32_t readPosition(pugi::xml_node element)
{
    const long long value = stollChecked(element.attribute("position").value(), 0);
    if (value < std::numeric_limits<std::int32_t>::min() ||
        value > std::numeric_limits<std::int32_t>::max()) {
        throw std::out_of_range("stoll argument out of range");
    }
    return static_cast<std::int32_t>(value);
}

// False for a "Scaling" that is not exactly one "Linear".
bool readScaling(pugi::xml_node channel, ChannelDescriptor& descriptor)
{
    const pugi::xpath_node_set scalings = channel.select_nodes("Scaling/*");
    if (scalings.empty()) {
        return true;
    }
    if (scalings.size() > 1) {
        return false;
    }
    const pugi::xml_node linear = scalings.first().node();
    if (std::string_view(linear.name()) != "Linear") {
        return false;
    }
    descriptor.m_scale_factor = std::strtod(linear.attribute("factor").value(), nullptr);
    descriptor.m_scale_offset = std::strtod(linear.attribute("offset").value(), nullptr);
    return true;
}

bool readChannel(pugi::xml_node channel, ChannelDescriptor& descriptor)
{
    descriptor.m_channel_id = readNumber(channel, "channel_id");
    // The host states an offset per channel, but where a channel starts in a
    // block comes with each block; the number is checked and not kept.
    readNumber(channel, "offset");
    descriptor.m_dimension = readNumber32(channel, "dimension");
    descriptor.m_size = readNumber32(channel, "size");
    descriptor.m_stride = readNumber32(channel, "stride");
    descriptor.m_sample_type = sampleTypeFromText(channel.attribute("type").value());
    if (!readScaling(channel, descriptor)) {
        return false;
    }
    if (const pugi::xml_node timestamp = channel.child("Timestamp")) {
        descriptor.m_timestamp_position = readPosition(timestamp);
    }
    if (const pugi::xml_node sample_size = channel.child("Samplesize")) {
        descriptor.m_sample_size_position = readPosition(sample_size);
    }
    return true;
}

} // namespace

const char* sampleTypeText(SampleType type)
{
    if (type > SAMPLE_TYPE_RAW) {
        return SAMPLE_TYPE_TEXTS[SAMPLE_TYPE_BLOB];
    }
    return SAMPLE_TYPE_TEXTS[type];
}

SampleType sampleTypeFromText(const std::string& text)
{
    for (std::uint32_t code = SAMPLE_TYPE_DOUBLE; code <= SAMPLE_TYPE_RAW; ++code) {
        if (text == SAMPLE_TYPE_TEXTS[code]) {
            return static_cast<SampleType>(code);
        }
    }
    reportAssertion("Unsupported Sample Type", ZLR_SOURCE_PATH, __LINE__);
    return SAMPLE_TYPE_BLOB;
}

bool StreamDescriptors::parse(const char* text, std::size_t length)
{
    m_data_set_key = 0;
    m_stream_descriptors.clear();
    pugi::xml_document document;
    if (!xpugi::parse(document, text, length)) {
        return false;
    }
    const pugi::xml_node root = document.document_element();
    try {
        m_data_set_key = readNumber(root, "data_set_key");
        for (pugi::xml_node stream : root.children("StreamDescriptor")) {
            StreamDescriptor descriptor;
            descriptor.m_stream_id = readNumber(stream, "stream_id");
            for (pugi::xml_node channel : stream.children("Channel")) {
                ChannelDescriptor channel_descriptor;
                if (!readChannel(channel, channel_descriptor)) {
                    return false;
                }
                descriptor.m_channels.push_back(channel_descriptor);
            }
            m_stream_descriptors.push_back(std::move(descriptor));
        }
    } catch (const std::logic_error&) {
        return false;
    }
    return true;
}

} // namespace zlr
