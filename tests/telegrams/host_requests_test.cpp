#include "sim_channel_writers.h"
#include "sim_software_channel_telegrams.h"
#include "zlr_property_compare.h"
#include "zlrapi_channel_config_changed_xml.h"
#include "zlrapi_software_channel_request_xml.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace {

std::vector<zlr::Property> randomProperties(std::mt19937& random)
{
    std::vector<zlr::Property> properties;
    for (unsigned i = random() % 5; i > 0; --i) {
        const std::string name = "p" + std::to_string(random() % 100);
        switch (random() % 4) {
        case 0:
            properties.emplace_back(name, " text & <" + std::to_string(random()) + "> ");
            break;
        case 1:
            properties.emplace_back(name, static_cast<bool>(random() & 1));
            break;
        case 2: {
            zlr::Property range(name);
            range.setValue(zlr::Range(double(random()) / 3, 1e-300, "Hz", "kHz"));
            properties.push_back(range);
            break;
        }
        default: {
            zlr::Property ids(name);
            ids.setChannelIDList(zlr::ValueList<std::uint64_t>{{random(), 18446744073709551615u}});
            properties.push_back(ids);
            break;
        }
        }
    }
    return properties;
}

} // namespace

TEST(CreateSoftwareChannel, HostRequestsReadBack)
{
    std::mt19937 random(47);
    for (int round = 0; round < 100; ++round) {
        const std::vector<zlr::Property> properties = randomProperties(random);
        std::vector<zlr::InputChannelFormat> inputs(random() % 4);
        for (std::size_t i = 0; i < inputs.size(); ++i) {
            inputs[i].m_channel_id = static_cast<std::uint32_t>(i * 10 + random() % 10);
            inputs[i].m_dataformat = {13, 1, 1, static_cast<std::uint32_t>(random() % 4), 0};
        }
        const std::string service = "  frequency_measurement\n";
        const std::string text = zelvar_sim::writeCreateSoftwareChannel(service, properties, inputs);
        zlr::CreateSoftwareChannelTelegram read;
        ASSERT_TRUE(read.parse(text.c_str())) << text;
        EXPECT_EQ(read.m_service_name, "frequency_measurement");
        EXPECT_EQ(read.m_input_channels, inputs);
        ASSERT_EQ(read.m_properties.size(), properties.size());
        for (std::size_t i = 0; i < properties.size(); ++i) {
            EXPECT_TRUE(zlr::test::sameProperty(read.m_properties[i], properties[i]));
        }
    }
}

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

TEST(ChannelConfigChanged, HostNotesReadBack)
{
    std::mt19937 random(53);
    for (int round = 0; round < 100; ++round) {
        std::vector<zlr::ChangedChannelConfig> channels(random() % 4);
        for (auto& channel : channels) {
            channel.m_channel_id = (std::uint64_t{random()} << 20) ^ random();
            channel.m_properties = randomProperties(random);
        }
        const std::string text = zelvar_sim::writeChannelConfigChanged(channels);
        zlr::ChannelConfigChangedTelegram read;
        ASSERT_TRUE(read.parse(text.data(), text.size())) << text;
        ASSERT_EQ(read.m_channels.size(), channels.size());
        for (std::size_t c = 0; c < channels.size(); ++c) {
            EXPECT_EQ(read.m_channels[c].m_channel_id, channels[c].m_channel_id);
            ASSERT_EQ(read.m_channels[c].m_properties.size(), channels[c].m_properties.size());
            for (std::size_t p = 0; p < channels[c].m_properties.size(); ++p) {
                EXPECT_TRUE(zlr::test::sameProperty(read.m_channels[c].m_properties[p], channels[c].m_properties[p]));
            }
        }
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
