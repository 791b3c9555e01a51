#include "zlrapi_channel_config_changed_xml.h"
#include "zlrapi_software_channel_request_xml.h"

#include <gtest/gtest.h>

#include <string>

TEST(CreateSoftwareChannel, ReaderTable)
{
    const std::string format = R"(<DataFormat sample_occurrence="SYNC" sample_format="double"/>)";
    struct Case {
        std::string text;
        bool answer;
        std::size_t properties;
        std::size_t inputs;
    };
    const Case cases[] = {
        {R"(<CreateSoftwareChannel protocol_version="2.0"><ServiceName>s</ServiceName></CreateSoftwareChannel>)", false, 0, 0},
        {R"(<CreateSoftwareChannel><ServiceName>s</ServiceName></CreateSoftwareChannel>)", true, 0, 0},
        {R"(<QuerySoftwareChannelAction/>)", false, 0, 0},
        {R"(<CreateSoftwareChannel><Property name="a"><BooleanValue>True</BooleanValue></Property>)"
         R"(<Property name="b"/><Property name="c"><ScalarValue><Value>x</Value></ScalarValue></Property>)"
         R"(<Property name="d"><DoubleValue>2</DoubleValue></Property></CreateSoftwareChannel>)",
         true, 2, 0},
        {R"(<CreateSoftwareChannel><Channels><Channel channel_id="3"/><Channel channel_id="4">)" + format +
             "</Channel></Channels></CreateSoftwareChannel>",
         true, 0, 1},
        {R"(<CreateSoftwareChannel><Channels>)", false, 0, 0},
    };
    for (const Case& c : cases) {
        zlr::CreateSoftwareChannelTelegram telegram;
        EXPECT_EQ(telegram.parse(c.text.c_str()), c.answer) << c.text;
        EXPECT_EQ(telegram.m_properties.size(), c.properties) << c.text;
        EXPECT_EQ(telegram.m_input_channels.size(), c.inputs) << c.text;
    }
}

TEST(ChannelConfigChanged, ReaderTable)
{
    struct Case {
        std::string text;
        bool answer;
        std::vector<std::size_t> properties; // per channel read
    };
    const Case cases[] = {
        {R"(<ChannelConfigChanged protocol_version="1.0"><Channel id="1"/><Channel id="2"/></ChannelConfigChanged>)", true, {0, 0}},
        {R"(<ChannelConfigChanged><Channel id="1"/>note<Channel id="2"/></ChannelConfigChanged>)", false, {0}},
        {R"(<ChannelConfigChanged><Channel id="1"/><Channel/></ChannelConfigChanged>)", false, {0}},
        {R"(<ChannelConfigChanged protocol_version="0.9"/>)", false, {}},
        {R"(<UpdateConfig><Channel id="1"/></UpdateConfig>)", false, {}},
        {R"(<ChannelConfigChanged><Channel id="1"><Property name="a"><BooleanValue>True</BooleanValue><DoubleValue>1</DoubleValue></Property>)"
         R"(<Property name="b"><Bad/></Property><Property name="c"><BooleanValue>True</BooleanValue></Property></Channel></ChannelConfigChanged>)",
         true, {2}},
    };
    for (const Case& c : cases) {
        zlr::ChannelConfigChangedTelegram telegram;
        EXPECT_EQ(telegram.parse(c.text.data(), c.text.size()), c.answer) << c.text;
        std::vector<std::size_t> properties;
        for (const auto& channel : telegram.m_channels) {
            properties.push_back(channel.m_properties.size());
        }
        EXPECT_EQ(properties, c.properties) << c.text;
    }
}
