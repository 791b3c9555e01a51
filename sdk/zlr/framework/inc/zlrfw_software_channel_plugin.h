// A plug-in that offers one kind of software channel: SoftwareChannelPluginBase
// registers it with the host and owns the channels; SoftwareChannelPlugin<T>
// holds the instances of T and answers the messages that create, restore,
// remap and remove them. A concrete plug-in supplies its registration data,
// its translations and its filter of input candidates.
#pragma once

#include "zlrapi_channel_id_map_xml.h"
#include "zlrapi_channels_xml.h"
#include "zlrapi_register_software_channel_xml.h"
#include "zlrapi_software_channel_request_xml.h"
#include "zlrapi_software_channel_response_xml.h"
#include "zlrapi_update_plugin_channels_xml.h"
#include "zlrbase_messages.h"
#include "zlrfw_channels.h"
#include "zlrfw_custom_request_handler.h"
#include "zlrfw_plugin_base.h"
#include "zlrfw_software_channel_instance.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

namespace zlr::framework {

class SoftwareChannelPluginBase : public PluginBase {
public:
    // Makes PluginChannels and the custom request handler and registers both
    // as message handlers.
    SoftwareChannelPluginBase();
    ~SoftwareChannelPluginBase() override;

    // Checks the host, registers resources and the software channel.
    std::uint64_t init(std::string& error_text) override;
    // Takes all tasks down and unregisters the software channel.
    bool deinit() override;

    // Hands the plug-in's translation catalogues to the host.
    virtual void registerTranslations();
    virtual void registerResources();
    // Appends the id of every candidate that cannot be an input to `invalid`;
    // true when the candidates allow a channel.
    virtual bool checkInputChannelsFormat(const std::vector<InputChannelFormat>& candidates,
                                          std::vector<std::uint64_t>& invalid);
    virtual RegisterSoftwareChannelTelegram getSoftwareChannelInfo() = 0;
    // PLUGIN_EVENT: true when the code was acted on.
    virtual bool onEvent(std::uint32_t code);

    std::shared_ptr<PluginChannels> getPluginChannels() const { return m_plugin_channels; }

protected:
    // The registration telegram, as sent at init and at event 14.
    std::string registrationTelegram();
    // The host's list of existing channel ids ("AllIds"); none when it
    // cannot be read.
    std::optional<std::vector<std::uint64_t>> queryExistingChannelIds();

    std::shared_ptr<PluginChannels> m_plugin_channels;
    std::vector<std::string> m_ui_items;
    std::shared_ptr<CustomRequestHandler> m_custom_requests;
};

// The parts of the instance messages that do not depend on T.
namespace detail {

// The text of an XML value, or none for a value of another type or none.
std::optional<std::string> xmlText(IfValue* value);
// Stores `text` as a fresh XML value through `result`, when given.
void giveXmlResult(IfHost* host, IfValue** result, const std::string& text);
// Stores a fresh boolean value through `result`, when given.
void giveBooleanResult(IfHost* host, IfValue** result, bool value);
// The channels of `channels` that belong to the root `root_id`: the root
// and everything below it.
std::vector<PluginChannelInfo> channelsOfRoot(const std::vector<PluginChannelInfo>& channels,
                                              std::uint32_t root_id);
// Every id the instance's settings name that `existing` lacks, mapped to all ones.
ChannelIdMap missingChannelMap(const SoftwareChannelInstance& instance,
                               const std::vector<std::uint64_t>& existing);
// The answer to a creation: all of the instance's output channels, with the
// details mark that `result` asks for.
std::string creationResponse(const SoftwareChannelInstance& instance, const InitResult& result);

} // namespace detail

template <typename T>
class SoftwareChannelPlugin : public SoftwareChannelPluginBase {
    static_assert(std::is_base_of_v<SoftwareChannelInstance, T>,
                  "instances of a software channel plug-in are SoftwareChannelInstances");

public:
    ~SoftwareChannelPlugin() override { m_instances.clear(); }

    bool handleMessage(std::uint64_t id, std::uint64_t key, IfValue* value, IfValue** result,
                       std::uint64_t& answer) override;
    bool deinit() override;
    bool onEvent(std::uint32_t code) override;

