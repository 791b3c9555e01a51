#include "zlr_assert_capture.h"
#include "sim_data_set_writers.h"
#include "zlrapi_data_block_xml.h"
#include "zlrapi_data_set_descriptor_xml.h"

#include "zlr_parse_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>

namespace {

using zlr::test::parseText;

zlr::StreamDescriptors randomDescriptors(std::mt19937_64& random)
{
    zlr::StreamDescriptors descriptors;
    descriptors.m_data_set_key = random();
    descriptors.m_stream_descriptors.resize(random() % 4);
    for (auto& stream : descriptors.m_stream_descriptors) {
        stream.m_stream_id = random();
        stream.m_channels.resize(random() % 5);
        for (auto& channel : stream.m_channels) {
            channel.m_channel_id = random();
            channel.m_dimension = static_cast<std::uint32_t>(random());
            channel.m_size = static_cast<std::uint32_t>(random());
            channel.m_stride = static_cast<std::uint32_t>(random());
            channel.m_sample_type = static_cast<zlr::SampleType>(random() % 8);
            channel.m_scale_factor = std::ldexp(double(random() >> 12), -30);
            channel.m_scale_offset = -std::ldexp(double(random() >> 12), -40);
            if (random() & 1) {
                channel.m_timestamp_position = static_cast<std::int32_t>(random());
            }
            if (random() & 1) {
                channel.m_sample_size_position = static_cast<std::int32_t>(random() >> 40);
            }
        }
    }
    return descriptors;
}

} // namespace

TEST(StreamDescriptors, HostDescriptorsReadBack)
{
    std::mt19937_64 random(13);
    for (int round = 0; round < 100; ++round) {
        const zlr::StreamDescriptors written = randomDescriptors(random);
        zlr::StreamDescriptors read;
        ASSERT_TRUE(parseText(read, zelvar_sim::writeStreamDescriptors(written)));
        EXPECT_EQ(read.m_data_set_key, written.m_data_set_key);
        EXPECT_EQ(read.m_stream_descriptors, written.m_stream_descriptors);
    }
}

TEST(StreamDescriptors, ReaderTable)
{
    const std::string head = R"(<D data_set_key="0x2A"><StreamDescriptor stream_id="3">)";
    const std::string tail = "</StreamDescriptor></D>";
    const std::string good =
        R"(channel_id="5" offset="0" dimension="1" size="64" stride="064" type="double")";
    struct Case {
        std::string channel;
        bool answer;
    };
    const Case cases[] = {
        {"<Channel " + good + "/>", true},
        {"<Channel " + good + "><Scaling><Linear factor='2' offset='1'/></Scaling></Channel>", true},
        {"<Channel " + good + "><Scaling/></Channel>", true},
        {"<Channel " + good + "><Scaling><Quadratic/></Scaling></Channel>", false},
        {"<Channel " + good + "><Scaling><Linear/><Linear/></Scaling></Channel>", false},
        {"<Channel " + good + "><Timestamp position='64'/></Channel>", true},
        {"<Channel " + good + "><Timestamp/></Channel>", false},
        {"<Channel " + good + "><Samplesize position='x'/></Channel>", false},
        {"<Channel " + good + "><Samplesize position='4294967296'/></Channel>", false},
        {R"(<Channel channel_id="5" dimension="1" size="64" stride="64" type="double"/>)", false},
        {R"(<Channel channel_id="-" offset="0" dimension="1" size="64" stride="64" type="double"/>)", false},
        {R"(<Channel channel_id="5" offset="0" dimension="1" size="64" stride="4294967296" type="double"/>)", false},
        {R"(<Channel channel_id="99999999999999999999" offset="0" dimension="1" size="64" stride="64" type="double"/>)", false},
    };
    for (const Case& c : cases) {
        zlr::StreamDescriptors read;
        EXPECT_EQ(parseText(read, head + c.channel + tail), c.answer) << c.channel;
        if (c.answer) {
            EXPECT_EQ(read.m_data_set_key, 42u);
            ASSERT_EQ(read.m_stream_descriptors.size(), 1u);
            ASSERT_EQ(read.m_stream_descriptors[0].m_channels.size(), 1u);
            EXPECT_EQ(read.m_stream_descriptors[0].m_channels[0].m_stride, 52u);
        }
    }
    zlr::StreamDescriptors read;
    EXPECT_FALSE(parseText(read, R"(<D><StreamDescriptor stream_id="3"/></D>)"));
    EXPECT_FALSE(parseText(read, R"(<D data_set_key="1"><StreamDescriptor/></D>)"));
}

