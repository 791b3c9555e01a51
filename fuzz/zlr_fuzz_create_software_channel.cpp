// Request to create a software channel; the reader takes the text up to its first zero byte: any text is read or refused, and what is read writes back
// through the simulator's writer to a fixed point.
#include "zlr_fuzz_fixed_point.h"

#include "sim_software_channel_telegrams.h"
#include "zlrapi_software_channel_request_xml.h"

namespace {

bool parseText(zlr::CreateSoftwareChannelTelegram& telegram, const std::string& text)
{
    return telegram.parse(text.c_str());
}

std::string writeText(const zlr::CreateSoftwareChannelTelegram& telegram)
{
    return zelvar_sim::writeCreateSoftwareChannel(telegram.m_service_name, telegram.m_properties, telegram.m_input_channels);
}

void readTelegram(const char* text, std::size_t length)
{
    zlr::CreateSoftwareChannelTelegram telegram;
    if (parseText(telegram, std::string(text, length))) {
        zlr::fuzz::expectFixedPoint(telegram, parseText, writeText, true);
    }
}

} // namespace

ZLR_FUZZ_READER(readTelegram)
