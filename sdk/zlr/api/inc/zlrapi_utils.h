// Small routines over the host call layer: typed queries of the host's value
// tree, value factories, and the two ways of sending data.
#pragma once

#include "zlrbase_api_object_ptr.h"
#include "zlrbase_host.h"
#include "zlrbase_messages.h"
#include "zlrapi_timestamp.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace zlr {

// Paths and keys of the host's value tree.
namespace tree {
inline constexpr const char* PLUGIN_HOST = "#PluginHost";
inline constexpr const char* NAME = "Name";
inline constexpr const char* VERSION_STRING = "VersionString";
inline constexpr const char* ZELVAR = "#Zelvar";
inline constexpr const char* ANALYSIS_MODE_ACTIVE = "AnalysisModeActive";
inline constexpr const char* MASTER_TIMEBASE_VALUE = "MasterTimebaseValue";
inline constexpr const char* ACQUISITION_START_TIME = "#Zelvar#AcquisitionStartTime";
inline constexpr const char* MEASUREMENT_START_TIME = "#Zelvar#MeasurementStartTime";
inline constexpr const char* ABS_XML = "AbsXML";
inline constexpr const char* CHANNELS = "#Zelvar#Channels";
inline constexpr const char* ALL_IDS = "AllIds";
inline constexpr const char* USABLE = "Usable";
inline constexpr const char* SAMPLE_RATE = "SampleRate";
inline constexpr const char* LONG_NAME = "LongName";
inline constexpr const char* DATA_FORMAT = "DataFormat";
inline constexpr const char* TIMEBASE = "Timebase";
} // namespace tree

inline constexpr std::uint64_t NO_CHANNEL_ID = ~std::uint64_t{0};

// "#Zelvar#Channels#<decimal id>".
std::string channelPath(std::uint64_t channel_id);

// Asks the host for a value and keeps it only when it has the type of T: a
// missing value or one of another type gives an empty holder. Either way the
// transient reference of the query is dropped again.
template <typename T>
zlrbase_api_object_ptr<T> queryTypedValue(IfHost* host, const char* path, const char* key)
{
    zlrbase_api_object_ptr<T> held;
    IfValue* raw = host->queryValue(path, key, 0, 0);
    if (!raw) {
        return held;
    }
    if (raw->getType() == T::TYPE_CODE) {
        held.assign(static_cast<T*>(raw));
    }
    raw->release();
    return held;
}

// The same for a value of one host channel; the all-ones id answers empty
// without asking the host.
template <typename T>
zlrbase_api_object_ptr<T> queryChannelValue(IfHost* host, std::uint64_t channel_id,
                                            const char* key)
{
    if (channel_id == NO_CHANNEL_ID) {
        return {};
    }
    return queryTypedValue<T>(host, channelPath(channel_id).c_str(), key);
}

zlrbase_api_object_ptr<IfStringValue> queryStringValue(IfHost* host, const char* path,
                                                       const char* key);
zlrbase_api_object_ptr<IfXmlValue> queryXmlValue(IfHost* host, const char* path, const char* key);
zlrbase_api_object_ptr<IfBooleanValue> queryBooleanValue(IfHost* host, const char* path,
                                                         const char* key);
zlrbase_api_object_ptr<IfUInt64Value> queryUInt64Value(IfHost* host, const char* path,
                                                       const char* key);
zlrbase_api_object_ptr<IfScalarValue> queryScalarValue(IfHost* host, const char* path,
                                                       const char* key);
zlrbase_api_object_ptr<IfErrorValue> queryErrorValue(IfHost* host, const char* path,
                                                     const char* key);

zlrbase_api_object_ptr<IfStringValue> queryChannelStringValue(IfHost* host,
                                                              std::uint64_t channel_id,
                                                              const char* key);
zlrbase_api_object_ptr<IfXmlValue> queryChannelXmlValue(IfHost* host, std::uint64_t channel_id,
                                                        const char* key);
zlrbase_api_object_ptr<IfBooleanValue> queryChannelBooleanValue(IfHost* host,
                                                                std::uint64_t channel_id,
                                                                const char* key);
zlrbase_api_object_ptr<IfScalarValue> queryChannelScalarValue(IfHost* host,
                                                              std::uint64_t channel_id,
                                                              const char* key);

// A fresh host value of type T, held once; empty when the host makes none or
// makes one of another type.
template <typename T>
zlrbase_api_object_ptr<T> createTypedValue(IfHost* host)
{
    zlrbase_api_object_ptr<T> held;
    IfValue* raw = host->createValue(T::TYPE_CODE);
    if (!raw) {
        return held;
    }
    if (raw->getType() == T::TYPE_CODE) {
        held.assign(static_cast<T*>(raw));
    }
    raw->release();
    return held;
}

// Sends `text` as an XML value with messageSync. `param_size` counts the
// terminator; a mismatch with the value's length is reported as an assertion.
std::uint64_t sendSyncXmlMessage(IfHost* host, std::uint32_t message_id, std::uint64_t key,
                                 const char* text, std::size_t param_size, IfValue** result);

// Hands one translation document to the host; true when the host took it.
bool addTranslation(IfHost* host, const char* document);

// Sends HOST_WRITE_SAMPLES: the 64-bit index of the first sample, then `size`
// bytes of samples, in one buffer. The host's answer is not looked at.
void writeSamples(IfHost* host, std::uint32_t channel_id, std::uint64_t timestamp,
                  const void* data, std::uint64_t size);

// The host's master clock now. In analysis mode, and when the host has no
// clock value, the answer is a default Timestamp, which is not valid.
Timestamp getMasterTimestamp(IfHost* host);

} // namespace zlr
