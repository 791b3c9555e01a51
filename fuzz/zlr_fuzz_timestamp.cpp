// The host's master clock value: any text is read or refused, and a time
// that reads writes back to the same ticks and rate.
#include "zlr_fuzz_harness.h"

#include "sim_data_set_writers.h"
#include "zlrapi_timestamp.h"

#include <cmath>

namespace {

void readTelegram(const char* text, std::size_t length)
{
    zlr::Timestamp now;
    if (!zlr::parseTimestamp(text, length, now)) {
        return;
    }
    const std::string written = zelvar_sim::writeMasterTimebaseValue(now);
    zlr::fuzz::expectWrittenForm(written);
    zlr::Timestamp again;
    // A subnormal rate printed in decimal is refused by strtod's range check.
    if (!zlr::parseTimestamp(written.data(), written.size(), again)) {
        zlr::fuzz::expect(std::fpclassify(now.frequency) == FP_SUBNORMAL, "the written time reads");
        return;
    }
    zlr::fuzz::expect(again.ticks == now.ticks, "the ticks read back the same");
    zlr::fuzz::expect(again.frequency == now.frequency ||
                          (std::isnan(again.frequency) && std::isnan(now.frequency)),
                      "the rate reads back the same");
}

} // namespace

ZLR_FUZZ_READER(readTelegram)
