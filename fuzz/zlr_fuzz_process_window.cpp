// Start telegram of a processing step: any text is read or refused, and what is read writes back
// through the simulator's writer to a fixed point.
#include "zlr_fuzz_fixed_point.h"

#include "sim_data_set_writers.h"
#include "zlrapi_process_window_xml.h"

namespace {

bool parseText(zlr::ProcessWindowTelegram& telegram, const std::string& text)
{
    return telegram.parse(text.data(), text.size());
}

std::string writeText(const zlr::ProcessWindowTelegram& telegram)
{
    return zelvar_sim::writeProcessWindow(telegram.m_start, telegram.m_end);
}

void readTelegram(const char* text, std::size_t length)
{
    zlr::ProcessWindowTelegram telegram;
    if (parseText(telegram, std::string(text, length))) {
        zlr::fuzz::expectFixedPoint(telegram, parseText, writeText, false);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    zlr::fuzz::runReader(data, size, &readTelegram);
    return 0;
}
