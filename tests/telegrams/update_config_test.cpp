#include "zlr_assert_capture.h"
#include "zlrapi_update_config_xml.h"

#include "zlr_parse_text.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace {

zlr::Property doubleProperty(const std::string& name, double value)
{
    zlr::Property property(name);
    property.setValue(value);
    return property;
}

zlr::Property scalarProperty(const std::string& name, double value, const std::string& unit)
{
    zlr::Property property(name);
    property.setValue(zlr::Scalar(value, unit));
    return property;
}

using zlr::test::parseText;

} // namespace

// The writer's exact text of every kind of constraint is the fuzz seed
// written.xml, which the seed replay writes back unchanged in every build.
TEST(UpdateConfig, WriterReportsWhatItCannotWrite)
{
    struct Case {
        const char* name;
        zlr::Constraint constraint;
        const char* constraint_name;
        const char* report;
        const char* constraints_text;
    };
    const Case cases[] = {
        {"orphan", zlr::Constraint::freeText(), "Other", "Orphaned constraints are not supported", ""},
        {"mixed", zlr::Constraint::range(doubleProperty("", 1), scalarProperty("", 2, "V")), "P",
         "Mixed ranges not supported", "<Constraints/>"},
        {"string range", zlr::Constraint::range(zlr::Property("", "a"), zlr::Property("", "b")), "P",
         "Unimplemented range type", "<Constraints/>"},
        {"no range", zlr::Constraint(zlr::Constraint::RANGE, {}), "P", "Unimplemented range type", "<Constraints/>"},
        {"unknown kind", zlr::Constraint(), "P", "Unimplemented constraint type", "<Constraints/>"},
        {"kind past the table", zlr::Constraint(static_cast<zlr::Constraint::Kind>(8), {}), "P",
         "Unimplemented constraint type", "<Constraints/>"},
    };
    for (const Case& c : cases) {
        zlr::test::AssertCapture capture;
        zlr::UpdateConfigTelegram telegram;
        telegram.getChannelConfig(1).addProperty("P", zlr::Property("", true));
        telegram.getChannelConfig(1).addConstraint(c.constraint_name, c.constraint);
        EXPECT_EQ(telegram.generate(),
                  std::string(R"(<?xml version="1.0"?><UpdateConfig protocol_version="1.0"><Channel local_id="1"><Property name="P"><BooleanValue>True</BooleanValue>)") +
                      c.constraints_text + "</Property></Channel></UpdateConfig>")
            << c.name;
        EXPECT_EQ(capture.reported(), std::vector<std::string>{c.report}) << c.name;
    }
}

TEST(UpdateConfig, KindAccessorsRefuseOtherKinds)
{
    const zlr::Constraint string_constraint = zlr::Constraint::freeText();
    const std::pair<const char*, std::function<void()>> accessors[] = {
        {"constraint is not of type range", [&] { string_constraint.getRange(); }},
        {"constraint is not of type regex", [&] { string_constraint.getRegularExpression(); }},
        {"constraint is not of type visibility", [&] { string_constraint.getVisibility(); }},
        {"constraint is not of type file path", [&] { string_constraint.getFilePath(); }},
        {"constraint is not of type channel_ids", [&] { string_constraint.getChannelIds(); }},
    };
    for (const auto& [text, call] : accessors) {
        try {
            call();
            ADD_FAILURE() << "no exception for " << text;
        } catch (const std::runtime_error& e) {
            EXPECT_STREQ(e.what(), text);
        }
    }
    const auto options = zlr::Constraint::options({zlr::Property("a", "x"), zlr::Property("b", true)});
    ASSERT_EQ(options.getParameters().size(), 2u);
    EXPECT_EQ(options.getParameters()[0].getName(), "option");
    EXPECT_EQ(options.getParameters()[1].getName(), "option");
}

