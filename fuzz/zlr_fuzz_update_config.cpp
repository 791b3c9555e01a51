// UpdateConfig from the host: any text is read or refused; what is read
// writes back to a fixed point. Constraints go out under every property of
// their name, so the check needs names that occur once per channel.
#include "zlr_fuzz_fixed_point.h"

#include "zlrapi_update_config_xml.h"

#include <set>

namespace {

bool namesOnce(const zlr::UpdateConfigTelegram& telegram)
{
    for (const zlr::ChannelConfig& channel : telegram.m_channels) {
        std::set<std::string> names;
        for (const zlr::Property& property : channel.m_properties) {
            if (!names.insert(property.getName()).second) {
                return false;
            }
        }
    }
    return true;
}

bool parseText(zlr::UpdateConfigTelegram& telegram, const std::string& text)
{
    return telegram.parse(text.data(), text.size());
}

std::string writeText(const zlr::UpdateConfigTelegram& telegram)
{
    return telegram.generate();
}

void readTelegram(const char* text, std::size_t length)
{
    zlr::UpdateConfigTelegram telegram;
    if (telegram.parse(text, length) && namesOnce(telegram)) {
        zlr::fuzz::expectFixedPoint(telegram, parseText, writeText);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    zlr::fuzz::runReader(data, size, &readTelegram);
    return 0;
}