    const std::vector<std::shared_ptr<T>>& getInstances() const { return m_instances; }

protected:
    std::vector<std::shared_ptr<T>> m_instances;

private:
    std::shared_ptr<T> makeInstance();
    bool createInstance(IfValue* value, IfValue** result);
    bool queryAction(IfValue* value, IfValue** result);
    bool restoreInstances(IfValue* value, IfValue** result);
    std::uint64_t removeChannels(IfValue* value);
    void clearInstances();
    void configurationApplied();
    bool channelIdsMapped(IfValue* value);
};

template <typename T>
bool SoftwareChannelPlugin<T>::handleMessage(std::uint64_t id, std::uint64_t key, IfValue* value,
                                             IfValue** result, std::uint64_t& answer)
{
    switch (id) {
    case PLUGIN_EVENT:
        answer = RESULT_OK;
        return onEvent(static_cast<std::uint32_t>(key));
    case PLUGIN_CHANNELS_CHECK:
        answer = removeChannels(value);
        return true;
    case PLUGIN_CONFIG_RESTORE:
        return restoreInstances(value, result);
    case PLUGIN_CONFIG_CLEAR:
        clearInstances();
        answer = RESULT_OK;
        return true;
    case PLUGIN_CONFIG_APPLIED:
        configurationApplied();
        answer = RESULT_OK;
        return true;
    case PLUGIN_CHANNEL_IDS_MAPPED:
        answer = RESULT_OK;
        return channelIdsMapped(value);
    case PLUGIN_SOFTWARE_CHANNEL_CREATE:
        return createInstance(value, result);
    case PLUGIN_SOFTWARE_CHANNEL_QUERY_ACTION:
        return queryAction(value, result);
    case PLUGIN_SOFTWARE_CHANNEL_HAS_INSTANCES:
        detail::giveBooleanResult(m_host, result, !m_instances.empty());
        answer = RESULT_OK;
        return true;
    default:
        return false;
    }
}

template <typename T>
bool SoftwareChannelPlugin<T>::deinit()
{
    const bool done = SoftwareChannelPluginBase::deinit();
    m_instances.clear();
    return done;
}

template <typename T>
bool SoftwareChannelPlugin<T>::onEvent(std::uint32_t code)
{
    switch (code) {
    case 3: {
        const std::optional<std::vector<std::uint64_t>> existing = queryExistingChannelIds();
        if (!existing) {
            return false;
        }
        m_plugin_channels->unregisterAllTasks();
        for (const std::shared_ptr<T>& instance : m_instances) {
            const ChannelIdMap map = detail::missingChannelMap(*instance, *existing);
            instance->applyChannelIdMap(map);
            instance->onChannelIdsMapped(map);
            instance->validate();
        }
        m_plugin_channels->commitChanges(true);
        return true;
    }
    case 8:
        for (const std::shared_ptr<T>& instance : m_instances) {
            instance->onEventFirst();
        }
        return true;
    case 9:
        for (const std::shared_ptr<T>& instance : m_instances) {
            instance->onEventSecond();
        }
        return true;
    default:
        return SoftwareChannelPluginBase::onEvent(code);
    }
}

template <typename T>
std::shared_ptr<T> SoftwareChannelPlugin<T>::makeInstance()
{
    std::shared_ptr<T> instance = std::make_shared<T>();
    instance->setup(m_plugin_channels);
    instance->initialise(m_host);
    return instance;
}

template <typename T>
bool SoftwareChannelPlugin<T>::createInstance(IfValue* value, IfValue** result)
{
    const std::optional<std::string> text = detail::xmlText(value);
    CreateSoftwareChannelTelegram request;
    if (!text || !request.parse(text->c_str())) {
        return false;
    }
    std::shared_ptr<T> instance = makeInstance();
    const InitResult outcome = instance->init(InitParams{request.m_input_channels,
                                                         request.m_properties});
    if (!outcome.success) {
        return false;
    }
    instance->rebuildInputChannels();
    instance->validate();
    m_plugin_channels->commitChanges(true);
    m_instances.push_back(instance);
    detail::giveXmlResult(m_host, result, detail::creationResponse(*instance, outcome));
    return true;
}

template <typename T>
bool SoftwareChannelPlugin<T>::queryAction(IfValue* value, IfValue** result)
{
    const std::optional<std::string> text = detail::xmlText(value);
    QuerySoftwareChannelActionTelegram request;
    if (!text || !request.parse(text->c_str())) {
        return false;
    }
    QuerySoftwareChannelActionResponseTelegram response;
    response.m_valid = checkInputChannelsFormat(request.m_input_channels, response.m_channels);
    detail::giveXmlResult(m_host, result, response.generate());
    return true;
}

template <typename T>
bool SoftwareChannelPlugin<T>::restoreInstances(IfValue* value, IfValue** result)
{
    const std::optional<std::string> text = detail::xmlText(value);
    UpdatePluginChannelsTelegram saved;
    if (!text || !saved.parse(text->c_str(), text->size())) {
        return false;
    }
    LocalIdMap map;
    std::vector<std::pair<std::shared_ptr<T>, std::uint32_t>> restored;
    for (const PluginChannelInfo& channel : saved.m_channels) {
        const bool is_root = channel.m_local_parent_id == NO_LOCAL_ID;
        const bool has_key = std::any_of(
            channel.m_properties.begin(), channel.m_properties.end(),
            [](const Property& property) { return property.getName() == INSTANCE_KEY_PROPERTY; });
        if (!is_root || !has_key) {
            continue;
        }
        std::shared_ptr<T> instance = makeInstance();
        const std::shared_ptr<PluginChannel> root = instance->getRootChannel();
        if (root) {
            root->setDefaultName(channel.m_default_name);
            map[channel.m_local_id] = root->getLocalId();
        }
        m_instances.push_back(instance);
        restored.emplace_back(instance, channel.m_local_id);
    }
    for (const auto& [instance, old_root_id] : restored) {
        const std::vector<PluginChannelInfo> channels =
            detail::channelsOfRoot(saved.m_channels, old_root_id);
        LocalIdMap instance_map = map;
        if (instance->restoreInstance(channels, instance_map)) {
            for (const PluginChannelInfo& channel : channels) {
                const auto found = instance_map.find(channel.m_local_id);
                if (found != instance_map.end()) {
                    map[found->first] = found->second;
                }
            }
        }
    }
    detail::giveXmlResult(m_host, result, writeChannelIDMap(map));
    return true;
}

template <typename T>
std::uint64_t SoftwareChannelPlugin<T>::removeChannels(IfValue* value)
{
    const std::optional<std::string> text = detail::xmlText(value);
    ChannelsTelegram listed;
    if (!text || !listed.parse(text->c_str(), text->size())) {
        return RESULT_BAD_ARGUMENT;
    }
    for (auto it = m_instances.begin(); it != m_instances.end();) {
        T& instance = **it;
        std::vector<std::uint32_t> owned;
        for (const ChannelStatusEntry& entry : listed.m_channels) {
            for (const std::shared_ptr<PluginChannel>& channel : instance.getOutputChannels()) {
                if (channel && channel->getLocalId() == entry.m_channel_id) {
                    owned.push_back(channel->getLocalId());
                }
            }
        }
        for (const std::uint32_t local_id : instance.getChannelsToRemove(owned)) {
            std::shared_ptr<PluginChannel> doomed;
            for (const std::shared_ptr<PluginChannel>& channel : instance.getOutputChannels()) {
                if (channel && channel->getLocalId() == local_id) {
                    doomed = channel;
                    break;
                }
            }
            if (doomed) {
                instance.removeOutputChannel(doomed);
            }
        }
        if (instance.getOutputChannels().empty()) {
            m_plugin_channels->unregisterTask(instance.getTask());
            it = m_instances.erase(it);
        } else {
            ++it;
        }
    }
    m_plugin_channels->commitChanges(true);
    return RESULT_OK;
}

template <typename T>
void SoftwareChannelPlugin<T>::clearInstances()
{
    m_plugin_channels->unregisterAllTasks();
    m_instances.clear();
}

template <typename T>
void SoftwareChannelPlugin<T>::configurationApplied()
{
    for (const std::shared_ptr<T>& instance : m_instances) {
        instance->rebuildInputChannels();
        instance->validate();
        m_plugin_channels->commitChanges(true);
        instance->onConfigurationApplied();
    }
}

template <typename T>
bool SoftwareChannelPlugin<T>::channelIdsMapped(IfValue* value)
{
    const std::optional<std::string> text = detail::xmlText(value);
    ChannelIDMapTelegram telegram;
    if (!text || !telegram.parse(text->c_str(), text->size())) {
        return false;
    }
    for (const std::shared_ptr<T>& instance : m_instances) {
        instance->applyChannelIdMap(telegram.m_map);
        instance->onChannelIdsMapped(telegram.m_map);
        instance->validate();
        m_plugin_channels->commitChanges(true);
    }
    return true;
}

} // namespace zlr::framework
