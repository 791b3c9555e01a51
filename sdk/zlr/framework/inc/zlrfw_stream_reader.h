// Turns the blocks of one processing step into one StreamIterator per
// channel, using the stream descriptors to find each channel's records. The
// block memory stays the host's; the reader keeps copies of the descriptions.
#pragma once

#include "zlrapi_data_block_xml.h"
#include "zlrapi_data_set_descriptor_xml.h"
#include "zlrfw_stream_iterator.h"

#include <cstdint>
#include <map>
#include <set>
#include <utility>
#include <vector>

namespace zlr::framework {

// Ticks from first up to, not including, second.
using TickRange = std::pair<std::uint64_t, std::uint64_t>;

class StreamReader {
public:
    // Blocks and regions are added first; then, stream after stream, the
    // descriptor is set and the iterators are taken.
    // The reader keeps `block`; a caller done with it hands it over.
    void addDataBlock(DataBlock block, const void* data);
    void addDataRegion(const DataRegion& region);
    void setStreamDescriptor(const StreamDescriptor& descriptor);

    // A fresh iterator over the channel's records of the current stream, with
    // gaps where the range has no data. Throws std::runtime_error("Invalid
    // channel ID") for a channel the current stream does not describe.
    StreamIterator createChannelIterator(std::uint64_t channel_id, const TickRange& range);

    // Refills `iterator` the same way.
    void updateStreamIterator(std::uint64_t channel_id, StreamIterator& iterator,
                              const TickRange& range);

private:
    std::uint64_t m_stream_id = 0;
    std::vector<ChannelDescriptor> m_channels;
    std::multimap<std::uint64_t, std::pair<const unsigned char*, DataBlock>> m_blocks;
    std::map<std::uint64_t, std::set<TickRange>> m_regions;
};

} // namespace zlr::framework
