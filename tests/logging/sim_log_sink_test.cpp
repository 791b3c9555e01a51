#include "sim_log_sink.h"
#include "zlruni_logger.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

TEST(SimulatorLogSink, ShowsRecordsFromItsLevelUntilRemoved)
{
    std::ostringstream shown;
    {
        zelvar_sim::LogSink sink(shown, zlr::UniLogSeverityLevel::Failure);
        ZLR_LOG(zlr::UniLogSeverityLevel::Note, "Warning: dropped");
        ZLR_LOG(zlr::UniLogSeverityLevel::Failure, "Unknown property data type " << 99);
        ZLR_LOG(zlr::UniLogSeverityLevel::Error, "property n is not of type int");
    }
    ZLR_LOG(zlr::UniLogSeverityLevel::Error, "after the sink is gone");
    EXPECT_EQ(shown.str(), "log ZLRAPI 5: Unknown property data type 99\n"
                           "log ZLRAPI 6: property n is not of type int\n");
}

} // namespace
