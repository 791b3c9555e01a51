#include "sim_host_model.h"

#include "plugin_loader.h"
#include "sim_channel_tree_telegrams.h"
#include "sim_channel_writers.h"
#include "sim_host.h"
#include "sim_software_channel_telegrams.h"
#include "sim_values.h"
#include "sim_xml_reading.h"
#include "xpugixml.h"
#include "zlrbase_messages.h"

#include <cctype>
#include <ostream>
#include <sstream>
#include <stdexcept>

namespace zelvar_sim {
namespace {

double numberOrThrow(const std::string& text)
{
    const auto number = doubleOf(text.c_str());
    if (!number) {
        throw std::invalid_argument("\"" + text + "\" is not a number");
    }
    return *number;
}

// What a person typed, as a value of the type the setting has now.
zlr::Property typedLike(const zlr::Property& current, const std::string& text)
{
    zlr::Property edited(current.getName());
    switch (current.getType()) {
    case zlr::Property::STRING_VALUE:
        edited.setValue(text);
        break;
    case zlr::Property::DOUBLE_VALUE:
        edited.setValue(numberOrThrow(text));
        break;
    case zlr::Property::SCALAR_VALUE:
        edited.setValue(zlr::Scalar(numberOrThrow(text), current.getScalarValue().m_unit));
        break;
    case zlr::Property::BOOLEAN_VALUE: {
        std::string lower;
        for (char c : text) {
            lower += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        }
        if (lower != "true" && lower != "false") {
            throw std::invalid_argument("\"" + text + "\" is not true or false");
        }
        edited.setValue(lower == "true");
        break;
    }
    case zlr::Property::ENUM_VALUE:
        edited.setEnumValue(text, current.getTypeDetail());
        break;
    case zlr::Property::RANGE_VALUE: {
        std::istringstream parts(text);
        std::string min, max, rest;
        if (!(parts >> min >> max) || (parts >> rest)) {
            throw std::invalid_argument("\"" + text + "\" is not \"min max\"");
        }
        const zlr::Range now = current.getRangeValue();
        edited.setValue(
            zlr::Range(numberOrThrow(min), numberOrThrow(max), now.m_min_unit, now.m_max_unit));
        break;
    }
    case zlr::Property::CHANNEL_ID_LIST: {
        zlr::ValueList<std::uint64_t> ids;
        std::istringstream parts(text);
        for (std::string part; std::getline(parts, part, ',');) {
            const auto id = decimalOf(xpugi::trim(part).c_str());
            if (!id) {
                throw std::invalid_argument("\"" + text + "\" is not a list of channel ids");
            }
            ids.m_values.push_back(*id);
        }
        edited.setChannelIDList(ids);
        break;
    }
    case zlr::Property::SIGNED_VALUE:
    case zlr::Property::SIGNED_VALUE64:
    case zlr::Property::UNSIGNED_VALUE:
    case zlr::Property::UNSIGNED_INT64:
    case zlr::Property::CHANNEL_ID:
        edited.setTextValue(current.getType(), text);
        break;
    default:
        throw std::invalid_argument("setting " + current.getName() +
                                    " is not edited as text");
    }
    return edited;
}

} // namespace

HostModel::HostModel(SimHost& host)
    : m_host(host), m_channels(std::make_shared<PluginChannelTree>(host)),
      m_translations(std::make_shared<TranslationService>(host)),
      m_software_channels(std::make_shared<SoftwareChannelRegistry>(host))
{
    m_host.addService(m_channels);
    m_host.addService(m_translations);
    m_host.addService(m_software_channels);
}

PluginSession& HostModel::session() const
{
    if (!m_session) {
        throw std::logic_error("the host model talks to no plug-in");
    }
    return *m_session;
}

std::uint64_t HostModel::sendXml(std::uint32_t id, const std::string& text,
                                 zlr::IfValue** result)
{
    PluginSession& plugin = session();
    auto* value = new XmlValue(m_host.ledger(), text);
    const std::uint64_t code = plugin.send(id, 0, value, result);
    value->release();
    return code;
}

std::optional<std::string> HostModel::xmlAnswer(std::uint32_t id, zlr::IfValue* result)
{
    if (!result) {
        m_host.recordFault(id, "no result object", {});
        return std::nullopt;
    }
    const std::uint32_t type = result->getType();
    const std::string text = valueText(result);
    result->release();
    if (type != zlr::IfXmlValue::TYPE_CODE) {
        m_host.recordFault(id, "a result of type " + std::to_string(type) + ", not XML", text);
        return std::nullopt;
    }
    return text;
}

std::uint64_t HostModel::sendChannelStatus(const std::vector<zlr::ChannelStatusEntry>& channels)
{
    return sendXml(zlr::PLUGIN_CHANNEL_STATUS, writeChannels(channels));
}

std::uint64_t HostModel::editProperty(std::uint32_t local_id, const std::string& name,
                                      const std::string& text)
{
    const auto current = m_channels->property(local_id, name);
    if (!current) {
        throw std::invalid_argument("channel " + std::to_string(local_id) +
                                    " shows no setting " + name);
    }
    return sendConfigUpdate(local_id, typedLike(current->value, text));
}

std::uint64_t HostModel::sendConfigUpdate(std::uint32_t local_id, const zlr::Property& value)
{
    return sendXml(zlr::PLUGIN_CONFIG_UPDATE, writeUpdateConfig(local_id, value));
}

std::uint64_t HostModel::sendChannelDataFormat(std::uint64_t channel_id,
                                               const zlr::DataFormat& format)
{
    return sendXml(zlr::PLUGIN_CHANNEL_DATA_FORMAT, writeChannelDataFormat(channel_id, format));
}

std::uint64_t HostModel::sendChannelConfigChanged(
    const std::vector<zlr::ChangedChannelConfig>& channels)
{
    return sendXml(zlr::PLUGIN_CHANNEL_CONFIG_CHANGED, writeChannelConfigChanged(channels));
}

QueryActionOutcome HostModel::queryAction(const std::vector<zlr::InputChannelFormat>& candidates)
{
    QueryActionOutcome outcome;
    zlr::IfValue* result = nullptr;
    outcome.code = sendXml(zlr::PLUGIN_SOFTWARE_CHANNEL_QUERY_ACTION,
                           writeQuerySoftwareChannelAction(candidates), &result);
    if (outcome.code != zlr::RESULT_OK && !result) {
        return outcome;
    }
    if (const auto text = xmlAnswer(zlr::PLUGIN_SOFTWARE_CHANNEL_QUERY_ACTION, result)) {
        zlr::QuerySoftwareChannelActionResponseTelegram response;
        if (readQuerySoftwareChannelActionResponse(*text, response)) {
            outcome.response = response;
        } else {
            m_host.recordFault(zlr::PLUGIN_SOFTWARE_CHANNEL_QUERY_ACTION,
                               "not a readable QuerySoftwareChannelActionResponse", *text);
        }
    }
    return outcome;
}

CreateOutcome HostModel::createSoftwareChannel(
    const std::vector<zlr::InputChannelFormat>& candidates,
    const std::vector<zlr::Property>& settings, const std::string& service_name)
{
    std::string service = service_name;
    if (service.empty()) {
        const auto registered = m_software_channels->registered();
        if (registered.size() == 1) {
            service = registered.front().m_service_name;
        }
    }
    CreateOutcome outcome;
    zlr::IfValue* result = nullptr;
    outcome.code = sendXml(zlr::PLUGIN_SOFTWARE_CHANNEL_CREATE,
                           writeCreateSoftwareChannel(service, settings, candidates), &result);
    if (outcome.code != zlr::RESULT_OK && !result) {
        return outcome;
    }
    const auto text = xmlAnswer(zlr::PLUGIN_SOFTWARE_CHANNEL_CREATE, result);
    if (!text) {
        return outcome;
    }
    zlr::CreateSoftwareChannelResponseTelegram response;
    if (!readCreateSoftwareChannelResponse(*text, response)) {
        m_host.recordFault(zlr::PLUGIN_SOFTWARE_CHANNEL_CREATE,
                           "not a readable CreateSoftwareChannelResponse", *text);
        return outcome;
    }
    // The plug-in tells the host of its channels before it answers, so every
    // channel it names must be in the tree by now.
    for (std::uint32_t id : response.m_created_channels) {
        if (!m_channels->channel(id)) {
            m_host.recordFault(zlr::PLUGIN_SOFTWARE_CHANNEL_CREATE,
                               "created channel " + std::to_string(id) +
                                   " is not in the host's tree",
                               *text);
        }
    }
    outcome.response = response;
    return outcome;
}

std::optional<bool> HostModel::hasInstances()
{
    zlr::IfValue* result = nullptr;
    session().send(zlr::PLUGIN_SOFTWARE_CHANNEL_HAS_INSTANCES, 0, nullptr, &result);
    if (!result) {
        m_host.recordFault(zlr::PLUGIN_SOFTWARE_CHANNEL_HAS_INSTANCES, "no result object", {});
        return std::nullopt;
    }
    std::optional<bool> answer;
    if (result->getType() == zlr::IfBooleanValue::TYPE_CODE) {
        answer = static_cast<zlr::IfBooleanValue*>(result)->get();
    } else {
        m_host.recordFault(zlr::PLUGIN_SOFTWARE_CHANNEL_HAS_INSTANCES,
                           "a result of type " + std::to_string(result->getType()) +
                               ", not a boolean",
                           valueText(result));
    }
    result->release();
    return answer;
}

std::uint64_t HostModel::sendEvent(std::uint32_t code)
{
    return session().send(zlr::PLUGIN_EVENT, code);
}

std::uint64_t HostModel::deleteChannels(const std::vector<std::uint32_t>& local_ids)
{
    std::vector<zlr::ChannelStatusEntry> channels;
    for (std::uint32_t id : local_ids) {
        channels.push_back({id, {}});
    }
    return sendXml(zlr::PLUGIN_CHANNELS_CHECK, writeChannels(channels));
}

std::uint64_t HostModel::configApplied()
{
    return session().send(zlr::PLUGIN_CONFIG_APPLIED);
}

std::string HostModel::savedConfiguration() const
{
    return writeUpdatePluginChannels(m_channels->channels());
}

std::uint64_t HostModel::clearConfiguration()
{
    return session().send(zlr::PLUGIN_CONFIG_CLEAR);
}

RestoreOutcome HostModel::restoreConfiguration(const std::string& saved)
{
    RestoreOutcome outcome;
    zlr::IfValue* result = nullptr;
    outcome.code = sendXml(zlr::PLUGIN_CONFIG_RESTORE, saved, &result);
    if (outcome.code != zlr::RESULT_OK && !result) {
        return outcome;
    }
    if (const auto text = xmlAnswer(zlr::PLUGIN_CONFIG_RESTORE, result)) {
        std::map<std::uint64_t, std::uint64_t> map;
        std::string why;
        if (readChannelIdMap(*text, map, why)) {
            outcome.id_map = map;
        } else {
            m_host.recordFault(zlr::PLUGIN_CONFIG_RESTORE, why, *text);
        }
    }
    return outcome;
}

std::uint64_t HostModel::mapChannelIds(const std::map<std::uint64_t, std::uint64_t>& map)
{
    return sendXml(zlr::PLUGIN_CHANNEL_IDS_MAPPED, writeChannelIdMap(map));
}

std::string HostModel::remapSavedConfiguration(const std::string& saved,
                                               const std::map<std::uint64_t, std::uint64_t>& map)
{
    pugi::xml_document document;
    if (!document.load_buffer(saved.data(), saved.size())) {
        throw std::invalid_argument("a saved configuration that does not parse");
    }
    for (const pugi::xpath_node& found :
         document.select_nodes("//Property/ChannelIDList/ChannelIDList/ChannelID")) {
        const pugi::xml_node id = found.node();
        const auto old_id = decimalOf(xpugi::trim(id.child_value()).c_str());
        if (!old_id) {
            continue;
        }
        const auto renamed = map.find(*old_id);
        if (renamed != map.end()) {
            id.text().set(static_cast<unsigned long long>(renamed->second));
        }
    }
    return xpugi::to_xml(document, false);
}

void HostModel::describe(std::ostream& out) const
{
    for (const auto& service : m_host.services()) {
        service->describe(out);
    }
    const auto faults = m_host.faults();
    out << "protocol faults: " << faults.size() << "\n";
    for (const ProtocolFault& fault : faults) {
        out << "  " << messageName(fault.message_id) << ": " << fault.reason << "\n";
        if (!fault.telegram.empty()) {
            constexpr std::size_t shown = 400;
            out << "    " << fault.telegram.substr(0, shown)
                << (fault.telegram.size() > shown ? "..." : "") << "\n";
        }
    }
}

std::string HostModel::dump() const
{
    std::ostringstream out;
    describe(out);
    return out.str();
}

} // namespace zelvar_sim
