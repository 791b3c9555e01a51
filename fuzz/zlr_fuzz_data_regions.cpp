// Answer of a data regions request: any text is read or refused, and what is read writes back
// through the simulator's writer to a fixed point.
#include "zlr_fuzz_fixed_point.h"

#include "sim_data_set_writers.h"
#include "zlrapi_data_block_xml.h"

namespace {

std::string writeText(const zlr::DataRegions& telegram)
{
    return zelvar_sim::writeDataRegions(telegram.m_regions);
}

void readTelegram(const char* text, std::size_t length)
{
    zlr::DataRegions telegram;
    if (telegram.parse(text, length)) {
        zlr::fuzz::expectFixedPoint(telegram, writeText);
    }
}

} // namespace

ZLR_FUZZ_READER(readTelegram)
