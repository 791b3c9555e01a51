#include "zlruni_logger.h"

#include "sim_log_sink.h"
#include "zlr_log_capture.h"

#include <boost/log/core/core.hpp>
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace zlr {
namespace {

// Counts how often a message was formatted.
struct CountedText {
    int* count;
};

std::ostream& operator<<(std::ostream& out, const CountedText& text)
{
    ++*text.count;
    return out << "counted";
}

TEST(Logger, FormatsNothingWithoutAnOpenRecord)
{
    int count = 0;
    std::ostringstream shown;
    {
        // A sink that refuses the level, and shows nothing once it is gone.
        zelvar_sim::LogSink sink(shown, UniLogSeverityLevel::Failure);
        ZLR_LOG(UniLogSeverityLevel::Note, CountedText{&count});
        EXPECT_EQ(count, 0);
        ZLR_LOG(UniLogSeverityLevel::Failure, CountedText{&count});
        EXPECT_EQ(count, 1);
        ZLR_LOG(UniLogSeverityLevel::Error, "above the level");
    }
    ZLR_LOG(UniLogSeverityLevel::Error, "after the sink is gone");
    EXPECT_EQ(shown.str(), "log ZLRAPI 5: counted\nlog ZLRAPI 6: above the level\n");
    {
        // A disabled core.
        test::LogCapture capture;
        boost::log::core::get()->set_logging_enabled(false);
        ZLR_LOG(UniLogSeverityLevel::Error, CountedText{&count});
        boost::log::core::get()->set_logging_enabled(true);
        EXPECT_EQ(count, 1);
        EXPECT_TRUE(capture.messages().empty());
    }
}

TEST(Logger, ThreadsKeepTheirOwnSeverity)
{
    test::LogCapture capture;
    const UniLogSeverityLevel::T levels[] = {UniLogSeverityLevel::Note,
                                             UniLogSeverityLevel::Failure,
                                             UniLogSeverityLevel::Error};
    std::vector<std::thread> threads;
    for (const auto level : levels) {
        threads.emplace_back([level]() {
            for (int i = 0; i < 2000; ++i) {
                ZLR_LOG(level, "level " << static_cast<unsigned>(level));
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    const auto messages = capture.messages();
    EXPECT_EQ(messages.size(), 6000u);
    for (const auto& [severity, text] : messages) {
        ASSERT_EQ(text, "level " + std::to_string(severity));
    }
}

} // namespace
} // namespace zlr