TEST(StreamDescriptors, UnknownSampleTypeIsABlob)
{
    zlr::test::AssertCapture recorder;
    const std::string text =
        R"(<D data_set_key="1"><StreamDescriptor stream_id="3"><Channel channel_id="5" offset="0" dimension="1" size="32" stride="32" type="float"/></StreamDescriptor></D>)";
    zlr::StreamDescriptors read;
    ASSERT_TRUE(parseText(read, text));
    EXPECT_EQ(read.m_stream_descriptors.at(0).m_channels.at(0).m_sample_type, zlr::SAMPLE_TYPE_BLOB);
    ASSERT_EQ(recorder.reported().size(), 1u);
    EXPECT_EQ(recorder.reported()[0], "Unsupported Sample Type");
}

TEST(DataBlocks, HostDescriptionsReadBack)
{
    std::mt19937_64 random(17);
    for (int round = 0; round < 100; ++round) {
        zlr::DataBlockList list;
        list.m_block_count = static_cast<std::uint32_t>(random());
        list.m_intervals.resize(random() % 4);
        for (auto& interval : list.m_intervals) {
            interval = {std::ldexp(double(random()), -40), std::ldexp(double(random()), -20)};
        }
        list.m_regions.resize(random() % 4);
        for (auto& region : list.m_regions) {
            region = {random(), random(), random()};
        }
        zlr::DataBlockList list_read;
        ASSERT_TRUE(parseText(list_read, zelvar_sim::writeDataBlockList(list)));
        EXPECT_EQ(list_read.m_block_count, list.m_block_count);
        EXPECT_EQ(list_read.m_intervals, list.m_intervals);
        EXPECT_EQ(list_read.m_regions, list.m_regions);

        zlr::DataRegions regions_read;
        ASSERT_TRUE(parseText(regions_read, zelvar_sim::writeDataRegions(list.m_regions)));
        EXPECT_EQ(regions_read.m_regions, list.m_regions);

        zlr::DataBlock block;
        block.m_stream_id = random();
        block.m_data_size = random();
        block.m_channels.resize(random() % 5);
        for (auto& channel : block.m_channels) {
            channel = {static_cast<std::uint32_t>(random()), random(), random(), random(), random(), random()};
        }
        zlr::DataBlock block_read;
        ASSERT_TRUE(parseText(block_read, zelvar_sim::writeDataBlock(block)));
        EXPECT_EQ(block_read.m_stream_id, block.m_stream_id);
        EXPECT_EQ(block_read.m_data_size, block.m_data_size);
        EXPECT_EQ(block_read.m_channels, block.m_channels);
    }
}

TEST(DataBlocks, ReaderTable)
{
    zlr::DataBlockList list;
    EXPECT_FALSE(parseText(list, "<L/>"));
    EXPECT_FALSE(parseText(list, R"(<L block_count="x"/>)"));
    EXPECT_FALSE(parseText(list, R"(<L block_count="4294967296"/>)"));
    EXPECT_FALSE(parseText(list, R"(<L block_count="2"><Intervals><Interval begin="1" end="2"/><Interval begin="1"/></Intervals></L>)"));
    EXPECT_EQ(list.m_block_count, 2u);
    EXPECT_EQ(list.m_intervals, (std::vector<zlr::DataInterval>{{1.0, 2.0}}));
    EXPECT_FALSE(parseText(list, R"(<L block_count="2"><InvalidRegions><DataRegion channel_id="1" begin="2" end="z"/></InvalidRegions></L>)"));
    EXPECT_TRUE(parseText(list, R"(<L block_count="2"><Interval begin="1" end="2"/></L>)"));
    EXPECT_TRUE(list.m_intervals.empty());

    zlr::DataBlock block;
    EXPECT_FALSE(block.parse("", 0));
    EXPECT_FALSE(parseText(block, "<B"));
    EXPECT_TRUE(parseText(block, R"(<B><Channel/><Channel count="4"/></B>)"));
    EXPECT_EQ(block.m_channels, (std::vector<zlr::DataBlockChannel>{{}, {0, 0, 0, 0, 0, 4}}));

    zlr::DataRegions regions;
    EXPECT_TRUE(parseText(regions, R"(<R><DataRegion channel_id="1" begin="2" end="3"/><X/></R>)"));
    EXPECT_EQ(regions.m_regions, (std::vector<zlr::DataRegion>{{1, 2, 3}}));
    EXPECT_FALSE(parseText(regions, R"(<R><DataRegion channel_id="1" begin="2"/></R>)"));
}
