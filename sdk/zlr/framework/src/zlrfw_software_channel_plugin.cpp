#include "zlrfw_software_channel_plugin.h"

#include "zlrapi_channels_xml.h"
#include "zlrapi_software_channel_response_xml.h"
#include "zlrapi_utils.h"
#include "zlrbase_messages.h"
#include "zlrfw_host_version.h"
#include "zlrfw_value_text.h"

#include <exception>
#include <set>

namespace zlr::framework {

SoftwareChannelPluginBase::SoftwareChannelPluginBase()
    : m_plugin_channels(std::make_shared<PluginChannels>()),
      m_custom_requests(std::make_shared<CustomRequestHandler>())
{
    addMessageHandler(m_plugin_channels);
    addMessageHandler(m_custom_requests);
}

SoftwareChannelPluginBase::~SoftwareChannelPluginBase() = default;

namespace {

// A version text that holds no number cannot be compared; init must not let
// the conversion's exception reach the host, so such a host is refused like
// any version it does not support.
bool hostVersionSupported(IfHost* host)
{
    try {
        return checkHostVersion(host);
    } catch (const std::exception&) {
        return false;
    }
}

} // namespace

std::uint64_t SoftwareChannelPluginBase::init(std::string& error_text)
{
    if (!hostVersionSupported(m_host)) {
        error_text = "Current version of Zelvar is not supported.";
        return RESULT_HOST_VERSION_REFUSED;
    }
    registerResources();
    const std::string text = registrationTelegram();
    sendSyncXmlMessage(m_host, HOST_REGISTER_SOFTWARE_CHANNEL, 0, text.c_str(), text.size() + 1,
                       nullptr);
    return RESULT_OK;
}

bool SoftwareChannelPluginBase::deinit()
{
    m_plugin_channels->unregisterAllTasks();
    zlrbase_api_object_ptr<IfStringValue> service = createTypedValue<IfStringValue>(m_host);
    if (service) {
        service->set(getSoftwareChannelInfo().m_service_name.c_str());
    }
    m_host->messageSync(HOST_UNREGISTER_SOFTWARE_CHANNEL, 0, service.get(), nullptr);
    return true;
}

void SoftwareChannelPluginBase::registerTranslations() {}

void SoftwareChannelPluginBase::registerResources()
{
    registerTranslations();
}

bool SoftwareChannelPluginBase::checkInputChannelsFormat(const std::vector<InputChannelFormat>&,
                                                         std::vector<std::uint64_t>&)
{
    return true;
}

bool SoftwareChannelPluginBase::onEvent(std::uint32_t code)
{
    if (code != 14) {
        return false;
    }
    const std::string text = registrationTelegram();
    sendSyncXmlMessage(m_host, HOST_REREGISTER_SOFTWARE_CHANNEL, 0, text.c_str(), text.size() + 1,
                       nullptr);
    return true;
}

std::string SoftwareChannelPluginBase::registrationTelegram()
{
    return getSoftwareChannelInfo().generate();
}

std::optional<std::vector<std::uint64_t>> SoftwareChannelPluginBase::queryExistingChannelIds()
{
    const zlrbase_api_object_ptr<IfXmlValue> all =
        queryXmlValue(m_host, tree::CHANNELS, tree::ALL_IDS);
    const std::optional<std::string> text = xmlValueText(all.get());
    ChannelsTelegram channels;
    if (!text || !channels.parse(text->c_str(), text->size())) {
        return std::nullopt;
    }
    std::vector<std::uint64_t> ids;
    for (const ChannelStatusEntry& entry : channels.m_channels) {
        ids.push_back(entry.m_channel_id);
    }
    return ids;
}

namespace detail {

std::optional<std::string> xmlText(IfValue* value)
{
    return xmlValueText(value);
}

void giveXmlResult(IfHost* host, IfValue** result, const std::string& text)
{
    if (!result || !host) {
        return;
    }
    zlrbase_api_object_ptr<IfXmlValue> value = createTypedValue<IfXmlValue>(host);
    if (value) {
        value->set(text.c_str());
        *result = value.detach();
    }
}

void giveBooleanResult(IfHost* host, IfValue** result, bool flag)
{
    if (!result || !host) {
        return;
    }
    zlrbase_api_object_ptr<IfBooleanValue> value = createTypedValue<IfBooleanValue>(host);
    if (value) {
        value->set(flag);
        *result = value.detach();
    }
}

std::vector<PluginChannelInfo> channelsOfRoot(const std::vector<PluginChannelInfo>& channels,
                                              std::uint32_t root_id)
{
    std::vector<PluginChannelInfo> gathered;
    const auto byId = [&channels](std::uint32_t local_id) -> const PluginChannelInfo* {
        for (const PluginChannelInfo& channel : channels) {
            if (channel.m_local_id == local_id) {
                return &channel;
            }
        }
        return nullptr;
    };
    if (const PluginChannelInfo* root = byId(root_id)) {
        gathered.push_back(*root);
    }
    // Depth first, so that a parent always comes before its children.
    for (const std::uint32_t local_id : findDescendants(channels, root_id, true)) {
        if (const PluginChannelInfo* channel = byId(local_id)) {
            gathered.push_back(*channel);
        }
    }
    return gathered;
}

ChannelIdMap missingChannelMap(const SoftwareChannelInstance& instance,
                               const std::vector<std::uint64_t>& existing)
{
    const std::set<std::uint64_t> known(existing.begin(), existing.end());
    ChannelIdMap map;
    for (const std::uint64_t id : instance.getReferencedChannelIds()) {
        if (!known.count(id)) {
            map[id] = NO_CHANNEL_ID;
        }
    }
    return map;
}

std::string creationResponse(const SoftwareChannelInstance& instance, const InitResult& result)
{
    CreateSoftwareChannelResponseTelegram response;
    for (const std::shared_ptr<PluginChannel>& channel : instance.getOutputChannels()) {
        response.m_created_channels.push_back(channel->getLocalId());
    }
    if (result.detail == 2 && !response.m_created_channels.empty()) {
        response.m_show_details = true;
        response.m_details_channel = response.m_created_channels.front();
    } else if (result.detail == 1) {
        response.m_show_details = true;
        response.m_details_channel = static_cast<std::uint32_t>(result.channel_id);
    }
    return response.generate();
}

} // namespace detail

} // namespace zlr::framework
