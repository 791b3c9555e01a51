// Iterators built from blocks laid out in memory as the host lays them out.
#include "zlr_assert_capture.h"
#include "zlrfw_stream_reader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace zlr;
using namespace zlr::framework;

constexpr std::uint64_t ALL = ~std::uint64_t{0};

ChannelDescriptor doubleChannel(std::uint64_t id, std::uint32_t stride_bits = 64)
{
    ChannelDescriptor c;
    c.m_channel_id = id;
    c.m_size = 64;
    c.m_stride = stride_bits;
    return c;
}

struct Walk {
    std::vector<std::uint64_t> ticks;
    std::vector<double> values; // NaN inside gaps
};

Walk walk(StreamIterator it, std::size_t limit = 100000)
{
    Walk w;
    while (it.valid() && w.ticks.size() < limit) {
        w.ticks.push_back(it.timestamp());
        w.values.push_back(it.value());
        ++it;
    }
    return w;
}

TEST(StreamReader, EmptyReaderGivesGapsOnlyWhereTheRangeAsks)
{
    StreamReader reader;
    reader.addDataRegion({5, 0, ALL});
    reader.setStreamDescriptor({1, {doubleChannel(5), doubleChannel(6)}});

    StreamIterator covered = reader.createChannelIterator(5, {0, ALL});
    EXPECT_TRUE(covered.ranges().empty());
    EXPECT_FALSE(covered.valid());
    EXPECT_EQ(covered.getTotalSampleCount(), 0u);

    StreamIterator gap = reader.createChannelIterator(6, {10, 20});
    EXPECT_FALSE(gap.valid()); // gaps are skipped by default
    gap.setSkipGaps(false);
    const Walk w = walk(gap);
    ASSERT_EQ(w.ticks.size(), 10u);
    EXPECT_EQ(w.ticks.front(), 10u);
    EXPECT_EQ(w.ticks.back(), 19u);
    EXPECT_TRUE(std::all_of(w.values.begin(), w.values.end(), [](double v) { return std::isnan(v); }));
    std::uint64_t nan_bits;
    const double nan = gap.value();
    std::memcpy(&nan_bits, &nan, sizeof nan);
    EXPECT_EQ(nan_bits, 0x7FF8000000000000ull);

    EXPECT_THROW(reader.createChannelIterator(7, {0, ALL}), std::runtime_error);
}

// Random synchronous blocks of two interleaved channels, inserted in random
// order, against a plain map of tick to value.
TEST(StreamReader, SynchronousBlocksComeOutInTickOrderWithGapsAsNaN)
{
    std::mt19937_64 random(11);
    for (int trial = 0; trial < 50; ++trial) {
        struct Run {
            std::uint64_t first;
            std::uint64_t count;
        };
        std::vector<Run> runs;
        std::uint64_t tick = random() % 5;
        for (int b = 0, n = 1 + int(random() % 6); b < n; ++b) {
            const std::uint64_t count = random() % 20; // 0 adds no range
            runs.push_back({tick, count});
            tick += count + random() % 4; // sometimes adjoining, sometimes a hole
        }
        const std::uint64_t range_end = tick + random() % 5;

        // Each block: channel 9's run at an offset behind channel 3's run.
        std::vector<std::vector<double>> memory;
        std::map<std::uint64_t, double> expected;
        std::vector<DataBlock> blocks;
        StreamReader reader;
        for (const Run& run : runs) {
            std::vector<double> bytes(2 * run.count + 1);
            for (std::uint64_t i = 0; i < run.count; ++i) {
                bytes[i] = -1.0; // channel 3
                bytes[run.count + 1 + i] = double(run.first + i) + 0.25;
                expected[run.first + i] = double(run.first + i) + 0.25;
            }
            memory.push_back(std::move(bytes));
            DataBlock block;
            block.m_stream_id = 4;
            block.m_data_size = memory.back().size() * 8;
            block.m_channels.push_back({0, 3, 0, 0, run.first, run.count});
            block.m_channels.push_back({std::uint32_t((run.count + 1) * 64), 9, 0, 0, run.first, run.count});
            blocks.push_back(block);
            reader.addDataRegion({9, run.first, run.first + run.count});
        }
        std::vector<std::size_t> order(blocks.size());
        for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
        std::shuffle(order.begin(), order.end(), random);
        for (std::size_t i : order) {
            reader.addDataBlock(blocks[i], memory[i].data());
        }
        reader.setStreamDescriptor({4, {doubleChannel(3), doubleChannel(9)}});

        test::AssertCapture reports;
        StreamIterator it = reader.createChannelIterator(9, {0, range_end});
        EXPECT_TRUE(reports.reported().empty()) << reports.reported().front();
        EXPECT_EQ(it.getTotalSampleCount(), expected.size());

        const Walk only_data = walk(it);
        ASSERT_EQ(only_data.ticks.size(), expected.size());
        std::size_t i = 0;
        for (const auto& [t, v] : expected) {
            EXPECT_EQ(only_data.ticks[i], t);
            EXPECT_EQ(only_data.values[i], v);
            ++i;
        }

        it.setSkipGaps(false);
        const Walk all = walk(it);
        ASSERT_EQ(all.ticks.size(), range_end) << "trial " << trial;
        for (std::uint64_t t = 0; t < range_end; ++t) {
            ASSERT_EQ(all.ticks[t], t);
            const auto found = expected.find(t);
            if (found == expected.end()) {
                EXPECT_TRUE(std::isnan(all.values[t])) << t;
            } else {
                EXPECT_EQ(all.values[t], found->second) << t;
            }
        }
    }
}

