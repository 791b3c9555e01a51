#include "sim_data_set_writers.h"

#include "xpugixml.h"

#include <pugixml.hpp>

#include <utility>

namespace zelvar_sim {
namespace {

void appendRegion(pugi::xml_node parent, const zlr::DataRegion& region)
{
    pugi::xml_node element = parent.append_child("DataRegion");
    element.append_attribute("channel_id") = region.m_channel_id;
    element.append_attribute("begin") = region.m_begin;
    element.append_attribute("end") = region.m_end;
}

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
    pugi::xml_document document;
    pugi::xml_node root = document.append_child("DataBlockList");
    root.append_attribute("block_count") = list.m_block_count;
    if (!list.m_intervals.empty()) {
        pugi::xml_node intervals = root.append_child("Intervals");
        for (const zlr::DataInterval& interval : list.m_intervals) {
            pugi::xml_node element = intervals.append_child("Interval");
            element.append_attribute("begin") = interval.m_begin;
            element.append_attribute("end") = interval.m_end;
        }
    }
    if (!list.m_regions.empty()) {
        pugi::xml_node regions = root.append_child("InvalidRegions");
        for (const zlr::DataRegion& region : list.m_regions) {
            appendRegion(regions, region);
        }
    }
    return xpugi::to_xml(document, false);
}

std::string writeDataBlock(const zlr::DataBlock& block)
{
    pugi::xml_document document;
    pugi::xml_node root = document.append_child("DataBlock");
    root.append_attribute("stream_id") = block.m_stream_id;
    root.append_attribute("data_size") = block.m_data_size;
    for (const zlr::DataBlockChannel& channel : block.m_channels) {
        pugi::xml_node element = root.append_child("Channel");
        element.append_attribute("channel_id") = channel.m_channel_id;
        element.append_attribute("offset") = channel.m_offset;
        element.append_attribute("count") = channel.m_count;
        element.append_attribute("first_sample_index") = channel.m_first_sample_index;
        element.append_attribute("timestamp") = channel.m_timestamp;
        element.append_attribute("duration") = channel.m_duration;
    }
    return xpugi::to_xml(document, false);
}

std::string writeDataRegions(const std::vector<zlr::DataRegion>& regions)
{
    pugi::xml_document document;
    pugi::xml_node root = document.append_child("DataRegions");
    for (const zlr::DataRegion& region : regions) {
        appendRegion(root, region);
    }
    return xpugi::to_xml(document, false);
}

std::string writeProcessWindow(const zlr::Timestamp& start, const zlr::Timestamp& end)
{
    pugi::xml_document document;
    pugi::xml_node root = document.append_child("Start");
    xpugi::set_protocol_version(root);
    for (const auto& [name, time] : {std::pair{"Start", start}, std::pair{"End", end}}) {
        pugi::xml_node element = root.append_child(name);
        element.append_attribute("ticks") = time.ticks;
        element.append_attribute("frequency") = time.frequency;
    }
    return xpugi::to_xml(document, false);
}

std::string writeMasterTimebaseValue(const zlr::Timestamp& now)
{
    pugi::xml_document document;
    pugi::xml_node root = document.append_child("MasterTimebaseValue");
    root.append_attribute("ticks") = now.ticks;
    root.append_attribute("frequency") = now.frequency;
    return xpugi::to_xml(document, false);
}

} // namespace zelvar_sim
