// One software channel: a root channel with its settings, output channels
// below it, a task, and proxies of its input channels. A derived class
// overrides a few operations; the wrappers here add what every software
// channel shares (inputs from the settings, the host's data set and stream,
// the process step, restore) and keep exceptions away from the host.
#pragma once

#include "zlrapi_data_block_xml.h"
#include "zlrapi_data_set_descriptor_xml.h"
#include "zlrapi_property.h"
#include "zlrapi_software_channel_request_xml.h"
#include "zlrapi_timestamp.h"
#include "zlrapi_update_plugin_channels_xml.h"
#include "zlrfw_channel_listeners.h"
#include "zlrfw_channels.h"
#include "zlrfw_input_channel.h"
#include "zlrfw_stream_iterator.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace zlr::framework {

// The name under which every output channel carries its key within the instance.
inline constexpr const char* INSTANCE_KEY_PROPERTY = "SoftwareChannelInstanceKey";

// Old host channel id to new one; all ones for an id that no longer exists.
using ChannelIdMap = std::map<std::uint64_t, std::uint64_t>;
// Old local channel id of a saved configuration to the new local id.
using LocalIdMap = std::map<std::uint32_t, std::uint32_t>;

// Seconds of a tick count, never short: converting back reaches `ticks`.
double ticksToSeconds(std::uint64_t ticks, double frequency);

// What process is given for one step.
struct ProcessContext {
    // The host's time now; not read by the framework beyond the stream loop.
    Timestamp master_timestamp;
    // The data of this step by input channel id; a channel may be absent.
    std::map<std::uint64_t, StreamIterator> channel_iterators;
    // The span of the step, in seconds.
    double window_start = 0.0;
    double window_end = 0.0;
};

// What init gives back to the creation.
struct InitResult {
    bool success = false;
    // 2 marks the root for the details view, 1 the channel of channel_id, 0 none.
    std::int32_t detail = 0;
    std::int32_t channel_id = -1;
};

// What the host's creation request gives init.
struct InitParams {
    std::vector<InputChannelFormat> m_candidates;
    std::vector<Property> m_properties;
};

class SoftwareChannelInstance : public IfTaskWorker {
public:
    SoftwareChannelInstance() = default;
    SoftwareChannelInstance(const SoftwareChannelInstance&) = delete;
    SoftwareChannelInstance& operator=(const SoftwareChannelInstance&) = delete;

    // Task wrappers: each calls the derived operation and logs what it throws.
    void onInitTimebases(IfHost* host, std::uint64_t token) final;
    void onPrepareProcessing(IfHost* host, std::uint64_t token) final;
    void onProcess(IfHost* host, std::uint64_t token, IfXmlValue* start) final;
    void onStopProcessing(IfHost* host, std::uint64_t token) final;
    // Rebuilds the inputs, validates and commits without registering.
    void onChannelConfigChanged(IfHost* host, std::uint64_t token) override;
    void workerHook() override;
    // Removes the task and all output channels from PluginChannels.
    ~SoftwareChannelInstance() override;

    // Called once by initialise, after the root channel exists.
    virtual void initInstance(IfHost* host);
    // Called after a channel id map was applied to the settings.
    virtual void onChannelIdsMapped(const ChannelIdMap& channel_map);
    virtual void create(const std::vector<InputChannelFormat>& candidates);
    // The creation with the host's candidates and settings: configure, then create.
    virtual InitResult init(const InitParams& params);
    // Rebuilds the instance from its saved channels; usually restoreChannels
    // and restoreProperties. `channel_map` gains old to new local ids.
    virtual bool restoreInstance(const std::vector<PluginChannelInfo>& channels,
                                 LocalIdMap& channel_map) = 0;
    virtual void restoreHookFirst(const std::shared_ptr<PluginChannel>& channel);
    virtual void restoreHookSecond(const std::shared_ptr<PluginChannel>& channel);
    virtual void onConfigurationApplied();
    // Re-derives the channel from its settings and inputs; true when valid.
    virtual bool update() = 0;
    // For a non-empty list, all of the instance's channels: losing one takes all.
    virtual std::vector<std::uint32_t> getChannelsToRemove(const std::vector<std::uint32_t>& ids);
    virtual void initTimebases(IfHost* host);
    virtual void prepareProcessing(IfHost* host);
    virtual void stopProcessing(IfHost* host);
    virtual void process(ProcessContext& context, IfHost* host) = 0;
    virtual void onEventFirst();
    virtual void onEventSecond();
    virtual bool configure(const std::vector<Property>& properties);

