// UpdatePluginChannels as the host gives it back on a restore: any text is
// read or refused. What is read writes back to a fixed point unless its
// parents form no tree, which the writer refuses with std::domain_error.
#include "zlr_fuzz_fixed_point.h"

#include "zlrapi_update_plugin_channels_xml.h"

#include <set>
#include <stdexcept>

namespace {

bool namesOnce(const zlr::UpdatePluginChannelsTelegram& telegram)
{
    for (const zlr::PluginChannelInfo& channel : telegram.m_channels) {
        std::set<std::string> names;
        for (const zlr::Property& property : channel.m_properties) {
            if (!names.insert(property.getName()).second) {
                return false;
            }
        }
    }
    return true;
}

bool parseText(zlr::UpdatePluginChannelsTelegram& telegram, const std::string& text)
{
    return telegram.parse(text.data(), text.size());
}

std::string writeText(const zlr::UpdatePluginChannelsTelegram& telegram)
{
    return telegram.generate();
}

void readTelegram(const char* text, std::size_t length)
{
    zlr::UpdatePluginChannelsTelegram telegram;
    if (!telegram.parse(text, length) || !namesOnce(telegram)) {
        return;
    }
    try {
        zlr::sortParentFirst(telegram.m_channels);
    } catch (const std::domain_error&) {
        return;
    }
    zlr::fuzz::expectFixedPoint(telegram, parseText, writeText);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    zlr::fuzz::runReader(data, size, &readTelegram);
    return 0;
}
