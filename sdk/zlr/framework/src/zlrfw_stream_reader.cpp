#include "zlrfw_stream_reader.h"

#include "zlrbase_assert.h"

#include <stdexcept>
#include <utility>

namespace zlr::framework {

void StreamReader::addDataBlock(DataBlock block, const void* data)
{
    const std::uint64_t stream_id = block.m_stream_id;
    m_blocks.emplace(stream_id,
                     std::make_pair(static_cast<const unsigned char*>(data), std::move(block)));
}

void StreamReader::addDataRegion(const DataRegion& region)
{
    m_regions[region.m_channel_id].insert({region.m_begin, region.m_end});
}

void StreamReader::setStreamDescriptor(const StreamDescriptor& descriptor)
{
    m_stream_id = descriptor.m_stream_id;
    m_channels = descriptor.m_channels;
}

StreamIterator StreamReader::createChannelIterator(std::uint64_t channel_id,
                                                   const TickRange& range)
{
    StreamIterator iterator;
    updateStreamIterator(channel_id, iterator, range);
    return iterator;
}

void StreamReader::updateStreamIterator(std::uint64_t channel_id, StreamIterator& iterator,
                                        const TickRange& range)
{
    iterator.clear();

    const ChannelDescriptor* channel_descriptor = nullptr;
    for (const ChannelDescriptor& candidate : m_channels) {
        if (candidate.m_channel_id == channel_id) {
            channel_descriptor = &candidate;
            break;
        }
    }
    if (!channel_descriptor) {
        throw std::runtime_error("Invalid channel ID");
    }

    std::uint64_t sample_count = 0;
    const auto [first, last] = m_blocks.equal_range(m_stream_id);
    for (auto block = first; block != last; ++block) {
        const unsigned char* data = block->second.first;
        const DataBlock& description = block->second.second;
        for (const DataBlockChannel& bcd : description.m_channels) {
            if (bcd.m_channel_id != channel_id || bcd.m_count == 0) {
                continue;
            }
            ZLR_ASSERT_EQ(bcd.m_offset % 8, 0);
            const unsigned char* start = data + (bcd.m_offset >> 3);
            ZLR_ASSERT_EQ(channel_descriptor->m_stride % 8, 0);
            const std::uint64_t stride = channel_descriptor->m_stride >> 3;
            const unsigned char* end_of_run = start + bcd.m_count * stride;

            SamplePosition begin;
            SamplePosition end;
            if (!channel_descriptor->m_timestamp_position) {
                begin = SamplePosition::synchronous(start, stride, bcd.m_first_sample_index);
                end = SamplePosition::synchronous(end_of_run, stride,
                                                  bcd.m_first_sample_index + bcd.m_count);
            } else {
                ZLR_ASSERT_EQ(*channel_descriptor->m_timestamp_position % 8, 0);
                const std::int64_t t = *channel_descriptor->m_timestamp_position / 8;
                if (!channel_descriptor->m_sample_size_position) {
                    begin = SamplePosition::timestamped(start, stride, start + t, stride);
                    end = SamplePosition::timestamped(end_of_run, stride, end_of_run + t, stride);
                } else {
                    ZLR_ASSERT_EQ(*channel_descriptor->m_sample_size_position % 8, 0);
                    const std::int64_t s = *channel_descriptor->m_sample_size_position / 8;
                    // Records of varying size are taken to fill the block
                    // alone: the end comes from the block's size, not a count.
                    const unsigned char* end_of_block = start + description.m_data_size;
                    begin = SamplePosition::variable(start, stride, start + t, stride, start + s,
                                                     stride);
                    end = SamplePosition::variable(end_of_block, stride, end_of_block + t, stride,
                                                   end_of_block + s, stride);
                }
            }
            iterator.addRange(begin, end);
            sample_count += bcd.m_count;
        }
    }

    // Gaps: every stretch of the range that no region covers.
    std::uint64_t cursor = range.first;
    const auto regions = m_regions.find(channel_id);
    if (regions != m_regions.end()) {
        for (const TickRange& region : regions->second) {
            if (region.first > cursor) {
                iterator.addRange(SamplePosition::gap(cursor), SamplePosition::gap(region.first));
            }
            cursor = region.second; // overlapping regions are not merged
        }
    }
    if (range.second > cursor) {
        iterator.addRange(SamplePosition::gap(cursor), SamplePosition::gap(range.second));
    }

    ZLR_ASSERT_EQ(iterator.getTotalSampleCount(), sample_count);
}

} // namespace zlr::framework
