#include "zlrapi_update_plugin_channels_xml.h"

#include "zlr_parse_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>
#include <string>

namespace {

zlr::PluginChannelInfo channel(std::uint32_t id, std::uint32_t parent = zlr::NO_LOCAL_ID)
{
    zlr::PluginChannelInfo info;
    info.m_local_id = id;
    info.m_local_parent_id = parent;
    return info;
}

// A timebase whose offset compares unequal to itself.
zlr::PluginChannelInfo nanOffsetChannel(std::uint32_t id, std::uint32_t parent)
{
    zlr::PluginChannelInfo info = channel(id, parent);
    info.m_timebase = {zlr::Timebase::TYPE_WITH_OFFSET, 10.0, std::nan("")};
    return info;
}

std::vector<std::uint32_t> idsOf(const std::vector<zlr::PluginChannelInfo>& channels)
{
    std::vector<std::uint32_t> ids;
    for (const auto& info : channels) {
        ids.push_back(info.m_local_id);
    }
    return ids;
}

using zlr::test::parseText;

} // namespace

TEST(UpdatePluginChannels, ParentFirstOrder)
{
    using Ids = std::vector<std::uint32_t>;
    struct Case {
        std::vector<zlr::PluginChannelInfo> channels;
        Ids sorted; // empty with `cycle` set
        bool cycle;
    };
    const Case cases[] = {
        {{}, {}, false},
        {{channel(3, 1), channel(1, 0), channel(0), channel(5)}, {0, 5, 1, 3}, false},
        {{channel(2, 0), channel(1, 0), channel(0)}, {0, 2, 1}, false},
        {{nanOffsetChannel(2, 1), nanOffsetChannel(1, 0), channel(0)}, {0, 1, 2}, false},
        {{channel(4, 7)}, {}, true},
        {{channel(0), channel(1, 2), channel(2, 1)}, {}, true},
        {{channel(1, 1)}, {}, true},
    };
    for (const Case& c : cases) {
        if (c.cycle) {
            try {
                zlr::sortParentFirst(c.channels);
                ADD_FAILURE() << "no cycle found";
            } catch (const std::domain_error& e) {
                EXPECT_STREQ(e.what(), "Cyclic dependency between channels detected");
            }
            zlr::UpdatePluginChannelsTelegram telegram;
            telegram.m_channels = c.channels;
            EXPECT_THROW(telegram.generate(), std::domain_error);
        } else {
            EXPECT_EQ(idsOf(zlr::sortParentFirst(c.channels)), c.sorted);
        }
    }
}

TEST(UpdatePluginChannels, Descendants)
{
    const std::vector<zlr::PluginChannelInfo> tree = {channel(0), channel(1, 0), channel(2, 1), channel(3, 0),
                                                      channel(4, 2), channel(5)};
    EXPECT_EQ(zlr::findDescendants(tree, 0, false), (std::vector<std::uint32_t>{1, 3}));
    EXPECT_EQ(zlr::findDescendants(tree, 0, true), (std::vector<std::uint32_t>{1, 2, 4, 3}));
    EXPECT_EQ(zlr::findDescendants(tree, 5, true), std::vector<std::uint32_t>{});
    const std::vector<zlr::PluginChannelInfo> loop = {channel(1, 2), channel(2, 1)};
    EXPECT_EQ(zlr::findDescendants(loop, 1, false), std::vector<std::uint32_t>{2});
    EXPECT_THROW(zlr::findDescendants(loop, 1, true), std::domain_error);
}

// The exact text of a tree is the fuzz seed written.xml, which the seed
// replay writes back unchanged in every build; here the empty tree.
TEST(UpdatePluginChannels, ExactText)
{
    zlr::UpdatePluginChannelsTelegram empty;
    EXPECT_EQ(empty.generate(), R"(<?xml version="1.0"?><UpdatePluginChannels protocol_version="1.0"/>)");
}

TEST(UpdatePluginChannels, ReaderTable)
{
    const std::string head = R"(<UpdatePluginChannels protocol_version="1.0">)";
    const std::string tail = "</UpdatePluginChannels>";
    struct Case {
        std::string body;
        bool answer;
        std::size_t channels;
    };
    const Case cases[] = {
        {R"(<Channel local_id="1"/>)", true, 1},
        {R"(<Channel local_id="1"/><Channel/>)", false, 1},
        {R"(<Channel local_id="1"><DataFormat sample_occurrence="SYNC" sample_format="doubles"/></Channel>)", false, 0},
        {R"(<Channel local_id="1"><SimpleTimebase/></Channel>)", true, 1},
        {R"(<Channel local_id="1"><Property><BooleanValue>True</BooleanValue></Property></Channel><Channel local_id="2"/>)", true, 2},
        {R"(<Channel local_id="1"/><ListTopology><Foo/><Group name="g"><Channel/></Group></ListTopology>)", true, 1},
    };
    for (const Case& c : cases) {
        zlr::UpdatePluginChannelsTelegram telegram;
        EXPECT_EQ(parseText(telegram, head + c.body + tail), c.answer) << c.body;
        EXPECT_EQ(telegram.m_channels.size(), c.channels) << c.body;
    }
    zlr::UpdatePluginChannelsTelegram telegram;
    ASSERT_TRUE(parseText(telegram, head + R"(<Channel local_id="7" deletable="true"><SimpleTimebase/><Parent/></Channel><ListTopology><Foo/><Group name="g"><Channel/></Group></ListTopology>)" + tail));
    const zlr::PluginChannelInfo& info = telegram.m_channels.at(0);
    EXPECT_EQ(info.m_timebase, zlr::Timebase{});
    EXPECT_EQ(info.m_local_parent_id, zlr::NO_LOCAL_ID);
    EXPECT_TRUE(info.m_deletable);
    EXPECT_FALSE(info.m_valid);
    EXPECT_EQ(info.m_dataformat, zlr::DataFormat{});
    EXPECT_EQ(telegram.m_topology.m_children,
              (std::vector<zlr::TopologyNode>{{"g", zlr::NO_LOCAL_ID, {{"", zlr::NO_LOCAL_ID, {}}}}}));
    EXPECT_FALSE(parseText(telegram, R"(<UpdatePluginChannels protocol_version="1.1"/>)"));
    EXPECT_FALSE(parseText(telegram, R"(<UpdateConfig/>)"));
}
