// Description of the block list of a data request: any text is read or refused, and what is read writes back
// through the simulator's writer to a fixed point.
#include "zlr_fuzz_fixed_point.h"

#include "sim_data_set_writers.h"
#include "zlrapi_data_block_xml.h"

namespace {

std::string writeText(const zlr::DataBlockList& telegram)
{
    return zelvar_sim::writeDataBlockList(telegram);
}

void readTelegram(const char* text, std::size_t length)
{
    zlr::DataBlockList telegram;
    if (telegram.parse(text, length)) {
        zlr::fuzz::expectFixedPoint(telegram, writeText, false);
    }
}

} // namespace

ZLR_FUZZ_READER(readTelegram)
