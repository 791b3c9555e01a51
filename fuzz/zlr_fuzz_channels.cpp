// Channels document from the host: any text is read or refused, and what is read writes back
// through the simulator's writer to a fixed point.
#include "zlr_fuzz_fixed_point.h"

#include "sim_channel_writers.h"
#include "zlrapi_channels_xml.h"

namespace {

bool parseText(zlr::ChannelsTelegram& telegram, const std::string& text)
{
    return telegram.parse(text.data(), text.size());
}

std::string writeText(const zlr::ChannelsTelegram& telegram)
{
    return zelvar_sim::writeChannels(telegram.m_channels);
}

void readTelegram(const char* text, std::size_t length)
{
    zlr::ChannelsTelegram telegram;
    if (parseText(telegram, std::string(text, length))) {
        zlr::fuzz::expectFixedPoint(telegram, parseText, writeText, true);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    zlr::fuzz::runReader(data, size, &readTelegram);
    return 0;
}
