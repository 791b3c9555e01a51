// Channels document from the host: any text is read or refused, and what is read writes back
// through the simulator's writer to a fixed point.
#include "zlr_fuzz_fixed_point.h"

#include "sim_channel_writers.h"
#include "zlrapi_channels_xml.h"

namespace {

std::string writeText(const zlr::ChannelsTelegram& telegram)
{
    return zelvar_sim::writeChannels(telegram.m_channels);
}

void readTelegram(const char* text, std::size_t length)
{
    zlr::ChannelsTelegram telegram;
    if (telegram.parse(text, length)) {
        zlr::fuzz::expectFixedPoint(telegram, writeText);
    }
}

} // namespace

ZLR_FUZZ_READER(readTelegram)