    // Stores PluginChannels and makes the instance's task, with token 0.
    void setup(const std::shared_ptr<PluginChannels>& plugin_channels);
    // Makes the root channel and calls initInstance; an exception is logged
    // and leaves the instance without its configuration.
    void initialise(IfHost* host);

    // A new output channel under `parent`, or under the root when `parent` is
    // empty; empty when the key is taken.
    std::shared_ptr<PluginChannel> addOutputChannel(const std::string& key,
                                                    const std::shared_ptr<PluginChannel>& parent = {});
    std::shared_ptr<PluginChannel> findOutputChannel(const std::string& key) const;
    void removeOutputChannel(const std::shared_ptr<PluginChannel>& channel);
    std::shared_ptr<PluginChannel> getRootChannel() const;

    // update(), then the channels' and the task's validity; answers update().
    bool validate();
    // New proxies for the channel ids that the settings name, ascending.
    void rebuildInputChannels();
    // The host channel ids that the settings of all output channels name.
    std::set<std::uint64_t> getReferencedChannelIds() const;
    // Replaces mapped ids in the settings, then rebuilds the inputs.
    void applyChannelIdMap(const ChannelIdMap& channel_map);

    // The two steps of a restore: first the channels, found again by key or
    // made anew, then their settings.
    void restoreChannels(const std::vector<PluginChannelInfo>& channels, LocalIdMap& channel_map);
    void restoreProperties(const std::vector<PluginChannelInfo>& channels,
                           const LocalIdMap& channel_map);

    const std::vector<std::shared_ptr<PluginChannel>>& getOutputChannels() const
    {
        return m_output_channels;
    }
    const std::vector<std::shared_ptr<InputChannel>>& getInputChannels() const
    {
        return m_input_channels;
    }
    std::shared_ptr<PluginTask> getTask() const { return m_task; }
    std::shared_ptr<PluginChannels> getPluginChannels() const { return m_plugin_channels; }

protected:
    // One iterator per channel of the data set's streams over the blocks of
    // `blocks`, ranged by `begin`/`end` seconds, with gaps where `regions`
    // hold no data.
    std::map<std::uint64_t, StreamIterator>
    createStreamIterators(const std::vector<StreamDescriptor>& descriptors,
                          IfDataBlockList* blocks, double begin, double end,
                          const std::vector<DataRegion>& regions) const;
    // Everything the blocks hold, without gaps.
    std::map<std::uint64_t, StreamIterator>
    createStreamIterators(const std::vector<StreamDescriptor>& descriptors,
                          IfDataBlockList* blocks) const;

    std::vector<std::shared_ptr<PluginChannel>> m_output_channels;
    std::shared_ptr<PluginChannels> m_plugin_channels;
    std::shared_ptr<PluginTask> m_task;
    std::int32_t m_data_request_type = 0;
    double m_stream_interval = 0.0;
    std::vector<std::shared_ptr<InputChannel>> m_input_channels;
    std::uint64_t m_dataset_key = 0;
    std::optional<std::vector<StreamDescriptor>> m_stream_descriptors;
    IfHost* m_host = nullptr;

private:
    void registerDataSet(IfHost* host);
    void processWindow(IfHost* host, ProcessContext& context, double start, double end);
    void processStream(IfHost* host, ProcessContext& context);
};

} // namespace zlr::framework
