// DataFormat, bare and as the value of PLUGIN_CHANNEL_DATA_FORMAT: any text
// is read or refused, and a format that reads writes back to the same one.
#include "zlr_fuzz_harness.h"

#include "sim_channel_writers.h"
#include "xpugixml.h"
#include "zlrapi_channel_data_format_xml.h"
#include "zlrapi_data_format.h"

namespace {

std::string expectSameAfterWriting(const zlr::DataFormat& format)
{
    pugi::xml_document document;
    zlr::fuzz::expect(zlr::writeDataFormat(document, format), "a read format is written");
    const std::string text = xpugi::to_xml(document, false);
    zlr::DataFormat again;
    zlr::fuzz::expect(zlr::parseDataFormat(text.data(), text.size(), again), "it reads again");
    zlr::fuzz::expect(again == format, "it reads back the same");
    return text;
}

void readTelegram(const char* text, std::size_t length)
{
    zlr::DataFormat format;
    if (zlr::parseDataFormat(text, length, format)) {
        zlr::fuzz::expectWrittenForm(expectSameAfterWriting(format));
    }
    zlr::ChannelDataFormatTelegram channel;
    if (channel.parse(text, length)) {
        expectSameAfterWriting(channel.m_dataformat);
        zlr::fuzz::expectWrittenForm(
            zelvar_sim::writeChannelDataFormat(channel.m_channel_id, channel.m_dataformat));
    }
}

} // namespace

ZLR_FUZZ_READER(readTelegram)
