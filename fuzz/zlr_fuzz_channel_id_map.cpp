// ChannelIDMap from the host: any text is read or refused. A map whose ids
// fit the plug-in's 32 bits writes back to the same map.
#include "zlr_fuzz_harness.h"

#include "zlrapi_channel_id_map_xml.h"

#include <limits>

namespace {

void readTelegram(const char* text, std::size_t length)
{
    zlr::ChannelIDMapTelegram telegram;
    if (!telegram.parse(text, length)) {
        return;
    }
    std::map<std::uint32_t, std::uint32_t> narrow;
    for (const auto& [first, second] : telegram.m_map) {
        if (first > std::numeric_limits<std::uint32_t>::max() ||
            second > std::numeric_limits<std::uint32_t>::max()) {
            return;
        }
        narrow.emplace(static_cast<std::uint32_t>(first), static_cast<std::uint32_t>(second));
    }
    const std::string written = zlr::writeChannelIDMap(narrow);
    zlr::fuzz::expectWrittenForm(written);
    zlr::ChannelIDMapTelegram again;
    zlr::fuzz::expect(again.parse(written.data(), written.size()), "the written map reads");
    zlr::fuzz::expect(again.m_map == telegram.m_map, "the map reads back the same");
}

} // namespace

ZLR_FUZZ_READER(readTelegram)
