// Note of changed settings of host channels: any text is read or refused, and what is read writes back
// through the simulator's writer to a fixed point.
#include "zlr_fuzz_fixed_point.h"

#include "sim_channel_writers.h"
#include "zlrapi_channel_config_changed_xml.h"

namespace {

std::string writeText(const zlr::ChannelConfigChangedTelegram& telegram)
{
    return zelvar_sim::writeChannelConfigChanged(telegram.m_channels);
}

void readTelegram(const char* text, std::size_t length)
{
    zlr::ChannelConfigChangedTelegram telegram;
    if (telegram.parse(text, length)) {
        zlr::fuzz::expectFixedPoint(telegram, writeText);
    }
}

} // namespace

ZLR_FUZZ_READER(readTelegram)
