#include "zlrfw_channels.h"

#include "zlrapi_channel_config_changed_xml.h"
#include "zlrapi_channel_data_format_xml.h"
#include "zlrapi_channels_xml.h"
#include "zlrapi_data_set_xml.h"
#include "zlrapi_utils.h"
#include "zlrbase_assert.h"
#include "zlrbase_messages.h"
#include "zlrfw_message_barrier.h"
#include "zlrfw_value_text.h"

#include <algorithm>
#include <optional>

namespace zlr::framework {

// ---------------------------------------------------------------- PluginChannel

PluginChannel::PluginChannel(std::uint32_t local_id,
                             IfPluginChannelChangeListener* change_listener, IfHost* host)
    : m_change_listener(change_listener), m_host(host)
{
    ZLR_ASSERT(m_host);
    m_channel_info.m_local_id = local_id;
}

PluginChannel::~PluginChannel()
{
    for (const NamedProperty& entry : m_properties) {
        entry.second->setChangeListener(nullptr);
    }
}

bool PluginChannel::changeAllowed() const
{
    return m_change_listener && m_change_listener->isChangeAllowed();
}

void PluginChannel::notifyChanged()
{
    m_change_listener->onChannelChanged(this);
}

void PluginChannel::onChannelPropertyChanged(IfChannelProperty* property)
{
    if (!m_change_listener) {
        return;
    }
    const auto entry = std::find_if(m_properties.begin(), m_properties.end(),
                                    [property](const NamedProperty& named) {
                                        return named.second.get() == property;
                                    });
    m_change_listener->onChannelPropertyChanged(
        this, entry != m_properties.end() ? entry->first : std::string());
}

std::shared_ptr<IfChannelProperty> PluginChannel::getProperty(const std::string& name) const
{
    for (const NamedProperty& entry : m_properties) {
        if (entry.first == name) {
            return entry.second;
        }
    }
    return nullptr;
}

std::shared_ptr<RangeProperty> PluginChannel::getRangeProperty() const
{
    return std::dynamic_pointer_cast<RangeProperty>(getProperty("Range"));
}

std::shared_ptr<EditableScalarProperty> PluginChannel::getSampleRateProperty() const
{
    return std::dynamic_pointer_cast<EditableScalarProperty>(getProperty("SampleRate"));
}

std::shared_ptr<EditableStringProperty> PluginChannel::getUnitProperty() const
{
    return std::dynamic_pointer_cast<EditableStringProperty>(getProperty("Unit"));
}

std::shared_ptr<BooleanProperty> PluginChannel::getUsedProperty() const
{
    return std::dynamic_pointer_cast<BooleanProperty>(getProperty("Used"));
}

void PluginChannel::setDefaultName(const std::string& name)
{
    if (!changeAllowed()) {
        return;
    }
    m_channel_info.m_default_name = name;
    notifyChanged();
}

void PluginChannel::setDeletable(bool deletable)
{
    if (!changeAllowed()) {
        return;
    }
    m_channel_info.m_deletable = deletable;
    notifyChanged();
}

void PluginChannel::setValid(bool valid)
{
    if (!changeAllowed()) {
        return;
    }
    m_channel_info.m_valid = valid;
    notifyChanged();
}

void PluginChannel::setDataFormat(std::uint32_t sample_occurrence, std::uint32_t sample_format,
                                  std::uint32_t sample_dimension)
{
    if (!changeAllowed()) {
        return;
    }
    m_channel_info.m_dataformat.m_sample_occurrence = sample_occurrence;
    m_channel_info.m_dataformat.m_sample_format = sample_format;
    m_channel_info.m_dataformat.m_sample_dimension = sample_dimension;
    notifyChanged();
}

void PluginChannel::setLocalParent(const std::shared_ptr<PluginChannel>& parent)
{
    if (!changeAllowed()) {
        return;
    }
    m_local_parent = parent;
    m_channel_info.m_local_parent_id = parent ? parent->getLocalId() : NO_LOCAL_ID;
    notifyChanged();
}

void PluginChannel::setSimpleTimebase(double frequency)
{
    if (!changeAllowed()) {
        return;
    }
    m_channel_info.m_timebase.m_type = Timebase::TYPE_SIMPLE;
    m_channel_info.m_timebase.m_frequency = frequency;
    m_channel_info.m_timebase.m_offset = 0.0;
    if (m_channel_info.m_dataformat.m_sample_occurrence == SAMPLE_OCCURRENCE_SYNC) {
        setSampleRate(Scalar(frequency, "Hz"));
    }
    notifyChanged();
}

void PluginChannel::setRange(const Range& range)
{
    if (!changeAllowed()) {
        return;
    }
    if (const std::shared_ptr<RangeProperty> property = getRangeProperty()) {
        property->setValue(range);
    } else {
        addProperty("Range", std::make_shared<RangeProperty>(range));
    }
}

void PluginChannel::setSampleRate(const Scalar& sample_rate)
{
    if (!changeAllowed()) {
        return;
    }
    if (const std::shared_ptr<EditableScalarProperty> property = getSampleRateProperty()) {
        property->setValue(sample_rate);
    } else {
        addProperty("SampleRate", std::make_shared<EditableScalarProperty>(
                                      sample_rate.m_val, sample_rate.m_unit, 1.0, 0.0));
    }
}

void PluginChannel::setUnit(const std::string& unit)
{
    if (!changeAllowed()) {
        return;
    }
    if (const std::shared_ptr<EditableStringProperty> property = getUnitProperty()) {
        property->setValue(unit);
    } else {
        addProperty("Unit", std::make_shared<EditableStringProperty>(unit));
    }
}

void PluginChannel::addProperty(const std::string& name,
                                const std::shared_ptr<IfChannelProperty>& property)
{
    if (!changeAllowed()) {
        return;
    }
    property->setChangeListener(this);
    m_properties.emplace_back(name, property);
    m_change_listener->onChannelPropertyChanged(this, name);
}

void PluginChannel::replaceProperty(const std::string& name,
                                    const std::shared_ptr<IfChannelProperty>& property)
{
    const auto property_matcher = [&name](const NamedProperty& entry) {
        return entry.first == name;
    };
    ZLR_ASSERT(getProperty(name));
    ZLR_ASSERT(std::find_if(m_properties.begin(), m_properties.end(), property_matcher) !=
               m_properties.end());
    if (!changeAllowed()) {
        return;
    }
    property->setChangeListener(this);
    for (NamedProperty& entry : m_properties) {
        if (property_matcher(entry)) {
            entry.second = property;
        }
    }
    m_change_listener->onChannelPropertyChanged(this, name);
}

void PluginChannel::resolveRawProperties()
{
    const auto resolve = [this](const std::string& name, auto make_typed) {
        const auto raw = std::dynamic_pointer_cast<RawPropertyHolder>(getProperty(name));
        if (raw) {
            replaceProperty(name, make_typed(*raw));
        }
    };
    resolve("SampleRate", [](const RawPropertyHolder& raw) {
        return std::make_shared<EditableScalarProperty>(raw);
    });
    resolve("Range", [](const RawPropertyHolder& raw) { return std::make_shared<RangeProperty>(raw); });
    resolve("Unit", [](const RawPropertyHolder& raw) {
        return std::make_shared<EditableStringProperty>(raw);
    });
}

// ------------------------------------------------------------------- PluginTask

PluginTask::PluginTask(std::uint64_t id, IfPluginTaskChangeListener* change_listener,
                       const std::shared_ptr<IfTaskWorker>& worker, std::uint64_t token)
    : m_change_listener(change_listener), m_id(id), m_worker(worker), m_token(token)
{
}

void PluginTask::addInputChannel(std::uint64_t ch_id)
{
    if (m_change_listener) {
        m_change_listener->onTaskChanged(this);
    }
    ZLR_ASSERT(std::find(m_input_channels.begin(), m_input_channels.end(), ch_id) ==
               m_input_channels.end());
    m_input_channels.push_back(ch_id);
}

void PluginTask::clearInputChannels()
{
    m_input_channels.clear();
    if (m_change_listener) {
        m_change_listener->onTaskChanged(this);
    }
}

void PluginTask::addOutputChannel(const std::shared_ptr<PluginChannel>& ch)
{
    ZLR_ASSERT(std::find(m_output_channels.begin(), m_output_channels.end(), ch) ==
               m_output_channels.end());
    if (m_change_listener) {
        m_change_listener->onOutputChannelAdded(this, ch.get());
    }
    m_output_channels.push_back(ch);
}

void PluginTask::removeOutputChannel(const std::shared_ptr<PluginChannel>& channel)
{
    const auto it = std::find(m_output_channels.begin(), m_output_channels.end(), channel);
    ZLR_ASSERT(it != m_output_channels.end());
    if (it == m_output_channels.end()) {
        return;
    }
    if (m_change_listener) {
        m_change_listener->onOutputChannelRemoved(this, channel.get());
    }
    m_output_channels.erase(it);
}

// --------------------------------------------------------------- PluginChannels

PluginChannels::~PluginChannels()
{
    for (const auto& entry : m_channels) {
        entry.second->m_change_listener = nullptr;
    }
    // A task held elsewhere must not call back into a dead owner.
    for (const auto& entry : m_tasks) {
        entry.second->m_change_listener = nullptr;
    }
}

void PluginChannels::setPluginHost(IfHost* host)
{
    m_host = host;
}

std::shared_ptr<PluginChannel> PluginChannels::findChannel(std::uint32_t local_id) const
{
    const auto found = m_channels.find(local_id);
    return found != m_channels.end() ? found->second : nullptr;
}

void PluginChannels::onChannelChanged(PluginChannel*)
{
    m_channels_changed = true;
}

void PluginChannels::onChannelPropertyChanged(PluginChannel* channel, const std::string&)
{
    m_changed_property_channels.insert(channel);
}

bool PluginChannels::isChangeAllowed()
{
    return true;
}

void PluginChannels::takeDown(PluginTask& task)
{
    if (!task.m_registered) {
        return;
    }
    m_host->messageSync(HOST_REMOVE_TASK, task.m_id, nullptr, nullptr);
    task.m_registered = false;
}

void PluginChannels::onOutputChannelAdded(PluginTask* task, PluginChannel* channel)
{
    takeDown(*task);
    m_channel_tasks[channel->getLocalId()] = task->m_id;
}

void PluginChannels::onOutputChannelRemoved(PluginTask* task, PluginChannel* channel)
{
    takeDown(*task);
    m_channel_tasks.erase(channel->getLocalId());
}

void PluginChannels::onTaskChanged(PluginTask* task)
{
    takeDown(*task);
}

std::shared_ptr<PluginChannel> PluginChannels::addChannel()
{
    std::uint32_t local_id = 0;
    while (m_used_local_ids.count(local_id) || m_host_channel_ids.count(local_id)) {
        ++local_id;
    }
    m_used_local_ids.insert(local_id);
    auto channel = std::make_shared<PluginChannel>(local_id, this, m_host);
    m_channels[local_id] = channel;
    m_channels_changed = true;
    return channel;
}

void PluginChannels::removeChannel(const std::shared_ptr<PluginChannel>& channel)
{
    if (!channel) {
        return;
    }
    channel->m_change_listener = nullptr;
    const std::uint32_t local_id = channel->getLocalId();
    const auto found = m_channels.find(local_id);
    if (found != m_channels.end() && found->second == channel) {
        m_channels.erase(found);
    }
    m_channels_changed = true;
    // The commit would pass over it anyway; dropping it here keeps the set
    // free of a pointer that may die before then.
    m_changed_property_channels.erase(channel.get());

    for (const auto& entry : m_channels) {
        if (entry.second->m_local_parent == channel) {
            entry.second->setLocalParent(nullptr);
        }
    }

    const auto owner = m_channel_tasks.find(local_id);
    if (owner != m_channel_tasks.end()) {
        const auto task_entry = m_tasks.find(owner->second);
        const std::shared_ptr<PluginTask> task =
            task_entry != m_tasks.end() ? task_entry->second : nullptr;
        ZLR_ASSERT(task);
        m_channel_tasks.erase(owner);
        if (task) {
            task->removeOutputChannel(channel);
        }
    }
}

std::shared_ptr<PluginTask> PluginChannels::addTask(IfTaskWorker* worker, std::uint64_t token)
{
    // The caller stays the owner of the worker.
    return addTask(std::shared_ptr<IfTaskWorker>(worker, [](IfTaskWorker*) {}), token);
}

std::shared_ptr<PluginTask> PluginChannels::addTask(const std::shared_ptr<IfTaskWorker>& worker,
                                                    std::uint64_t token)
{
    const std::uint64_t id = m_next_task_id++;
    auto task = std::make_shared<PluginTask>(id, this, worker, token);
    m_tasks[id] = task;
    return task;
}

void PluginChannels::removeTask(const std::shared_ptr<PluginTask>& task)
{
    if (!task) {
        return;
    }
    takeDown(*task);
    for (auto it = m_channel_tasks.begin(); it != m_channel_tasks.end();) {
        it = it->second == task->m_id ? m_channel_tasks.erase(it) : std::next(it);
    }
    m_tasks.erase(task->m_id);
}

void PluginChannels::unregisterTask(const std::shared_ptr<PluginTask>& task)
{
    if (task) {
        takeDown(*task);
    }
}

void PluginChannels::unregisterAllTasks()
{
    for (const auto& entry : m_tasks) {
        takeDown(*entry.second);
    }
}

void PluginChannels::commitChanges(bool register_tasks)
{
    ZLR_ASSERT(m_host);

    if (m_channels_changed) {
        UpdatePluginChannelsTelegram telegram;
        telegram.m_channels.reserve(m_channels.size());
        for (const auto& channel : m_channels) {
            ZLR_ASSERT(channel.second->m_channel_info.m_local_parent_id ==
                       (channel.second->m_local_parent
                            ? channel.second->m_local_parent->getLocalId()
                            : -1));
            telegram.m_channels.push_back(channel.second->m_channel_info);
        }
        telegram.m_topology = m_topology;
        const std::string text = telegram.generate();
        m_host->messageSyncData(HOST_UPDATE_CHANNELS, 0, text.c_str(), text.size() + 1, nullptr);
    }

    if (!m_changed_property_channels.empty()) {
        UpdateConfigTelegram telegram;
        for (PluginChannel* channel : m_changed_property_channels) {
            const auto found = m_channels.find(channel->getLocalId());
            if (found == m_channels.end() || found->second.get() != channel) {
                continue;
            }
            ChannelConfig& entry = telegram.getChannelConfig(channel->getLocalId());
            for (const PluginChannel::NamedProperty& property : channel->m_properties) {
                property.second->updateTelegram(entry, property.first);
            }
        }
        if (!telegram.m_channels.empty()) {
            const std::string text = telegram.generate();
            m_host->messageSyncData(HOST_UPDATE_CONFIG, 0, text.c_str(), text.size() + 1,
                                    nullptr);
        }
    }

    m_used_local_ids.clear();
    for (const auto& entry : m_channels) {
        m_used_local_ids.insert(entry.first);
    }
    m_channels_changed = false;
    m_changed_property_channels.clear();

    if (register_tasks) {
        for (const auto& entry : m_tasks) {
            registerTask(*entry.second);
        }
    }
}

void PluginChannels::registerTask(PluginTask& task)
{
    if (task.m_registered || !task.m_valid) {
        return;
    }
    AcquisitionTaskAddTelegram telegram;
    telegram.m_acquisition_task_key = task.m_id;
    telegram.m_block_duration = task.m_block_duration;
    telegram.m_input_channels = task.m_input_channels;
    for (const std::shared_ptr<PluginChannel>& channel : task.m_output_channels) {
        telegram.m_output_channels.push_back(channel->getLocalId());
    }
    // Marked first: whatever the host does with the message, it knows the task.
    task.m_registered = true;
    const std::string text = telegram.generate();
    sendSyncXmlMessage(m_host, HOST_ADD_TASK, 0, text.c_str(), text.size() + 1, nullptr);
}

std::uint64_t PluginChannels::pluginMessage(std::uint64_t id, std::uint64_t key, IfValue* value,
                                            IfValue**)
{
    try {
        return handleMessage(id, key, value);
    } catch (...) {
        return answerCaughtException(id);
    }
}

std::uint64_t PluginChannels::handleMessage(std::uint64_t id, std::uint64_t key, IfValue* value)
{
    switch (id) {
    case PLUGIN_TASK_INIT_TIMEBASES:
    case PLUGIN_TASK_PREPARE_PROCESSING:
    case PLUGIN_TASK_PROCESS:
    case PLUGIN_TASK_STOP_PROCESSING:
        return runWorker(id, key, value);

    case PLUGIN_CONFIG_UPDATE: {
        const std::optional<std::string> text = xmlValueText(value);
        UpdateConfigTelegram telegram;
        if (!text || !telegram.parse(text->c_str(), text->size())) {
            return RESULT_BAD_ARGUMENT;
        }
        return applyConfigUpdate(telegram);
    }

    case PLUGIN_CHANNEL_DATA_FORMAT: {
        const std::optional<std::string> text = xmlValueText(value);
        ChannelDataFormatTelegram telegram;
        if (!text || !telegram.parse(text->c_str(), text->size())) {
            return RESULT_BAD_ARGUMENT;
        }
        return inputChannelsChanged({telegram.m_channel_id});
    }

    case PLUGIN_CHANNEL_CONFIG_CHANGED: {
        const std::optional<std::string> text = xmlValueText(value);
        ChannelConfigChangedTelegram telegram;
        if (!text || !telegram.parse(text->c_str(), text->size())) {
            return RESULT_BAD_ARGUMENT;
        }
        std::set<std::uint64_t> channel_ids;
        for (const ChangedChannelConfig& channel : telegram.m_channels) {
            channel_ids.insert(channel.m_channel_id);
        }
        return inputChannelsChanged(channel_ids);
    }

    case PLUGIN_CHANNEL_STATUS: {
        const std::optional<std::string> text = xmlValueText(value);
        ChannelsTelegram telegram;
        if (!text || !telegram.parse(text->c_str(), text->size())) {
            return RESULT_BAD_ARGUMENT;
        }
        m_host_channel_ids.clear();
        for (const ChannelStatusEntry& channel : telegram.m_channels) {
            m_host_channel_ids.insert(static_cast<std::uint32_t>(channel.m_channel_id));
        }
        return RESULT_OK;
    }

    default:
        return RESULT_NOT_HANDLED;
    }
}

std::uint64_t PluginChannels::runWorker(std::uint64_t id, std::uint64_t key, IfValue* value)
{
    const auto found = m_tasks.find(key);
    if (found == m_tasks.end()) {
        return RESULT_NOT_HANDLED;
    }
    // Held for the call: the worker may remove the task while it runs.
    const std::shared_ptr<PluginTask> task = found->second;
    const std::shared_ptr<IfTaskWorker> worker = task->m_worker;
    if (!worker) {
        return RESULT_BAD_ARGUMENT;
    }
    switch (id) {
    case PLUGIN_TASK_INIT_TIMEBASES:
        worker->onInitTimebases(m_host, task->m_token);
        break;
    case PLUGIN_TASK_PREPARE_PROCESSING:
        worker->onPrepareProcessing(m_host, task->m_token);
        break;
    case PLUGIN_TASK_STOP_PROCESSING:
        worker->onStopProcessing(m_host, task->m_token);
        break;
    case PLUGIN_TASK_PROCESS: {
        IfXmlValue* start = value && value->getType() == VALUE_TYPE_XML
                                ? static_cast<IfXmlValue*>(value)
                                : nullptr;
        // The sample path has its own barrier: whatever escapes a step
        // answers 13, and the worker has logged what deserved it.
        try {
            worker->onProcess(m_host, task->m_token, start);
        } catch (...) {
            return RESULT_EXCEPTION;
        }
        break;
    }
    default:
        return RESULT_NOT_HANDLED;
    }
    return RESULT_OK;
}

std::uint64_t PluginChannels::applyConfigUpdate(const UpdateConfigTelegram& telegram)
{
    std::vector<std::shared_ptr<PluginTask>> affected;
    for (const ChannelConfig& entry : telegram.m_channels) {
        const auto owner = m_channel_tasks.find(entry.m_local_id);
        if (owner == m_channel_tasks.end()) {
            continue;
        }
        const auto task_entry = m_tasks.find(owner->second);
        const std::shared_ptr<PluginTask> task =
            task_entry != m_tasks.end() ? task_entry->second : nullptr;
        ZLR_ASSERT(task);
        if (task && std::find(affected.begin(), affected.end(), task) == affected.end()) {
            affected.push_back(task);
        }
    }
    for (const std::shared_ptr<PluginTask>& task : affected) {
        takeDown(*task);
    }

    UpdateConfigTelegram reply;
    for (const ChannelConfig& entry : telegram.m_channels) {
        const std::shared_ptr<PluginChannel> channel = findChannel(entry.m_local_id);
        if (!channel) {
            continue;
        }
        for (const Property& property : entry.m_properties) {
            const std::shared_ptr<IfChannelProperty> target = channel->getProperty(property.getName());
            if (!target) {
                continue;
            }
            // A refused or unreadable value keeps the old one, and the reply
            // shows the host which.
            try {
                target->update(property);
            } catch (...) {
            }
        }
        ChannelConfig& answer = reply.getChannelConfig(entry.m_local_id);
        for (const PluginChannel::NamedProperty& named : channel->m_properties) {
            named.second->updateTelegram(answer, named.first);
        }
    }
    if (!reply.m_channels.empty()) {
        const std::string text = reply.generate();
        sendSyncXmlMessage(m_host, HOST_UPDATE_CONFIG, 0, text.c_str(), text.size() + 1, nullptr);
    }

    for (const std::shared_ptr<PluginTask>& task : affected) {
        if (task->m_worker) {
            task->m_worker->onChannelConfigChanged(m_host, task->m_token);
        }
        registerTask(*task);
    }
    return RESULT_OK;
}

std::uint64_t PluginChannels::inputChannelsChanged(const std::set<std::uint64_t>& channel_ids)
{
    std::vector<std::shared_ptr<PluginTask>> affected;
    for (const auto& entry : m_tasks) {
        const std::vector<std::uint64_t>& inputs = entry.second->m_input_channels;
        if (std::any_of(inputs.begin(), inputs.end(),
                        [&](std::uint64_t id) { return channel_ids.count(id) != 0; })) {
            affected.push_back(entry.second);
        }
    }
    for (const std::shared_ptr<PluginTask>& task : affected) {
        takeDown(*task);
    }
    for (const std::shared_ptr<PluginTask>& task : affected) {
        if (task->m_worker) {
            task->m_worker->onChannelConfigChanged(m_host, task->m_token);
        }
    }
    for (const std::shared_ptr<PluginTask>& task : affected) {
        registerTask(*task);
    }
    return RESULT_OK;
}

} // namespace zlr::framework
