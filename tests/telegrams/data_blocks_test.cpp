#include "zlr_assert_capture.h"
#include "zlrapi_data_block_xml.h"
#include "zlrapi_data_set_descriptor_xml.h"

#include "zlr_parse_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace {

using zlr::test::parseText;

} // namespace

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
    EXPECT_TRUE(parseText(block, R"(<B><Channel/><Channel count="4"/></B>)"));
    EXPECT_EQ(block.m_channels, (std::vector<zlr::DataBlockChannel>{{}, {0, 0, 0, 0, 0, 4}}));

    zlr::DataRegions regions;
    EXPECT_TRUE(parseText(regions, R"(<R><DataRegion channel_id="1" begin="2" end="3"/><X/></R>)"));
    EXPECT_EQ(regions.m_regions, (std::vector<zlr::DataRegion>{{1, 2, 3}}));
    EXPECT_FALSE(parseText(regions, R"(<R><DataRegion channel_id="1" begin="2"/></R>)"));
}
