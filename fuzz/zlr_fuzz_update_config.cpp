// UpdateConfig from the host: any text is read or refused; what is read
// writes back to a fixed point.
#include "zlr_fuzz_fixed_point.h"

#include "zlrapi_update_config_xml.h"

namespace {

std::string writeText(const zlr::UpdateConfigTelegram& telegram)
{
    return telegram.generate();
}

void readTelegram(const char* text, std::size_t length)
{
    zlr::UpdateConfigTelegram telegram;
    if (telegram.parse(text, length) && zlr::fuzz::namesOnce(telegram.m_channels)) {
        zlr::fuzz::expectFixedPoint(telegram, writeText);
    }
}

} // namespace

ZLR_FUZZ_READER(readTelegram)
