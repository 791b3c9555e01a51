// The host's own channels that a software channel may read: each one's
// values in the tree ("#Zelvar#Channels#<id>": DataFormat, Timebase,
// LongName, SampleRate, Usable), the list of all ids ("#Zelvar#Channels",
// "AllIds"), and the recording that feeds it.
#pragma once

#include "sim_host.h"
#include "sim_host_service.h"
#include "sim_record_layout.h"
#include "sim_recording.h"
#include "zlrapi_data_format.h"
#include "zlrapi_data_set_descriptor_xml.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace zelvar_sim {

struct InputChannelSetup {
    std::uint64_t id = 0;
    std::string long_name;
    double sample_rate = 1000.0; // Hz
    RecordShape shape = RecordShape::synchronous;
    zlr::SampleOccurrence occurrence = zlr::SAMPLE_OCCURRENCE_SYNC;
    bool usable = true;
    // Give the "DataFormat" value wrapped in ChannelDataFormat/Channel, as
    // some hosts do.
    bool wrapped_data_format = false;
};

struct InputChannelEntry {
    InputChannelSetup setup;
    std::shared_ptr<const Recording> recording;
};

// The DataFormat the tree gives for a channel of this setup and encoding.
zlr::DataFormat dataFormatOf(const InputChannelSetup& setup, SampleEncoding encoding);

// How the channel's records lie in the blocks of a stream: doubles, whatever
// the recording stores.
zlr::ChannelDescriptor layoutOf(const InputChannelEntry& channel);

class InputChannels final : public HostService {
public:
    explicit InputChannels(SimHost& host);

    // Adds the channel and its values to the tree, and its id to "AllIds".
    // A channel of an id that exists is replaced.
    void add(const InputChannelSetup& setup, std::shared_ptr<const Recording> recording);
    // Takes the channel and its values out of the tree; false when unknown.
    bool remove(std::uint64_t id);
    void setUsable(std::uint64_t id, bool usable);

    // Ids that "AllIds" lists beside the input channels (the host's other
    // channels, such as the plug-in's outputs once the tree knows them).
    void setOtherChannelIds(std::vector<std::uint64_t> ids);

    // Null when the host has no such channel.
    const InputChannelEntry* find(std::uint64_t id) const;
    std::vector<std::uint64_t> ids() const;

    // No message belongs to the channels themselves.
    bool handleMessage(const MessageRecord&, zlr::IfValue**, std::uint64_t&) override
    {
        return false;
    }
    void describe(std::ostream& out) const override;

private:
    void publishAllIds();

    SimHost& m_host;
    std::vector<InputChannelEntry> m_channels; // ascending id
    std::vector<std::uint64_t> m_other_ids;
};

// The data format of a plain synchronous channel of double values, as the
// host reports its input channels to a plug-in's creation dialogue.
zlr::DataFormat synchronousScalar();

} // namespace zelvar_sim
