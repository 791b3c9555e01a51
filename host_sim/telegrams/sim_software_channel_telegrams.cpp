#include "sim_software_channel_telegrams.h"

#include "xpugixml.h"
#include "zlrapi_numbers.h"

#include <limits>
#include <stdexcept>
#include <string_view>

namespace zelvar_sim {
namespace {

pugi::xml_node versionedRoot(pugi::xml_document& document, const std::string& text,
                             std::string_view name)
{
    if (!xpugi::parse(document, text.data(), text.size())) {
        return {};
    }
    const pugi::xml_node root = document.document_element();
    if (std::string_view(root.name()) != name || !xpugi::has_supported_protocol_version(root)) {
        return {};
    }
    return root;
}

bool capitalisedBoolean(pugi::xml_node root, const char* name, bool& value)
{
    const std::string text = xpugi::trimmed_text(xpugi::find_child(root, name));
    if (text != "True" && text != "False") {
        return false;
    }
    value = text == "True";
    return true;
}

std::uint64_t channelIdOf(pugi::xml_node channel)
{
    return zlr::stoullChecked(channel.attribute("channel_id").value(), 10);
}

} // namespace

namespace detail {

void appendInputChannels(pugi::xml_node root, const std::vector<zlr::InputChannelFormat>& inputs)
{
    const pugi::xml_node channels = xpugi::append_child_element(root, "Channels");
    for (const zlr::InputChannelFormat& input : inputs) {
        const pugi::xml_node channel = xpugi::append_child_element(channels, "Channel");
        xpugi::set_attribute(channel, "channel_id", std::uint64_t{input.m_channel_id});
        zlr::writeDataFormat(channel, input.m_dataformat);
    }
}

} // namespace detail

std::string writeCreateSoftwareChannel(const std::string& service_name,
                                       const std::vector<zlr::Property>& properties,
                                       const std::vector<zlr::InputChannelFormat>& inputs)
{
    pugi::xml_document document;
    const pugi::xml_node root = xpugi::append_child_element(document, "CreateSoftwareChannel");
    xpugi::set_protocol_version(root);
    xpugi::set_text(xpugi::append_child_element(root, "ServiceName"), service_name);
    for (const zlr::Property& property : properties) {
        property.writeTo(root);
    }
    detail::appendInputChannels(root, inputs);
    return xpugi::to_xml(document, false);
}

std::string writeQuerySoftwareChannelAction(const std::vector<zlr::InputChannelFormat>& inputs)
{
    pugi::xml_document document;
    const pugi::xml_node root =
        xpugi::append_child_element(document, "QuerySoftwareChannelAction");
    xpugi::set_protocol_version(root);
    detail::appendInputChannels(root, inputs);
    return xpugi::to_xml(document, false);
}

bool readRegisterSoftwareChannel(const std::string& text,
                                 zlr::RegisterSoftwareChannelTelegram& telegram)
{
    pugi::xml_document document;
    const pugi::xml_node root = versionedRoot(document, text, "RegisterSoftwareChannel");
    if (!root) {
        return false;
    }
    for (const char* required : {"ServiceName", "DisplayName", "DisplayGroup"}) {
        if (!xpugi::find_child(root, required)) {
            return false;
        }
    }
    telegram.m_service_name = xpugi::trimmed_text(xpugi::find_child(root, "ServiceName"));
    telegram.m_display_name = xpugi::trimmed_text(xpugi::find_child(root, "DisplayName"));
    telegram.m_display_group = xpugi::trimmed_text(xpugi::find_child(root, "DisplayGroup"));
    telegram.m_description = xpugi::trimmed_text(xpugi::find_child(root, "Description"));
    telegram.m_ui_item_name =
        xpugi::trimmed_text(xpugi::find_child(xpugi::find_child(root, "UIAdd"), "ItemName"));
    return capitalisedBoolean(root, "AnalysisCapable", telegram.m_analysis_capable) &&
           capitalisedBoolean(root, "AcquisitionCapable", telegram.m_acquisition_capable);
}

bool readCreateSoftwareChannelResponse(const std::string& text,
                                       zlr::CreateSoftwareChannelResponseTelegram& telegram)
{
    telegram = {};
    pugi::xml_document document;
    const pugi::xml_node root = versionedRoot(document, text, "CreateSoftwareChannelResponse");
    if (!root) {
        return false;
    }
    telegram.m_message = xpugi::trimmed_text(xpugi::find_child(root, "Message"));
    try {
        for (pugi::xml_node channel : root.child("CreatedChannels").children("Channel")) {
            const std::uint64_t id = channelIdOf(channel);
            if (id > std::numeric_limits<std::uint32_t>::max()) {
                return false;
            }
            telegram.m_created_channels.push_back(static_cast<std::uint32_t>(id));
            const pugi::xml_attribute details = channel.attribute("show_details");
            if (details) {
                if (std::string_view(details.value()) != "true" || telegram.m_show_details) {
                    return false;
                }
                telegram.m_show_details = true;
                telegram.m_details_channel = static_cast<std::uint32_t>(id);
            }
        }
    } catch (const std::logic_error&) {
        return false;
    }
    return true;
}

bool readQuerySoftwareChannelActionResponse(
    const std::string& text, zlr::QuerySoftwareChannelActionResponseTelegram& telegram)
{
    telegram = {};
    pugi::xml_document document;
    const pugi::xml_node root =
        versionedRoot(document, text, "QuerySoftwareChannelActionResponse");
    if (!root) {
        return false;
    }
    const std::string_view valid = root.child("Valid").attribute("is_valid").value();
    if (valid != "true" && valid != "false") {
        return false;
    }
    telegram.m_valid = valid == "true";
    try {
        for (pugi::xml_node channel : root.child("Channels").children("Channel")) {
            telegram.m_channels.push_back(channelIdOf(channel));
        }
    } catch (const std::logic_error&) {
        return false;
    }
    return true;
}

} // namespace zelvar_sim
