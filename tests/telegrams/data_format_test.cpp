#include "zlr_assert_capture.h"
#include "sim_channel_writers.h"
#include "zlrapi_channel_data_format_xml.h"
#include "zlrapi_data_format.h"
#include "xpugixml.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

std::vector<std::uint32_t> numbersOf(const zlr::StringBimap& map, std::uint32_t limit)
{
    std::vector<std::uint32_t> numbers;
    for (std::uint32_t n = 0; n <= limit; ++n) {
        try {
            map.textOf(n);
            numbers.push_back(n);
        } catch (const std::out_of_range&) {
        }
    }
    return numbers;
}

} // namespace

TEST(DataFormat, SizeCheckReportsAndThrows)
{
    zlr::test::AssertCapture recorder;
    const zlr::StringBimap doubled{{"a", 1}, {"b", 1}};
    try {
        zlr::assert_bimap_size(doubled, "TEST_MAP", 2);
        FAIL() << "no exception";
    } catch (const std::runtime_error& e) {
        EXPECT_STREQ(e.what(), "Assertion failed: TEST_MAP size 1 != 2 (actual != expected)");
    }
    ASSERT_EQ(recorder.reported().size(), 1u);
    EXPECT_EQ(recorder.reported()[0],
              "Assertion failed: TEST_MAP size 1 != 2 (actual != expected)");
    EXPECT_NO_THROW(zlr::assert_bimap_size(zlr::sampleFormatMap(), "SAMPLE_FORMAT_STRING_MAP", 19));
}

// The written forms, a format of no occurrence (nothing) among them, are the
// fuzz seeds written*.xml, which the seed replay writes back unchanged.
TEST(DataFormat, ValuesWithoutTextThrowWhenWritten)
{
    const zlr::DataFormat bad[] = {
        {13, 1, 1, 4, 0},  // the "not known yet" occurrence
        {20, 1, 1, 0, 0},  // format code past the table
        {13, 9, 1, 0, 0},  // value type past the table
        {13, 1, 1, 0, 3},  // reduced format past the table
    };
    for (const zlr::DataFormat& format : bad) {
        pugi::xml_document document;
        try {
            zlr::writeDataFormat(document, format);
            ADD_FAILURE() << "no exception for format " << format.m_sample_format;
        } catch (const std::out_of_range& e) {
            EXPECT_STREQ(e.what(), "Right side key not found");
        }
    }
}

// Every named value of every table, as the host writes it, reads back.
TEST(DataFormat, EveryNamedValueReadsBack)
{
    const auto formats = numbersOf(zlr::sampleFormatMap(), 40);
    const auto occurrences = numbersOf(zlr::sampleOccurrenceMap(), 40);
    auto value_types = numbersOf(zlr::sampleValueTypeMap(), 40);
    value_types.push_back(0);
    auto reduced = numbersOf(zlr::reducedFormatMap(), 40);
    reduced.push_back(0);
    const std::uint32_t rounds = std::max({formats.size(), occurrences.size(), value_types.size(), reduced.size()});
    for (std::uint32_t i = 0; i < rounds; ++i) {
        const zlr::DataFormat written{formats[i % formats.size()], value_types[i % value_types.size()],
                                      4294967295u - i, occurrences[i % occurrences.size()],
                                      reduced[i % reduced.size()]};
        const std::string text = zelvar_sim::writeChannelDataFormat(17 + i, written);
        zlr::ChannelDataFormatTelegram read;
        ASSERT_TRUE(read.parse(text.data(), text.size())) << text;
        EXPECT_EQ(read.m_channel_id, 17u + i);
        EXPECT_EQ(read.m_dataformat, written) << text;

        // Both forms of a channel's tree value read the same.
        for (bool wrapped : {false, true}) {
            const std::string document = zelvar_sim::writeDataFormatDocument(written, wrapped);
            zlr::DataFormat bare;
            EXPECT_EQ(zlr::parseDataFormat(document.data(), document.size(), bare), !wrapped);
            if (!wrapped) {
                EXPECT_EQ(bare, written);
            }
        }
    }
}

TEST(DataFormat, ReadingKeepsWhatItDoesNotKnow)
{
    struct Case {
        const char* text;
        bool answer;
        zlr::DataFormat expected;
    };
    const zlr::DataFormat start{7, 7, 7, 2, 1};
    const Case cases[] = {
        {R"(<DataFormat sample_occurrence="SYNC" sample_format="uint8"/>)", true, {8, 7, 1, 0, 1}},
        {R"(<DataFormat sample_occurrence="SYNC" sample_format="int8" sample_dimension="3"/>)",
         false, {7, 7, 3, 0, 1}},
        {R"(<DataFormat sample_format="double" sample_value_type="bogus" reduced_format="r_r_r"/>)",
         false, {13, 7, 1, 2, 1}},
        {R"(<DataFormat sample_occurrence="NEVER" sample_format="none" sample_value_type="video"/>)",
         true, {1, 5, 1, 3, 1}},
        {R"(<Format sample_occurrence="SYNC" sample_format="double"/>)", false, start},
        {R"(<DataFormat sample_occurrence="SYNC" sample_format="double")", false, start},
    };
    for (const Case& c : cases) {
        zlr::DataFormat format = start;
        const std::string text = c.text;
        EXPECT_EQ(zlr::parseDataFormat(text.data(), text.size(), format), c.answer) << c.text;
        EXPECT_EQ(format, c.expected) << c.text;
    }
}

TEST(DataFormat, ChannelValueNeedsIdAndFormat)
{
    const char* refused[] = {
        R"(<Channel><DataFormat sample_occurrence="SYNC" sample_format="double"/></Channel>)",
        R"(<Channel channel_id="3"/>)",
        R"(<Chanel channel_id="3"><DataFormat sample_occurrence="SYNC" sample_format="double"/></Chanel>)",
        R"(<Channel channel_id="3"><DataFormat sample_occurrence="SYNCH" sample_format="double"/></Channel>)",
    };
    for (const char* text : refused) {
        zlr::ChannelDataFormatTelegram telegram;
        EXPECT_FALSE(telegram.parse(text, std::string(text).size())) << text;
    }
}
