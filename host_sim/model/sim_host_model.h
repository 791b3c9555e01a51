// The configuration side of the simulated host as one object: it makes and
// adds the services that keep the host's state (the plug-in's channels and
// their settings, its translations, its software channels), and it plays
// what the host sends on this side, through the loaded plug-in, reading each
// answer with the host's own readers. An answer the host cannot read is
// recorded as a protocol fault of the message that asked for it.
#pragma once

#include "sim_plugin_channel_tree.h"
#include "sim_software_channel_registry.h"
#include "sim_translations.h"
#include "zlrapi_channel_config_changed_xml.h"
#include "zlrapi_channels_xml.h"
#include "zlrapi_software_channel_request_xml.h"
#include "zlrapi_software_channel_response_xml.h"

#include <cstdint>
#include <iosfwd>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zelvar_sim {

class PluginSession;
class SimHost;

// PLUGIN_SOFTWARE_CHANNEL_QUERY_ACTION: the code and, when the plug-in
// answered with a readable response, its verdict and the refused inputs.
struct QueryActionOutcome {
    std::uint64_t code = 0;
    std::optional<zlr::QuerySoftwareChannelActionResponseTelegram> response;
};

// PLUGIN_SOFTWARE_CHANNEL_CREATE: the code and the readable response.
struct CreateOutcome {
    std::uint64_t code = 0;
    std::optional<zlr::CreateSoftwareChannelResponseTelegram> response;
};

// PLUGIN_CONFIG_RESTORE: the code and the readable ChannelIDMap.
struct RestoreOutcome {
    std::uint64_t code = 0;
    std::optional<std::map<std::uint64_t, std::uint64_t>> id_map;
};

class HostModel {
public:
    // Makes the services and adds them to `host`, which must outlive the model.
    explicit HostModel(SimHost& host);
    HostModel(const HostModel&) = delete;
    HostModel& operator=(const HostModel&) = delete;

    SimHost& host() const { return m_host; }
    PluginChannelTree& channels() const { return *m_channels; }
    TranslationService& translations() const { return *m_translations; }
    SoftwareChannelRegistry& softwareChannels() const { return *m_software_channels; }

    // The plug-in the operations below talk to; detach before it is deleted.
    void attach(PluginSession& session) { m_session = &session; }
    void detach() { m_session = nullptr; }

    // PLUGIN_CHANNEL_STATUS: the channels the host has.
    std::uint64_t sendChannelStatus(const std::vector<zlr::ChannelStatusEntry>& channels);

    // PLUGIN_CONFIG_UPDATE as a person sends it who edits one setting of a
    // shown channel: `text` is what they typed, taken as the type of the
    // property's current value (a number keeps a scalar's unit, "1,2" is a
    // channel id list, "min max" a range). Throws std::invalid_argument for
    // a channel or property the host does not show, or a text that does not
    // fit the type.
    std::uint64_t editProperty(std::uint32_t local_id, const std::string& name,
                               const std::string& text);
    // The same with a value as given, whatever its type.
    std::uint64_t sendConfigUpdate(std::uint32_t local_id, const zlr::Property& value);

    // PLUGIN_CHANNEL_DATA_FORMAT and PLUGIN_CHANNEL_CONFIG_CHANGED: news of
    // the host's own channels.
    std::uint64_t sendChannelDataFormat(std::uint64_t channel_id, const zlr::DataFormat& format);
    std::uint64_t sendChannelConfigChanged(const std::vector<zlr::ChangedChannelConfig>& channels);

    // The create dialogue. `candidates` are the input channels a person
    // selected; the service is the one registered when none is named.
    QueryActionOutcome queryAction(const std::vector<zlr::InputChannelFormat>& candidates);
    CreateOutcome createSoftwareChannel(const std::vector<zlr::InputChannelFormat>& candidates,
                                        const std::vector<zlr::Property>& settings = {},
                                        const std::string& service_name = {});

    // PLUGIN_SOFTWARE_CHANNEL_HAS_INSTANCES: nothing when the answer is not a
    // boolean value.
    std::optional<bool> hasInstances();

    std::uint64_t sendEvent(std::uint32_t code);

    // PLUGIN_CHANNELS_CHECK: a person deletes these channels of the plug-in.
    std::uint64_t deleteChannels(const std::vector<std::uint32_t>& local_ids);

    std::uint64_t configApplied();

    // What the host saves of the plug-in's configuration: its channels with
    // their properties, as an UpdatePluginChannels.
    std::string savedConfiguration() const;
    std::uint64_t clearConfiguration();
    RestoreOutcome restoreConfiguration(const std::string& saved);
    // PLUGIN_CHANNEL_IDS_MAPPED: the host's input channels got new ids.
    std::uint64_t mapChannelIds(const std::map<std::uint64_t, std::uint64_t>& map);
    // A saved configuration with the ids in its channel id lists renamed by
    // `map`, as the host rewrites it when its inputs were renumbered; ids not
    // in the map stay.
    static std::string remapSavedConfiguration(const std::string& saved,
                                               const std::map<std::uint64_t, std::uint64_t>& map);

    // Everything the host holds: each service's account, then the faults.
    void describe(std::ostream& out) const;
    std::string dump() const;

private:
    PluginSession& session() const;
    // Sends `text` as an XML value; a result object, when asked for, comes
    // back with one reference for the caller.
    std::uint64_t sendXml(std::uint32_t id, const std::string& text,
                          zlr::IfValue** result = nullptr);
    // The text of an XML result, released; records a fault when it is none.
    std::optional<std::string> xmlAnswer(std::uint32_t id, zlr::IfValue* result);

    SimHost& m_host;
    PluginSession* m_session = nullptr;
    std::shared_ptr<PluginChannelTree> m_channels;
    std::shared_ptr<TranslationService> m_translations;
    std::shared_ptr<SoftwareChannelRegistry> m_software_channels;
};

} // namespace zelvar_sim
