// Start telegram of a processing step: any text is read or refused, and what is read writes back
// through the simulator's writer to a fixed point.
#include "zlr_fuzz_fixed_point.h"

#include "sim_data_set_writers.h"
#include "zlrapi_process_window_xml.h"

namespace {

std::string writeText(const zlr::ProcessWindowTelegram& telegram)
{
    return zelvar_sim::writeProcessWindow(telegram.m_start, telegram.m_end);
}

void readTelegram(const char* text, std::size_t length)
{
    zlr::ProcessWindowTelegram telegram;
    if (telegram.parse(text, length)) {
        zlr::fuzz::expectFixedPoint(telegram, writeText, false);
    }
}

} // namespace

ZLR_FUZZ_READER(readTelegram)
