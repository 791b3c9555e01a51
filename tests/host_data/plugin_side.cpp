#include "plugin_side.h"

#include "zlrapi_data_request_xml.h"
#include "zlrapi_data_set_xml.h"
#include "zlrapi_utils.h"
#include "zlrfw_stream_reader.h"

#include <array>

namespace host_data_test {
namespace {

std::uint64_t sendXml(zelvar_sim::SimHost& host, std::uint32_t id, const std::string& text,
                      zlr::IfValue** result)
{
    return zlr::sendSyncXmlMessage(&host, id, 0, text.c_str(), text.size() + 1, result);
}

std::uint64_t sendXmlAsync(zelvar_sim::SimHost& host, std::uint32_t id, const std::string& text)
{
    auto value = zlr::createTypedValue<zlr::IfXmlValue>(&host);
    value->set(text.c_str());
    return host.messageAsync(id, 0, value.get());
}

template <std::size_t N>
std::vector<unsigned char> bytesAt(const zlr::framework::StreamIterator& it)
{
    const auto bytes = it.value<std::array<unsigned char, N>>();
    return {bytes.begin(), bytes.end()};
}

bool inGap(const zlr::framework::StreamIterator& it, std::uint64_t tick)
{
    for (const zlr::framework::SampleRange& range : it.ranges()) {
        if (!range.begin.hasData() && range.begin.tick() <= tick && tick < range.end.tick()) {
            return true;
        }
    }
    return false;
}

std::vector<WalkedSample> walk(zlr::framework::StreamIterator it, std::uint32_t value_bits)
{
    std::vector<WalkedSample> samples;
    it.setSkipGaps(false);
    for (; it.valid(); ++it) {
        WalkedSample sample;
        sample.tick = it.timestamp();
        if (!inGap(it, sample.tick)) {
            switch (value_bits) {
            case 16:
                sample.value = bytesAt<2>(it);
                break;
            case 32:
                sample.value = bytesAt<4>(it);
                break;
            default:
                sample.value = bytesAt<8>(it);
                break;
            }
        }
        samples.push_back(std::move(sample));
    }
    return samples;
}

} // namespace

std::uint64_t PluginSide::registerDataSet(std::uint64_t key,
                                          const std::vector<std::uint64_t>& channels)
{
    zlr::RegisterDataSetTelegram telegram;
    telegram.m_data_set_key = key;
    telegram.m_channels = channels;
    telegram.m_type = zlr::DATA_SET_TYPE_RELAXED;
    zlr::IfValue* result = nullptr;
    const std::uint64_t code = sendXml(m_host, zlr::HOST_DATA_SET_REGISTER, telegram.generate(), &result);
    zlr::zlrbase_api_object_ptr<zlr::IfValue> held;
    held.adopt(result);
    m_descriptors = {};
    if (result && result->getType() == zlr::VALUE_TYPE_XML) {
        auto* xml = static_cast<zlr::IfXmlValue*>(result);
        if (!m_descriptors.parse(xml->getData(), static_cast<std::size_t>(xml->getLength()))) {
            m_descriptors = {};
        }
    }
    return code;
}

std::uint64_t PluginSide::startStream(std::uint64_t key, double block_duration)
{
    zlr::StreamRequestTelegram telegram;
    telegram.m_data_set_key = key;
    telegram.m_block_duration = block_duration;
    telegram.m_has_block_duration = true;
    telegram.m_ignore_regions = true;
    telegram.m_has_ignore_regions = true;
    telegram.m_stream_type = zlr::STREAM_TYPE_SCALED;
    return sendXmlAsync(m_host, zlr::HOST_DATA_STREAM_START, telegram.generate());
}

std::uint64_t PluginSide::stopStream(std::uint64_t key)
{
    zlr::StreamStopTelegram telegram;
    telegram.m_data_set_key = key;
    return sendXmlAsync(m_host, zlr::HOST_DATA_STREAM_STOP, telegram.generate());
}

std::uint64_t PluginSide::unregisterDataSet(std::uint64_t key)
{
    auto value = zlr::createTypedValue<zlr::IfUInt64Value>(&m_host);
    value->set(key);
    return m_host.messageSync(zlr::HOST_DATA_SET_UNREGISTER, 0, value.get(), nullptr);
}

std::optional<Delivery> PluginSide::nextBlocks(std::uint64_t key,
                                               const std::map<std::uint64_t, double>& rates)
{
    return request(key, zlr::DataTransferRequestTelegram(key).generate(), rates);
}

std::optional<Delivery> PluginSide::window(std::uint64_t key, double start, double end,
                                           const std::map<std::uint64_t, double>& rates)
{
    return request(key, zlr::DataTransferRequestTelegram(key, start, end).generate(), rates);
}

std::vector<zlr::DataRegion> PluginSide::regions(std::uint64_t key, double start, double end)
{
    zlr::DataRegionsRequestTelegram telegram;
    telegram.m_data_set_key = key;
    telegram.m_start = start;
    telegram.m_end = end;
    telegram.m_has_window = true;
    zlr::IfValue* result = nullptr;
    sendXml(m_host, zlr::HOST_DATA_REGIONS_REQUEST, telegram.generate(), &result);
    zlr::zlrbase_api_object_ptr<zlr::IfValue> held;
    held.adopt(result);
    zlr::DataRegions regions;
    if (result && result->getType() == zlr::VALUE_TYPE_XML) {
        auto* xml = static_cast<zlr::IfXmlValue*>(result);
        regions.parse(xml->getData(), static_cast<std::size_t>(xml->getLength()));
    }
    return regions.m_regions;
}

std::optional<Delivery> PluginSide::request(std::uint64_t key, const std::string& telegram,
                                            const std::map<std::uint64_t, double>& rates)
{
    zlr::IfValue* result = nullptr;
    const std::uint64_t code = sendXml(m_host, zlr::HOST_DATA_REQUEST, telegram, &result);
    zlr::zlrbase_api_object_ptr<zlr::IfValue> held;
    held.adopt(result);
    if (code != zlr::RESULT_OK || !result || result->getType() != zlr::VALUE_TYPE_DATA_BLOCK_LIST) {
        return std::nullopt;
    }
    auto* list = static_cast<zlr::IfDataBlockList*>(result);
    zlr::zlrbase_api_object_ptr<zlr::IfXmlValue> description;
    description.adopt(list->getDescription());
    zlr::DataBlockList content;
    if (!content.parse(description->getData(), static_cast<std::size_t>(description->getLength()))) {
        return std::nullopt;
    }
    Delivery delivery;
    delivery.block_count = static_cast<std::size_t>(list->getBlockCount());
    if (delivery.block_count == 0 || content.m_intervals.empty()) {
        return delivery;
    }
    delivery.begin = content.m_intervals.front().m_begin;
    delivery.end = content.m_intervals.back().m_end;

    zlr::framework::StreamReader reader;
    for (std::int32_t i = 0; i < list->getBlockCount(); ++i) {
        zlr::zlrbase_api_object_ptr<zlr::IfDataBlock> block;
        block.adopt(list->getBlock(i));
        zlr::zlrbase_api_object_ptr<zlr::IfXmlValue> block_text;
        block_text.adopt(block->getDescription());
        zlr::DataBlock block_description;
        if (block_description.parse(block_text->getData(),
                                    static_cast<std::size_t>(block_text->getLength())) &&
            !block_description.m_channels.empty()) {
            reader.addDataBlock(block_description, block->getData());
        }
    }
    for (const zlr::DataRegion& region : regions(key, delivery.begin, delivery.end)) {
        reader.addDataRegion(region);
    }
    for (const zlr::StreamDescriptor& stream : m_descriptors.m_stream_descriptors) {
        reader.setStreamDescriptor(stream);
        for (const zlr::ChannelDescriptor& channel : stream.m_channels) {
            const double rate = rates.at(channel.m_channel_id);
            const zlr::framework::TickRange range{
                zlr::framework::timeToSampleIndex(delivery.begin, rate),
                zlr::framework::timeToSampleIndex(delivery.end, rate)};
            delivery.channels[channel.m_channel_id] =
                walk(reader.createChannelIterator(channel.m_channel_id, range), channel.m_size);
        }
    }
    return delivery;
}

} // namespace host_data_test
