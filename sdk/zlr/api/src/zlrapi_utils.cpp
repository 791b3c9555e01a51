#include "zlrapi_utils.h"

#include "zlruni_logger.h"

#include <cstring>
#include <memory>

namespace zlr {

std::string channelPath(std::uint64_t channel_id)
{
    return std::string(tree::CHANNELS) + "#" + std::to_string(channel_id);
}

zlrbase_api_object_ptr<IfStringValue> queryStringValue(IfHost* host, const char* path,
                                                       const char* key)
{
    return queryTypedValue<IfStringValue>(host, path, key);
}

zlrbase_api_object_ptr<IfXmlValue> queryXmlValue(IfHost* host, const char* path, const char* key)
{
    return queryTypedValue<IfXmlValue>(host, path, key);
}

zlrbase_api_object_ptr<IfBooleanValue> queryBooleanValue(IfHost* host, const char* path,
                                                         const char* key)
{
    return queryTypedValue<IfBooleanValue>(host, path, key);
}

zlrbase_api_object_ptr<IfUInt64Value> queryUInt64Value(IfHost* host, const char* path,
                                                       const char* key)
{
    return queryTypedValue<IfUInt64Value>(host, path, key);
}

zlrbase_api_object_ptr<IfScalarValue> queryScalarValue(IfHost* host, const char* path,
                                                       const char* key)
{
    return queryTypedValue<IfScalarValue>(host, path, key);
}

zlrbase_api_object_ptr<IfErrorValue> queryErrorValue(IfHost* host, const char* path,
                                                     const char* key)
{
    return queryTypedValue<IfErrorValue>(host, path, key);
}

zlrbase_api_object_ptr<IfStringValue> queryChannelStringValue(IfHost* host,
                                                              std::uint64_t channel_id,
                                                              const char* key)
{
    return queryChannelValue<IfStringValue>(host, channel_id, key);
}

zlrbase_api_object_ptr<IfXmlValue> queryChannelXmlValue(IfHost* host, std::uint64_t channel_id,
                                                        const char* key)
{
    return queryChannelValue<IfXmlValue>(host, channel_id, key);
}

zlrbase_api_object_ptr<IfBooleanValue> queryChannelBooleanValue(IfHost* host,
                                                                std::uint64_t channel_id,
                                                                const char* key)
{
    return queryChannelValue<IfBooleanValue>(host, channel_id, key);
}

zlrbase_api_object_ptr<IfScalarValue> queryChannelScalarValue(IfHost* host,
                                                              std::uint64_t channel_id,
                                                              const char* key)
{
    return queryChannelValue<IfScalarValue>(host, channel_id, key);
}

std::uint64_t sendSyncXmlMessage(IfHost* host, std::uint32_t message_id, std::uint64_t key,
                                 const char* text, std::size_t param_size, IfValue** result)
{
    zlrbase_api_object_ptr<IfXmlValue> xml_msg = createTypedValue<IfXmlValue>(host);
    xml_msg->set(text);
    ZLR_ASSERT_EQ(static_cast<std::size_t>(xml_msg->getLength()), param_size - 1);
    return host->messageSync(message_id, key, xml_msg.get(), result);
}

bool addTranslation(IfHost* host, const char* document)
{
    IfValue* raw_result = nullptr;
    const std::uint64_t code = sendSyncXmlMessage(host, HOST_ADD_TRANSLATION, 0, document,
                                                  std::strlen(document) + 1, &raw_result);
    zlrbase_api_object_ptr<IfValue> result;
    result.adopt(raw_result);
    if (code != RESULT_OK && result && result->getType() == IfErrorValue::TYPE_CODE) {
        // The text is fetched as the host expects, but a refused translation
        // changes nothing for the plug-in.
        static_cast<IfErrorValue*>(result.get())->getText();
    }
    return code == RESULT_OK;
}

void writeSamples(IfHost* host, std::uint32_t channel_id, std::uint64_t timestamp,
                  const void* data, std::uint64_t size)
{
    const std::uint64_t total = size + sizeof timestamp;
    std::unique_ptr<unsigned char[]> buffer(new unsigned char[total]);
    std::memcpy(buffer.get(), &timestamp, sizeof timestamp);
    if (size != 0) {
        std::memcpy(buffer.get() + sizeof timestamp, data, size);
    }
    host->messageSyncData(HOST_WRITE_SAMPLES, channel_id, buffer.get(), total, nullptr);
}

Timestamp getMasterTimestamp(IfHost* host)
{
    // Analysis mode is asked first: it has no live clock, even when the host
    // still holds a clock value.
    const zlrbase_api_object_ptr<IfBooleanValue> analysis =
        queryBooleanValue(host, tree::ZELVAR, tree::ANALYSIS_MODE_ACTIVE);
    if (analysis && analysis->get()) {
        return {};
    }
    const zlrbase_api_object_ptr<IfXmlValue> clock =
        queryXmlValue(host, tree::ZELVAR, tree::MASTER_TIMEBASE_VALUE);
    if (!clock) {
        ZLR_LOG(UniLogSeverityLevel::Failure, "Unable to retrieve master timebase value.");
        return {};
    }
    Timestamp now;
    const std::int32_t length = clock->getLength();
    parseTimestamp(clock->getData(), length > 0 ? static_cast<std::size_t>(length) : 0, now);
    return now;
}

} // namespace zlr
