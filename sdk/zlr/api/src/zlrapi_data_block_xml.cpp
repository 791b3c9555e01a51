#include "zlrapi_data_block_xml.h"

#include "zlrapi_numbers.h"
#include "xpugixml.h"

#include <limits>
#include <stdexcept>

namespace zlr {
namespace {

std::uint64_t readUnsigned(pugi::xml_node element, const char* name)
{
    return stoullChecked(element.attribute(name).value(), 10);
}

double readDouble(pugi::xml_node element, const char* name)
{
    return stodChecked(element.attribute(name).value());
}

// Reads the selected regions into `regions`, one after the other, so that
// the ones before a bad number stay.
void readRegions(const pugi::xpath_node_set& selected, std::vector<DataRegion>& regions)
{
    regions.reserve(selected.size());
    for (const pugi::xpath_node& node : selected) {
        const pugi::xml_node element = node.node();
        DataRegion region;
        region.m_channel_id = readUnsigned(element, "channel_id");
        region.m_begin = readUnsigned(element, "begin");
        region.m_end = readUnsigned(element, "end");
        regions.push_back(region);
    }
}

} // namespace

bool DataBlockList::parse(const char* text, std::size_t length)
{
    m_block_count = 0;
    m_intervals.clear();
    m_regions.clear();
    pugi::xml_document document;
    if (!xpugi::parse(document, text, length)) {
        return false;
    }
    const pugi::xml_node root = document.document_element();
    try {
        const unsigned long count = stoulChecked(root.attribute("block_count").value(), 10);
        if (count > std::numeric_limits<std::uint32_t>::max()) {
            return false;
        }
        m_block_count = static_cast<std::uint32_t>(count);
        const pugi::xpath_node_set intervals = root.select_nodes("Intervals/Interval");
        m_intervals.reserve(intervals.size());
        for (const pugi::xpath_node& node : intervals) {
            DataInterval interval;
            interval.m_begin = readDouble(node.node(), "begin");
            interval.m_end = readDouble(node.node(), "end");
            m_intervals.push_back(interval);
        }
        readRegions(root.select_nodes("InvalidRegions/DataRegion"), m_regions);
    } catch (const std::logic_error&) {
        return false;
    }
    return true;
}

bool DataBlock::parse(const char* text, std::size_t length)
{
    m_stream_id = 0;
    m_data_size = 0;
    m_channels.clear();
    if (length == 0) {
        return false;
    }
    pugi::xml_document document;
    if (!xpugi::parse(document, text, length)) {
        return false;
    }
    const pugi::xml_node root = document.document_element();
    m_stream_id = root.attribute("stream_id").as_ullong(0);
    m_data_size = root.attribute("data_size").as_ullong(0);
    for (pugi::xml_node element : root.children("Channel")) {
        DataBlockChannel channel;
        channel.m_offset = element.attribute("offset").as_uint(0);
        channel.m_channel_id = element.attribute("channel_id").as_ullong(0);
        channel.m_timestamp = element.attribute("timestamp").as_ullong(0);
        channel.m_duration = element.attribute("duration").as_ullong(0);
        channel.m_first_sample_index = element.attribute("first_sample_index").as_ullong(0);
        channel.m_count = element.attribute("count").as_ullong(0);
        m_channels.push_back(channel);
    }
    return true;
}

bool DataRegions::parse(const char* text, std::size_t length)
{
    m_regions.clear();
    pugi::xml_document document;
    if (!xpugi::parse(document, text, length)) {
        return false;
    }
    try {
        readRegions(document.document_element().select_nodes("DataRegion"), m_regions);
    } catch (const std::logic_error&) {
        return false;
    }
    return true;
}

} // namespace zlr