TEST(UpdateConfig, ReaderTable)
{
    const std::string head = R"(<UpdateConfig protocol_version="1.0">)";
    struct Case {
        std::string body;
        bool answer;
        std::vector<std::pair<std::uint32_t, std::size_t>> channels; // local id, properties
    };
    const Case cases[] = {
        {R"(<Channel local_id="1"><Property name="a"><BooleanValue>True</BooleanValue></Property></Channel>)", true, {{1, 1}}},
        {R"(<Channel local_id="1"/>text<Channel local_id="2"/>)", false, {{1, 0}}},
        {R"(<Channel local_id="1"/><Other/>)", false, {{1, 0}}},
        {R"(<Channel/>)", false, {}},
        {R"(<Channel local_id="4294967295"/>)", false, {}},
        // A nameless property ends that channel's list; the next channel is read.
        {R"(<Channel local_id="1"><Property name="a"><BooleanValue>True</BooleanValue></Property><Property><BooleanValue>True</BooleanValue></Property><Property name="c"><BooleanValue>True</BooleanValue></Property></Channel><Channel local_id="2"><Property name="d"><BooleanValue>True</BooleanValue></Property></Channel>)",
         true, {{1, 1}, {2, 1}}},
        // Two type nodes give two properties of one name.
        {R"(<Channel local_id="1"><Property name="a"><BooleanValue>True</BooleanValue><DoubleValue>1</DoubleValue></Property></Channel>)", true, {{1, 2}}},
        // A number that does not convert ends the list as well.
        {R"(<Channel local_id="1"><Property name="a"><BooleanValue>True</BooleanValue></Property><Property name="b"><ScalarValue><Value>x</Value></ScalarValue></Property></Channel>)", true, {{1, 1}}},
        {R"(<Channel local_id="1"><Property name="a"><Nonsense/></Property></Channel>)", true, {{1, 0}}},
        // Repeated ids gather in one entry.
        {R"(<Channel local_id="1"><Property name="a"><BooleanValue>True</BooleanValue></Property></Channel><Channel local_id="1"><Property name="b"><BooleanValue>True</BooleanValue></Property></Channel>)", true, {{1, 2}}},
    };
    for (const Case& c : cases) {
        zlr::UpdateConfigTelegram telegram;
        EXPECT_EQ(parseText(telegram, head + c.body + "</UpdateConfig>"), c.answer) << c.body;
        std::vector<std::pair<std::uint32_t, std::size_t>> channels;
        for (const auto& channel : telegram.m_channels) {
            channels.emplace_back(channel.m_local_id, channel.m_properties.size());
        }
        EXPECT_EQ(channels, c.channels) << c.body;
    }
    zlr::UpdateConfigTelegram telegram;
    EXPECT_FALSE(parseText(telegram, R"(<UpdateConfig protocol_version="2.0"/>)"));
    EXPECT_FALSE(parseText(telegram, R"(<UpdatePluginChannels/>)"));
    EXPECT_TRUE(parseText(telegram, R"(<UpdateConfig/>)"));
}

TEST(UpdateConfig, ConstraintsReadByName)
{
    const std::string text =
        R"(<UpdateConfig><Channel local_id="1"><Property name="a"><DoubleValue>1</DoubleValue><Constraints>)"
        R"(<DoubleRangeConstraint max="3"/><ScalarRangeConstraint min="1" min_unit="V"/>)"
        R"(<OptionConstraint><StringValue>"x"</StringValue><Bogus/><DoubleValue/><ScalarValue><Value>q</Value></ScalarValue></OptionConstraint>)"
        R"(<ChannelIdsConstraint/><FilePathConstraint multi_select="true"/><FancyConstraint/>)"
        R"(</Constraints></Property></Channel></UpdateConfig>)";
    zlr::UpdateConfigTelegram telegram;
    ASSERT_TRUE(parseText(telegram, text));
    const auto& constraints = telegram.m_channels.at(0).m_constraints.at("a");
    ASSERT_EQ(constraints.size(), 6u);
    EXPECT_EQ(constraints[0].getRange().first.getDoubleValue(), 0.0);
    EXPECT_EQ(constraints[0].getRange().second.getDoubleValue(), 3.0);
    EXPECT_EQ(constraints[1].getRange().first.getScalarValue(), zlr::Scalar(1.0, "V"));
    EXPECT_EQ(constraints[1].getRange().second.getScalarValue(), zlr::Scalar(0.0, ""));
    ASSERT_EQ(constraints[2].getParameters().size(), 1u);
    EXPECT_EQ(constraints[2].getParameters()[0].getName(), "option");
    EXPECT_EQ(constraints[2].getParameters()[0].getStringValue(), "x");
    EXPECT_EQ(constraints[3].getChannelIds().m_max_items, 0u);
    EXPECT_EQ(constraints[3].getChannelIds().m_channel_type, "");
    EXPECT_TRUE(constraints[4].getFilePath().m_multi_select);
    EXPECT_TRUE(constraints[4].getFilePath().m_name_filters.empty());
    EXPECT_EQ(constraints[5].getKind(), zlr::Constraint::UNKNOWN);
}