TEST(StreamReader, RegionsPlaceTheGapsAndAContainedRegionMovesTheCursorBack)
{
    std::vector<double> bytes(20);
    for (int i = 0; i < 20; ++i) bytes[i] = i;
    DataBlock block{1, 160, {{0, 2, 0, 0, 0, 10}, {80 * 8, 2, 0, 0, 20, 10}}};

    struct Case {
        std::vector<TickRange> regions;
        std::vector<std::pair<std::uint64_t, bool>> range_starts; // tick, has data
    };
    const Case cases[] = {
        {{{0, 10}, {20, 30}}, {{0, true}, {10, false}, {20, true}, {30, false}}},
        {{{0, 20}, {5, 8}}, {{0, true}, {8, false}, {20, true}}},
    };
    for (const Case& c : cases) {
        StreamReader reader;
        reader.addDataBlock(block, bytes.data());
        for (const TickRange& r : c.regions) reader.addDataRegion({2, r.first, r.second});
        reader.setStreamDescriptor({1, {doubleChannel(2)}});
        const StreamIterator it = reader.createChannelIterator(2, {0, 40});
        ASSERT_EQ(it.ranges().size(), c.range_starts.size());
        for (std::size_t i = 0; i < c.range_starts.size(); ++i) {
            EXPECT_EQ(it.ranges()[i].begin.tick(), c.range_starts[i].first) << i;
            EXPECT_EQ(it.ranges()[i].begin.hasData(), c.range_starts[i].second) << i;
        }
    }
}

// Only a timestamp makes a record time-stamped: a size field alone leaves
// the channel synchronous, stepped by its block's first sample index.
TEST(StreamReader, ASizeFieldWithoutATimestampIsStillSynchronous)
{
    ChannelDescriptor sized = doubleChannel(3, 128);
    sized.m_sample_size_position = 64;
    std::vector<double> bytes(4, 1.0);
    StreamReader reader;
    reader.addDataBlock({7, 32, {{0, 3, 0, 0, 40, 2}}}, bytes.data());
    reader.setStreamDescriptor({7, {sized}});
    EXPECT_EQ(walk(reader.createChannelIterator(3, {0, ALL})).ticks,
              (std::vector<std::uint64_t>{40, 41}));
}

TEST(StreamReader, ReportsMisalignmentAndCountsThatDoNotAddUp)
{
    std::vector<double> bytes(16, 1.0);
    StreamReader reader;
    reader.addDataBlock({1, 128, {{0, 5, 0, 0, 0, 9}}}, bytes.data());
    reader.setStreamDescriptor({1, {doubleChannel(5, 76)}}); // 76 bits: 76 mod 8 is 4

    test::AssertCapture reports;
    reader.createChannelIterator(5, {0, 0});
    ASSERT_FALSE(reports.reported().empty());
    EXPECT_EQ(reports.reported().front(), "channel_descriptor->m_stride % 8 != 0 (4 != 0)");

    // Nine records announced, but the sizes in the block walk seven.
    ChannelDescriptor variable = doubleChannel(6, 64);
    variable.m_timestamp_position = 0;
    variable.m_sample_size_position = 0; // sizes read from the value bytes: all zero
    std::vector<double> zeros(7, 0.0);
    StreamReader short_reader;
    short_reader.addDataBlock({1, 56, {{0, 6, 0, 0, 0, 9}}}, zeros.data());
    short_reader.setStreamDescriptor({1, {variable}});
    reports.clear();
    short_reader.createChannelIterator(6, {0, 0});
    ASSERT_EQ(reports.reported().size(), 1u);
    EXPECT_EQ(reports.reported().front(), "iterator.getTotalSampleCount() != sample_count (7 != 9)");
}

TEST(StreamIterator, SetSkipGapsRewindsAHalfReadIterator)
{
    std::vector<double> bytes = {1, 2, 3};
    StreamReader reader;
    reader.addDataBlock({1, 24, {{0, 5, 0, 0, 0, 3}}}, bytes.data());
    reader.addDataRegion({5, 0, 3});
    reader.setStreamDescriptor({1, {doubleChannel(5)}});
    StreamIterator it = reader.createChannelIterator(5, {0, 3});
    ++it;
    ++it;
    EXPECT_EQ(it.value(), 3.0);
    it.setSkipGaps(false);
    EXPECT_EQ(it.value(), 1.0);
    ++it;
    ++it;
    ++it;
    EXPECT_FALSE(it.valid());
    test::AssertCapture reports;
    ++it; // stepping an invalid iterator is reported and does nothing
    EXPECT_EQ(reports.reported(), std::vector<std::string>{"valid()"});
}

} // namespace
