// What a data request returns: the description of the block list, of each
// block, and the regions of data that the host holds.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zlr {

struct DataInterval {
    double m_begin = 0.0;
    double m_end = 0.0;

    bool operator==(const DataInterval&) const = default;
};

// Ticks from begin up to, not including, end hold data of the channel.
struct DataRegion {
    std::uint64_t m_channel_id = 0;
    std::uint64_t m_begin = 0;
    std::uint64_t m_end = 0;

    bool operator==(const DataRegion&) const = default;
};

struct DataBlockList {
    std::uint32_t m_block_count = 0;
    std::vector<DataInterval> m_intervals;
    std::vector<DataRegion> m_regions;

    // "block_count" is required. An unreadable number answers false and
    // keeps what was read before it.
    bool parse(const char* text, std::size_t length);

    bool operator==(const DataBlockList&) const = default;
};

// One run of records of one channel inside a block; the offset is in bits
// from the block's first byte.
struct DataBlockChannel {
    std::uint32_t m_offset = 0;
    std::uint64_t m_channel_id = 0;
    std::uint64_t m_timestamp = 0;
    std::uint64_t m_duration = 0;
    std::uint64_t m_first_sample_index = 0;
    std::uint64_t m_count = 0;

    bool operator==(const DataBlockChannel&) const = default;
};

struct DataBlock {
    std::uint64_t m_stream_id = 0;
    std::uint64_t m_data_size = 0;
    std::vector<DataBlockChannel> m_channels;

    // Every attribute defaults to 0: only an empty or malformed text fails.
    bool parse(const char* text, std::size_t length);

    bool operator==(const DataBlock&) const = default;
};

// The answer to a data regions request: the "DataRegion" children of the root.
struct DataRegions {
    std::vector<DataRegion> m_regions;

    bool parse(const char* text, std::size_t length);

    bool operator==(const DataRegions&) const = default;
};

} // namespace zlr
