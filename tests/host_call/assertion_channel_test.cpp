// Reports reach the installed handler; the default lets execution go on, and
// a handler that answers 0 stops the process at a breakpoint trap.
#include "zlr_assert_capture.h"

#include <gtest/gtest.h>

#include <csignal>
#include <string>

namespace {

class AssertionChannel : public ::testing::Test {
protected:
    zlr::test::AssertCapture m_asserts;
    const zlr::test::AssertReport& last() const { return m_asserts.last(); }
};

TEST_F(AssertionChannel, CarriesExpressionMessagePathAndLine)
{
    const int line = __LINE__ + 1;
    ZLR_ASSERT(1 + 1 == 3);
    EXPECT_EQ(last().expression, "1 + 1 == 3");
    EXPECT_FALSE(last().has_message);
    EXPECT_EQ(last().path, "assertion_channel_test");
    EXPECT_EQ(last().line, line);

    ZLR_ASSERT_MSG(false, "Unable to configure property %s", "Range");
    EXPECT_EQ(last().message, "Unable to configure property Range");
}

TEST_F(AssertionChannel, FormatsMessagesIntoTwoHundredFiftySixCharacters)
{
    const std::string long_text(400, 'x');
    ZLR_ASSERT_MSG(false, "%s", long_text.c_str());
    EXPECT_EQ(last().message, std::string(255, 'x'));
}

// The equality's text stands in the stream reader's and the XML sender's tests.
TEST_F(AssertionChannel, ComparisonsNameTheirOperatorWordAndValues)
{
    const unsigned start_sample = 9;
    const unsigned end_sample = 3;
    ZLR_ASSERT_LE(start_sample, end_sample);
    EXPECT_EQ(last().expression, "start_sample <= end_sample (9 <= 3)");
    m_asserts.clear();
    ZLR_ASSERT_LE(end_sample, start_sample);
    EXPECT_TRUE(m_asserts.reported().empty());
}

TEST(AssertionChannelDefault, GoesOnWithoutEffect)
{
    zlr::setAssertionHandler(nullptr);
    ZLR_ASSERT(false);
    SUCCEED();
}

TEST(AssertionChannelDeathTest, HandlerAnsweringZeroTraps)
{
    EXPECT_EXIT(
        {
            zlr::setAssertionHandler([](const char*, const char*, const char*, int) { return 0; });
            ZLR_ASSERT(false);
            std::exit(0);
        },
        ::testing::KilledBySignal(SIGTRAP), "");
}

} // namespace
