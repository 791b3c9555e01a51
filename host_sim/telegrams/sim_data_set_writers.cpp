#include "sim_data_set_writers.h"

#include "xpugixml.h"
#include "zlrapi_xml_builder.h"

#include <pugixml.hpp>

#include <charconv>
#include <cstring>
#include <sstream>
#include <string_view>
#include <utility>

namespace zelvar_sim {
namespace {

void appendRegion(zlr::XmlBuilderElement& parent, const zlr::DataRegion& region)
{
    parent.child("DataRegion", {zlr::XmlAttribute("channel_id", region.m_channel_id),
                                zlr::XmlAttribute("begin", region.m_begin),
                                zlr::XmlAttribute("end", region.m_end)});
}

// The telegrams that go out with every step and every block are streamed by
// XmlBuilder rather than built as documents; the text is the same. Each
// thread keeps its stream, since making one costs more than a block's text.
template <typename Build>
std::string streamed(Build build)
{
    thread_local std::ostringstream out;
    out.str(std::string());
    out.clear();
    zlr::XmlBuilder builder(out);
    build(builder);
    builder.flush();
    return out.str();
}

// Writes text at a cursor into room that was sized beforehand.
class TextCursor {
public:
    explicit TextCursor(char* at) : m_at(at) {}

    void put(std::string_view text)
    {
        std::memcpy(m_at, text.data(), text.size());
        m_at += text.size();
    }

    // ` name="` is given with its quote; the number and the closing quote follow.
    void number(std::string_view name_and_quote, std::uint64_t value)
    {
        put(name_and_quote);
        m_at = std::to_chars(m_at, m_at + 20, value).ptr;
        *m_at++ = '"';
    }

    char* at() const { return m_at; }

private:
    char* m_at;
};

} // namespace

std::string writeStreamDescriptors(const zlr::StreamDescriptors& descriptors)
{
    pugi::xml_document document;
    pugi::xml_node root = document.append_child("StreamDescriptors");
    root.append_attribute("data_set_key") = descriptors.m_data_set_key;
    for (const zlr::StreamDescriptor& stream : descriptors.m_stream_descriptors) {
        pugi::xml_node stream_element = root.append_child("StreamDescriptor");
        stream_element.append_attribute("stream_id") = stream.m_stream_id;
        for (const zlr::ChannelDescriptor& channel : stream.m_channels) {
            pugi::xml_node element = stream_element.append_child("Channel");
            element.append_attribute("channel_id") = channel.m_channel_id;
            // Runs carry their own offsets; the descriptor's is always 0.
            element.append_attribute("offset") = 0u;
            element.append_attribute("dimension") = channel.m_dimension;
            element.append_attribute("size") = channel.m_size;
            element.append_attribute("stride") = channel.m_stride;
            element.append_attribute("type") = zlr::sampleTypeText(channel.m_sample_type);
            pugi::xml_node linear = element.append_child("Scaling").append_child("Linear");
            linear.append_attribute("factor") = channel.m_scale_factor;
            linear.append_attribute("offset") = channel.m_scale_offset;
            if (channel.m_timestamp_position) {
                element.append_child("Timestamp").append_attribute("position") =
                    *channel.m_timestamp_position;
            }
            if (channel.m_sample_size_position) {
                element.append_child("Samplesize").append_attribute("position") =
                    *channel.m_sample_size_position;
            }
        }
    }
    return xpugi::to_xml(document, false);
}

std::string writeDataBlockList(const zlr::DataBlockList& list)
{
    return streamed([&](zlr::XmlBuilder& builder) {
        zlr::XmlBuilderElement root =
            builder.child("DataBlockList", {zlr::XmlAttribute("block_count", list.m_block_count)});
        if (!list.m_intervals.empty()) {
            zlr::XmlBuilderElement intervals = root.child("Intervals");
            for (const zlr::DataInterval& interval : list.m_intervals) {
                intervals.child("Interval", {zlr::XmlAttribute("begin", interval.m_begin),
                                             zlr::XmlAttribute("end", interval.m_end)});
            }
        }
        if (!list.m_regions.empty()) {
            zlr::XmlBuilderElement regions = root.child("InvalidRegions");
            for (const zlr::DataRegion& region : list.m_regions) {
                appendRegion(regions, region);
            }
        }
    });
}

// Every block of every step has one: written straight into its text, which
// is the text XmlBuilder writes for it.
std::string writeDataBlock(const zlr::DataBlock& block)
{
    // The longest text: every number of 20 digits.
    constexpr std::size_t HEAD = 128;
    constexpr std::size_t PER_CHANNEL = 216;
    std::string text(HEAD + PER_CHANNEL * block.m_channels.size(), '\0');
    TextCursor out(text.data());
    out.put("<?xml version=\"1.0\"?><DataBlock");
    out.number(" stream_id=\"", block.m_stream_id);
    out.number(" data_size=\"", block.m_data_size);
    if (block.m_channels.empty()) {
        out.put("/>");
    } else {
        out.put(">");
        for (const zlr::DataBlockChannel& channel : block.m_channels) {
            out.put("<Channel");
            out.number(" channel_id=\"", channel.m_channel_id);
            out.number(" offset=\"", channel.m_offset);
            out.number(" count=\"", channel.m_count);
            out.number(" first_sample_index=\"", channel.m_first_sample_index);
            out.number(" timestamp=\"", channel.m_timestamp);
            out.number(" duration=\"", channel.m_duration);
            out.put("/>");
        }
        out.put("</DataBlock>");
    }
    text.resize(static_cast<std::size_t>(out.at() - text.data()));
    return text;
}

std::string writeDataRegions(const std::vector<zlr::DataRegion>& regions)
{
    return streamed([&](zlr::XmlBuilder& builder) {
        zlr::XmlBuilderElement root = builder.child("DataRegions");
        for (const zlr::DataRegion& region : regions) {
            appendRegion(root, region);
        }
    });
}

std::string writeProcessWindow(const zlr::Timestamp& start, const zlr::Timestamp& end)
{
    return streamed([&](zlr::XmlBuilder& builder) {
        zlr::XmlBuilderElement root =
            builder.child("Start", {zlr::XmlAttribute("protocol_version", "1.0")});
        for (const auto& [name, time] : {std::pair{"Start", start}, std::pair{"End", end}}) {
            root.child(name, {zlr::XmlAttribute("ticks", time.ticks),
                              zlr::XmlAttribute("frequency", time.frequency)});
        }
    });
}

std::string writeMasterTimebaseValue(const zlr::Timestamp& now)
{
    return streamed([&](zlr::XmlBuilder& builder) {
        builder.child("MasterTimebaseValue", {zlr::XmlAttribute("ticks", now.ticks),
                                              zlr::XmlAttribute("frequency", now.frequency)});
    });
}

} // namespace zelvar_sim
