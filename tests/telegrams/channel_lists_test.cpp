#include "zlrapi_channel_id_map_xml.h"
#include "zlrapi_channels_xml.h"

#include "zlr_parse_text.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using zlr::test::parseText;

} // namespace

// Pairs in key order are the fuzz seed written.xml; here the empty map.
TEST(ChannelIDMap, PrintsPairsInKeyOrder)
{
    EXPECT_EQ(zlr::writeChannelIDMap({}), "<ChannelIDMap/>");
}

TEST(ChannelIDMap, ReaderTable)
{
    struct Case {
        const char* text;
        bool answer;
        std::map<std::uint64_t, std::uint64_t> map;
    };
    const Case cases[] = {
        {R"(<ChannelIDMap><ChannelMappingPair first="1" second="2"/><ChannelMappingPair first="1" second="5"/></ChannelIDMap>)",
         true, {{1, 5}}},
        {R"(<ChannelIDMap><ChannelMappingPair first="18446744073709551614"/><Other first="3" second="4"/></ChannelIDMap>)",
         true, {{18446744073709551614u, 0}}},
        {R"(<ChannelIDMap/>)", true, {}},
        {R"(<ChannelIdMap><ChannelMappingPair first="1" second="2"/></ChannelIdMap>)", false, {}},
        {R"(<ChannelIDMap><ChannelMappingPair first="1" second="2"/>)", false, {}},
    };
    for (const Case& c : cases) {
        zlr::ChannelIDMapTelegram telegram;
        telegram.m_map[42] = 42;
        EXPECT_EQ(parseText(telegram, c.text), c.answer) << c.text;
        EXPECT_EQ(telegram.m_map, c.map) << c.text;
    }
}

TEST(Channels, ReaderTable)
{
    struct Case {
        const char* text;
        bool answer;
        std::vector<zlr::ChannelStatusEntry> entries;
    };
    const Case cases[] = {
        {R"(<Channels><Channel channel_id="4" status="ok"/><Other/><Channel channel_id="0x10"/></Channels>)",
         true, {{4, "ok"}, {16, ""}}},
        {R"(<Channels><Channel channel_id="4"/><Channel/><Channel channel_id="5"/></Channels>)",
         false, {{4, ""}}},
        {R"(<Channels><Channel channel_id="18446744073709551615"/></Channels>)", false, {}},
        {R"(<ChannelList><Channel channel_id="4"/></ChannelList>)", false, {}},
        {"", false, {}},
    };
    for (const Case& c : cases) {
        zlr::ChannelsTelegram telegram;
        EXPECT_EQ(parseText(telegram, c.text), c.answer) << c.text;
        EXPECT_EQ(telegram.m_channels, c.entries) << c.text;
    }
}
