// UpdatePluginChannels as the host gives it back on a restore: any text is
// read or refused. What is read writes back to a fixed point unless its
// parents form no tree, which the writer refuses with std::domain_error.
#include "zlr_fuzz_fixed_point.h"

#include "zlrapi_update_plugin_channels_xml.h"

#include <stdexcept>

namespace {

std::string writeText(const zlr::UpdatePluginChannelsTelegram& telegram)
{
    return telegram.generate();
}

void readTelegram(const char* text, std::size_t length)
{
    zlr::UpdatePluginChannelsTelegram telegram;
    if (!telegram.parse(text, length) || !zlr::fuzz::namesOnce(telegram.m_channels)) {
        return;
    }
    try {
        zlr::sortParentFirst(telegram.m_channels);
    } catch (const std::domain_error&) {
        return;
    }
    zlr::fuzz::expectFixedPoint(telegram, writeText);
}

} // namespace

ZLR_FUZZ_READER(readTelegram)
