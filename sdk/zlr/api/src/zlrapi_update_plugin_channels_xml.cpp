#include "zlrapi_update_plugin_channels_xml.h"

#include "xpugixml.h"

#include <algorithm>
#include <stdexcept>
#include <string_view>

namespace zlr {
namespace {

constexpr const char* CYCLE_TEXT = "Cyclic dependency between channels detected";

bool hasChannel(const std::vector<PluginChannelInfo>& list, std::uint32_t local_id)
{
    return std::any_of(list.begin(), list.end(), [local_id](const PluginChannelInfo& channel) {
        return channel.m_local_id == local_id;
    });
}

void collectDescendants(const std::vector<PluginChannelInfo>& channels, std::uint32_t local_id,
                        bool recursive, std::vector<std::uint32_t>& found)
{
    for (const PluginChannelInfo& channel : channels) {
        if (channel.m_local_parent_id != local_id) {
            continue;
        }
        found.push_back(channel.m_local_id);
        if (found.size() > channels.size()) {
            throw std::domain_error(CYCLE_TEXT);
        }
        if (recursive) {
            collectDescendants(channels, channel.m_local_id, recursive, found);
        }
    }
}

void writeChannel(pugi::xml_node root, const PluginChannelInfo& channel)
{
    const pugi::xml_node element = xpugi::append_child_element(root, "Channel");
    xpugi::set_attribute(element, "local_id", std::uint64_t{channel.m_local_id});
    if (!channel.m_default_name.empty()) {
        xpugi::set_attribute(element, "default_name", channel.m_default_name);
    }
    if (!channel.m_domain.empty()) {
        xpugi::set_attribute(element, "domain", channel.m_domain);
    }
    if (channel.m_deletable) {
        xpugi::set_attribute(element, "deletable", "true");
    }
    xpugi::set_attribute(element, "valid", channel.m_valid ? "true" : "false");
    writeDataFormat(element, channel.m_dataformat);
    writeTimebase(element, channel.m_timebase);
    if (channel.m_local_parent_id != NO_LOCAL_ID) {
        xpugi::set_attribute(xpugi::append_child_element(element, "Parent"), "local_id",
                             std::uint64_t{channel.m_local_parent_id});
    }
    if (!channel.m_properties.empty()) {
        writePropertyList(element, channel.m_properties, channel.m_constraints);
    }
}

void writeTopology(pugi::xml_node parent, const TopologyNode& node)
{
    pugi::xml_node element;
    if (node.m_name.empty()) {
        element = xpugi::append_child_element(parent, "Channel");
        xpugi::set_attribute(element, "local_id", std::uint64_t{node.m_local_id});
    } else {
        element = xpugi::append_child_element(parent, "Group");
        xpugi::set_attribute(element, "name", node.m_name);
    }
    for (const TopologyNode& child : node.m_children) {
        writeTopology(element, child);
    }
}

void readTopology(pugi::xml_node parent, std::vector<TopologyNode>& nodes)
{
    for (pugi::xml_node element : parent.children()) {
        const std::string_view name = element.name();
        TopologyNode node;
        if (name == "Channel") {
            node.m_local_id = element.attribute("local_id").as_uint(NO_LOCAL_ID);
        } else if (name == "Group") {
            node.m_name = element.attribute("name").value();
        } else {
            continue;
        }
        readTopology(element, node.m_children);
        nodes.push_back(std::move(node));
    }
}

bool readChannel(pugi::xml_node element, PluginChannelInfo& channel)
{
    channel.m_local_id = element.attribute("local_id").as_uint(NO_LOCAL_ID);
    if (channel.m_local_id == NO_LOCAL_ID) {
        return false;
    }
    if (const pugi::xml_node format = element.child("DataFormat")) {
        const std::string text = xpugi::to_xml(format, false);
        if (!parseDataFormat(text.data(), text.size(), channel.m_dataformat)) {
            return false;
        }
    }
    // A channel without a timebase is legal.
    readTimebase(element, channel.m_timebase);
    channel.m_local_parent_id =
        element.child("Parent").attribute("local_id").as_uint(NO_LOCAL_ID);
    readPropertyList(element, channel.m_properties, channel.m_constraints);
    channel.m_default_name = element.attribute("default_name").value();
    channel.m_domain = element.attribute("domain").value();
    channel.m_deletable = element.attribute("deletable").as_bool(false);
    channel.m_valid = element.attribute("valid").as_bool(false);
    return true;
}

} // namespace

std::vector<PluginChannelInfo> sortParentFirst(const std::vector<PluginChannelInfo>& channels)
{
    // A channel joins once. Whether it has joined is kept per position rather
    // than found by comparing values: a timebase offset that is NaN compares
    // unequal to itself, and such a channel would otherwise join every round.
    std::vector<bool> joined(channels.size(), false);
    std::vector<PluginChannelInfo> sorted;
    sorted.reserve(channels.size());
    while (sorted.size() < channels.size()) {
        const std::vector<PluginChannelInfo> snapshot = sorted;
        const std::vector<bool> joined_before = joined;
        for (std::size_t i = 0; i < channels.size(); ++i) {
            const PluginChannelInfo& channel = channels[i];
            if (joined_before[i]) {
                continue;
            }
            if (channel.m_local_parent_id == NO_LOCAL_ID ||
                hasChannel(snapshot, channel.m_local_parent_id)) {
                sorted.push_back(channel);
                joined[i] = true;
            }
        }
        if (sorted.size() == snapshot.size()) {
            throw std::domain_error(CYCLE_TEXT);
        }
    }
    return sorted;
}

std::vector<std::uint32_t> findDescendants(const std::vector<PluginChannelInfo>& channels,
                                           std::uint32_t local_id, bool recursive)
{
    std::vector<std::uint32_t> found;
    collectDescendants(channels, local_id, recursive, found);
    return found;
}

std::string UpdatePluginChannelsTelegram::generate() const
{
    const std::vector<PluginChannelInfo> sorted = sortParentFirst(m_channels);
    pugi::xml_document document;
    const pugi::xml_node root = xpugi::append_child_element(document, "UpdatePluginChannels");
    xpugi::set_protocol_version(root);
    for (const PluginChannelInfo& channel : sorted) {
        writeChannel(root, channel);
    }
    if (!m_topology.m_children.empty()) {
        const pugi::xml_node list = xpugi::append_child_element(root, "ListTopology");
        for (const TopologyNode& node : m_topology.m_children) {
            writeTopology(list, node);
        }
    }
    return xpugi::to_xml(document, false);
}

bool UpdatePluginChannelsTelegram::parse(const char* text, std::size_t length)
{
    m_channels.clear();
    m_topology = TopologyNode{};
    pugi::xml_document document;
    if (!xpugi::parse(document, text, length)) {
        return false;
    }
    const pugi::xml_node root = document.document_element();
    if (std::string_view(root.name()) != "UpdatePluginChannels" ||
        !xpugi::has_supported_protocol_version(root)) {
        return false;
    }
    for (pugi::xml_node element : root.children("Channel")) {
        PluginChannelInfo channel;
        if (!readChannel(element, channel)) {
            return false;
        }
        m_channels.push_back(std::move(channel));
    }
    if (const pugi::xml_node topology = root.child("ListTopology")) {
        readTopology(topology, m_topology.m_children);
    }
    return true;
}

} // namespace zlr
