// The plug-in's proxy of one host channel that a software channel reads. It
// caches the channel's data format and timebase, and reads everything else
// live from the host's value tree each time it is asked. It never writes.
#pragma once

#include "zlrapi_data_format.h"
#include "zlrapi_property_values.h"
#include "zlrapi_timebase.h"
#include "zlrbase_host.h"

#include <cstdint>
#include <string>

namespace zlr::framework {

class InputChannel {
public:
    // Touches nothing of the host yet.
    InputChannel(IfHost* host, std::uint64_t channel_id);
    virtual ~InputChannel() = default;

    std::uint64_t getChannelId() const { return m_channel_id; }
    DataFormat getDataFormat() const { return m_dataformat; }
    Timebase getTimebase() const { return m_timebase; }

    // "Usable" of the host; false when the host has no such value.
    bool isUsable() const;
    // "LongName"; empty when the host has none.
    std::string getLongName() const;
    // "SampleRate" of a synchronous channel; 0.0 with no unit otherwise, and
    // then the host is not even asked.
    Scalar getSampleRate() const;

    // Re-reads "DataFormat", bare or wrapped in ChannelDataFormat/Channel;
    // false, with the cached format untouched, when neither form reads.
    bool updateDataFormat();
    // Re-reads "Timebase"; false, with the cached timebase untouched, when it
    // is missing or does not read.
    bool updateTimebase();

private:
    std::uint64_t m_channel_id;
    DataFormat m_dataformat;
    Timebase m_timebase;
    IfHost* m_host;
};

} // namespace zlr::framework
