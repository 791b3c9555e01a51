#include "xpugixml.h"
#include "zlrapi_timebase.h"
#include "zlrapi_timestamp.h"
#include "sim_data_set_writers.h"
#include "sim_host.h"
#include "zlr_log_capture.h"
#include "zlrapi_utils.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <string>

namespace {

bool readTimebaseText(const std::string& text, zlr::Timebase& timebase)
{
    pugi::xml_document document;
    EXPECT_TRUE(xpugi::parse(document, text.data(), text.size())) << text;
    return zlr::readTimebase(document.document_element(), timebase);
}

} // namespace

// What the writer makes of each kind, and of none, is the channel tree's
// fuzz seed in written form.
TEST(Timebase, ReadingPicksTheFirstUsableElement)
{
    struct Case {
        const char* text;
        bool answer;
        std::uint32_t type;
        double frequency;
        double offset;
    };
    const Case cases[] = {
        {"<C><SimpleTimebase/></C>", false, 0, NAN, 0.0},
        {"<C><SimpleTimebase frequency='nan'/></C>", false, 0, NAN, 0.0},
        {"<C><TimebaseWithOffset frequency='10'/></C>", true, 2, 10.0, 0.0},
        {"<C><SimpleTimebase/><TimebaseWithOffset frequency='5' offset='1'/></C>", true, 2, 5.0, 1.0},
        {"<C><TimebaseWithOffset frequency='5' offset='1'/><SimpleTimebase frequency='8'/></C>", true, 1, 8.0, 0.0},
        {"<C><Timebase frequency='5'/></C>", false, 0, NAN, 0.0},
    };
    for (const Case& c : cases) {
        zlr::Timebase timebase;
        EXPECT_EQ(readTimebaseText(c.text, timebase), c.answer) << c.text;
        EXPECT_EQ(timebase, (zlr::Timebase{c.type, c.frequency, c.offset})) << c.text;
    }
}

TEST(Timestamp, ParsingTable)
{
    struct Case {
        const char* text;
        bool answer;
        std::uint64_t ticks;
        double frequency;
    };
    const Case cases[] = {
        {R"(<MasterTimebaseValue ticks="123456789012" frequency="1000000"/>)", true, 123456789012u, 1e6},
        {R"(<T ticks="0x10" frequency="2.5"/>)", true, 16, 2.5},
        {R"(<T ticks="5"/>)", false, 0, -1.0},
        {R"(<T ticks="abc" frequency="5"/>)", false, 0, -1.0},
        {R"(<T ticks="5" frequency="fast"/>)", false, 5, -1.0},
        {R"(<T ticks="5" frequency="1")", false, 77, 3.0},
        {"", false, 77, 3.0},
    };
    for (const Case& c : cases) {
        zlr::Timestamp timestamp{77, 3.0};
        const std::string text = c.text;
        EXPECT_EQ(zlr::parseTimestamp(text.data(), text.size(), timestamp), c.answer) << c.text;
        EXPECT_EQ(timestamp.ticks, c.ticks) << c.text;
        EXPECT_EQ(timestamp.frequency, c.frequency) << c.text;
        EXPECT_EQ(timestamp.isValid(), c.frequency > 0.0);
    }
}

TEST(MasterTimestamp, FromTheHostsTree)
{
    const std::string clock = zelvar_sim::writeMasterTimebaseValue({1234, 1e7});
    struct Case {
        const char* name;
        bool analysis_set;
        bool analysis;
        const char* clock;
        zlr::Timestamp expected;
        bool logged;
    };
    const Case cases[] = {
        {"live clock", false, false, clock.c_str(), {1234, 1e7}, false},
        {"analysis mode off", true, false, clock.c_str(), {1234, 1e7}, false},
        {"analysis mode wins", true, true, clock.c_str(), {0, 0.0}, false},
        {"no clock", false, false, nullptr, {0, 0.0}, true},
        {"empty clock", false, false, "", {0, 0.0}, false},
        {"malformed clock", false, false, "<MasterTimebaseValue ticks='x' frequency='1'/>", {0, -1.0}, false},
    };
    for (const Case& c : cases) {
        zelvar_sim::SimHost host;
        if (c.analysis_set) {
            host.tree().setBoolean("#Zelvar", "AnalysisModeActive", c.analysis);
        }
        if (c.clock) {
            host.tree().setXml("#Zelvar", "MasterTimebaseValue", c.clock);
        }
        zlr::test::LogCapture log;
        const zlr::Timestamp now = zlr::getMasterTimestamp(&host);
        EXPECT_EQ(now, c.expected) << c.name;
        EXPECT_FALSE(now.isValid() && c.expected.frequency <= 0.0) << c.name;
        std::vector<std::pair<unsigned, std::string>> expected_log;
        if (c.logged) {
            expected_log.emplace_back(5u, "Unable to retrieve master timebase value.");
        }
        EXPECT_EQ(log.messages(), expected_log) << c.name;
        EXPECT_EQ(host.valuesOutsideTree(), 0) << c.name;
    }
}
