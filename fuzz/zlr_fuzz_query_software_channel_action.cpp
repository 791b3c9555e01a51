// Question whether the selected inputs allow a software channel; the reader takes the text up to its first zero byte: any text is read or refused, and what is read writes back
// through the simulator's writer to a fixed point.
#include "zlr_fuzz_fixed_point.h"

#include "sim_software_channel_telegrams.h"
#include "zlrapi_software_channel_request_xml.h"

namespace {

bool parseText(zlr::QuerySoftwareChannelActionTelegram& telegram, const std::string& text)
{
    return telegram.parse(text.c_str());
}

std::string writeText(const zlr::QuerySoftwareChannelActionTelegram& telegram)
{
    return zelvar_sim::writeQuerySoftwareChannelAction(telegram.m_input_channels);
}

void readTelegram(const char* text, std::size_t length)
{
    zlr::QuerySoftwareChannelActionTelegram telegram;
    if (parseText(telegram, std::string(text, length))) {
        zlr::fuzz::expectFixedPoint(telegram, parseText, writeText, true);
    }
}

} // namespace

ZLR_FUZZ_READER(readTelegram)
