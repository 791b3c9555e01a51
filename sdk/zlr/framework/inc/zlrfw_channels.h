// The plug-in's output channels and tasks, and their owner. The host shows the
// channels, but the plug-in is their author: it keeps the tree here and
// mirrors it to the host in batches. Setters only mark; commitChanges sends.
#pragma once

#include "zlrapi_channel_id_map_xml.h"
#include "zlrapi_property_values.h"
#include "zlrapi_update_config_xml.h"
#include "zlrapi_update_plugin_channels_xml.h"
#include "zlrfw_channel_listeners.h"
#include "zlrfw_message_handler.h"
#include "zlrfw_properties.h"

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace zlr::framework {

class PluginChannel : public IfChannelPropertyChangeListener {
public:
    using NamedProperty = std::pair<std::string, std::shared_ptr<IfChannelProperty>>;

    // Made by PluginChannels::addChannel; the listener and the host are not owned.
    PluginChannel(std::uint32_t local_id, IfPluginChannelChangeListener* change_listener,
                  IfHost* host);
    // Detaches every property, so that one held elsewhere falls silent.
    ~PluginChannel() override;
    PluginChannel(const PluginChannel&) = delete;
    PluginChannel& operator=(const PluginChannel&) = delete;

    void onChannelPropertyChanged(IfChannelProperty* property) override;

    std::uint32_t getLocalId() const { return m_channel_info.m_local_id; }
    std::shared_ptr<PluginChannel> getLocalParent() const { return m_local_parent; }
    const std::vector<NamedProperty>& getProperties() const { return m_properties; }
    // What the next UpdatePluginChannels carries of this channel.
    const PluginChannelInfo& getChannelInfo() const { return m_channel_info; }

    // The first property of exactly this name, or null.
    std::shared_ptr<IfChannelProperty> getProperty(const std::string& name) const;
    // "Range", "SampleRate", "Unit", "Used" in their typed classes; null when
    // absent or of another class.
    std::shared_ptr<RangeProperty> getRangeProperty() const;
    std::shared_ptr<EditableScalarProperty> getSampleRateProperty() const;
    std::shared_ptr<EditableStringProperty> getUnitProperty() const;
    std::shared_ptr<BooleanProperty> getUsedProperty() const;

    // Setters of the channel's own fields. Each does nothing once the channel
    // has left its PluginChannels; otherwise it stores and marks the tree,
    // without comparing.
    void setDefaultName(const std::string& name);
    void setDeletable(bool deletable);
    void setValid(bool valid);
    void setDataFormat(std::uint32_t sample_occurrence, std::uint32_t sample_format,
                       std::uint32_t sample_dimension);
    void setLocalParent(const std::shared_ptr<PluginChannel>& parent);
    // A simple timebase; a synchronous channel also gets its "SampleRate" in "Hz".
    void setSimpleTimebase(double frequency);

    // Setters that go through the property of that name, made when absent.
    void setRange(const Range& range);
    void setSampleRate(const Scalar& sample_rate);
    void setUnit(const std::string& unit);

    // Binds and appends; no check for a name that exists.
    void addProperty(const std::string& name, const std::shared_ptr<IfChannelProperty>& property);
    // Replaces every property of that name.
    void replaceProperty(const std::string& name,
                         const std::shared_ptr<IfChannelProperty>& property);
    // Gives "SampleRate", "Range" and "Unit", when they are still raw
    // holders, their typed classes.
    void resolveRawProperties();

private:
    friend class PluginChannels;

    bool changeAllowed() const;
    void notifyChanged();

    IfPluginChannelChangeListener* m_change_listener;
    IfHost* m_host;
    PluginChannelInfo m_channel_info;
    std::vector<NamedProperty> m_properties;
    std::shared_ptr<PluginChannel> m_local_parent;
};

class PluginTask {
public:
    PluginTask(std::uint64_t id, IfPluginTaskChangeListener* change_listener,
               const std::shared_ptr<IfTaskWorker>& worker, std::uint64_t token);
    PluginTask(const PluginTask&) = delete;
    PluginTask& operator=(const PluginTask&) = delete;

    std::uint64_t getId() const { return m_id; }
    std::uint64_t getToken() const { return m_token; }
    bool isRegistered() const { return m_registered; }
    bool isValid() const { return m_valid; }
    double getBlockDuration() const { return m_block_duration; }
    const std::vector<std::uint64_t>& getInputChannels() const { return m_input_channels; }
    const std::vector<std::shared_ptr<PluginChannel>>& getOutputChannels() const
    {
        return m_output_channels;
    }
    std::shared_ptr<IfTaskWorker> getWorker() const { return m_worker; }

    // Each of these first takes a registered task down.
    void addInputChannel(std::uint64_t channel_id);
    void clearInputChannels();
    void addOutputChannel(const std::shared_ptr<PluginChannel>& channel);
    void removeOutputChannel(const std::shared_ptr<PluginChannel>& channel);

    // Only stores: whether the next commit may register the task.
    void setValid(bool valid) { m_valid = valid; }

private:
    friend class PluginChannels;

    IfPluginTaskChangeListener* m_change_listener;
    std::uint64_t m_id;
    std::vector<std::uint64_t> m_input_channels;
    std::vector<std::shared_ptr<PluginChannel>> m_output_channels;
    bool m_registered = false;
    std::shared_ptr<IfTaskWorker> m_worker;
    std::uint64_t m_token;
    bool m_valid = false;
    double m_block_duration = 0.0;
};

// Owns every output channel and task of a plug-in, allocates their ids,
// collects what changed, answers the host's channel and task messages, and
// decides what goes out and when. The host delivers one message at a time;
// nothing here locks.
class PluginChannels : public IfMessageHandler,
                       public IfPluginChannelChangeListener,
                       public IfPluginTaskChangeListener {
public:
    PluginChannels() = default;
    // Detaches every channel; sends nothing.
    ~PluginChannels() override;
    PluginChannels(const PluginChannels&) = delete;
    PluginChannels& operator=(const PluginChannels&) = delete;

    std::uint64_t pluginMessage(std::uint64_t id, std::uint64_t key, IfValue* value,
                                IfValue** result) override;
    void setPluginHost(IfHost* host) override;

    void onChannelChanged(PluginChannel* channel) override;
    void onChannelPropertyChanged(PluginChannel* channel,
                                  const std::string& property_name) override;
    bool isChangeAllowed() override;

    void onOutputChannelAdded(PluginTask* task, PluginChannel* channel) override;
    void onOutputChannelRemoved(PluginTask* task, PluginChannel* channel) override;
    void onTaskChanged(PluginTask* task) override;

    // A new channel with the lowest id that is neither in use nor named by
    // the host; it reaches the host at the next commit.
    std::shared_ptr<PluginChannel> addChannel();
    // The channel falls silent at once; its children become roots. The host
    // hears of it at the next commit, and only then is its id free.
    void removeChannel(const std::shared_ptr<PluginChannel>& channel);

    // The worker stays the caller's.
    std::shared_ptr<PluginTask> addTask(IfTaskWorker* worker, std::uint64_t token);
    std::shared_ptr<PluginTask> addTask(const std::shared_ptr<IfTaskWorker>& worker,
                                        std::uint64_t token);
    void removeTask(const std::shared_ptr<PluginTask>& task);

    // Sends what changed since the last commit: the channel tree, then the
    // properties of the channels that changed, then (with `register_tasks`)
    // the valid tasks that the host does not run yet.
    void commitChanges(bool register_tasks);

    // HOST_REMOVE_TASK for a registered task.
    void unregisterTask(const std::shared_ptr<PluginTask>& task);
    void unregisterAllTasks();

    IfHost* getHost() const { return m_host; }
    const std::map<std::uint32_t, std::shared_ptr<PluginChannel>>& getChannels() const
    {
        return m_channels;
    }
    const std::map<std::uint64_t, std::shared_ptr<PluginTask>>& getTasks() const
    {
        return m_tasks;
    }
    std::shared_ptr<PluginChannel> findChannel(std::uint32_t local_id) const;

private:
    std::uint64_t handleMessage(std::uint64_t id, std::uint64_t key, IfValue* value);
    std::uint64_t runWorker(std::uint64_t id, std::uint64_t key, IfValue* value);

    void registerTask(PluginTask& task);
    void takeDown(PluginTask& task);

    std::uint64_t applyConfigUpdate(const UpdateConfigTelegram& telegram);
    std::uint64_t inputChannelsChanged(const std::set<std::uint64_t>& channel_ids);

    IfHost* m_host = nullptr;
    std::map<std::uint32_t, std::shared_ptr<PluginChannel>> m_channels;
    std::set<std::uint32_t> m_used_local_ids;
    std::set<std::uint32_t> m_host_channel_ids;
    TopologyNode m_topology;
    std::map<std::uint64_t, std::shared_ptr<PluginTask>> m_tasks;
    std::uint64_t m_next_task_id = 0;
    std::map<std::uint32_t, std::uint64_t> m_channel_tasks;
    bool m_channels_changed = false;
    std::set<PluginChannel*> m_changed_property_channels;
};

} // namespace zlr::framework
