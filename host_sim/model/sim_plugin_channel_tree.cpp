#include "sim_plugin_channel_tree.h"

#include "sim_host.h"
#include "sim_message_telegram.h"
#include "zlrbase_messages.h"

#include <algorithm>
#include <map>
#include <ostream>
#include <set>

namespace zelvar_sim {
namespace {

// Sets each property of `update` on `properties` by name; a new name goes
// at the end.
void mergeProperties(std::vector<HostProperty>& properties,
                     const std::vector<HostProperty>& update)
{
    for (const HostProperty& property : update) {
        const auto same_name = std::find_if(
            properties.begin(), properties.end(), [&](const HostProperty& known) {
                return known.value.getName() == property.value.getName();
            });
        if (same_name != properties.end()) {
            *same_name = property;
        } else {
            properties.push_back(property);
        }
    }
}

} // namespace

bool PluginChannelTree::handleMessage(const MessageRecord& message, zlr::IfValue**,
                                      std::uint64_t& answer)
{
    if (message.id != zlr::HOST_UPDATE_CHANNELS && message.id != zlr::HOST_UPDATE_CONFIG) {
        return false;
    }
    std::string why;
    // The tree goes only as bytes; a configuration also as the XML value of
    // the answer to a person's edit.
    const TelegramCarriers carriers{message.id == zlr::HOST_UPDATE_CONFIG, true};
    const auto text = telegramOf(message, carriers, why);
    const bool taken = text && (message.id == zlr::HOST_UPDATE_CHANNELS
                                    ? takeTree(*text, why)
                                    : takeConfiguration(*text, why));
    if (!taken) {
        m_host.recordFault(message.id, why, message.text);
        answer = zlr::RESULT_BAD_ARGUMENT;
        return true;
    }
    answer = zlr::RESULT_OK;
    return true;
}

bool PluginChannelTree::takeTree(const std::string& text, std::string& why)
{
    std::vector<HostChannel> tree;
    if (!readUpdatePluginChannels(text, tree, why)) {
        return false;
    }
    std::set<std::uint32_t> before;
    for (const HostChannel& channel : tree) {
        if (channel.parent != NO_PARENT && !before.count(channel.parent)) {
            why = "channel " + std::to_string(channel.local_id) + " names parent " +
                  std::to_string(channel.parent) + ", which does not come before it";
            return false;
        }
        before.insert(channel.local_id);
    }
    std::lock_guard lock(m_mutex);
    std::map<std::uint32_t, std::vector<HostProperty>> kept;
    for (HostChannel& channel : m_channels) {
        kept[channel.local_id] = std::move(channel.properties);
    }
    for (HostChannel& channel : tree) {
        std::vector<HostProperty> properties = std::move(kept[channel.local_id]);
        mergeProperties(properties, channel.properties);
        channel.properties = std::move(properties);
    }
    m_channels = std::move(tree);
    ++m_trees_taken;
    return true;
}

bool PluginChannelTree::takeConfiguration(const std::string& text, std::string& why)
{
    std::vector<HostChannelConfig> update;
    if (!readUpdateConfig(text, update, why)) {
        return false;
    }
    std::lock_guard lock(m_mutex);
    for (const HostChannelConfig& entry : update) {
        const bool known = std::any_of(m_channels.begin(), m_channels.end(),
                                       [&](const HostChannel& channel) {
                                           return channel.local_id == entry.local_id;
                                       });
        if (!known) {
            why = "properties of channel " + std::to_string(entry.local_id) +
                  ", which the host does not know";
            return false;
        }
    }
    for (const HostChannelConfig& entry : update) {
        for (HostChannel& channel : m_channels) {
            if (channel.local_id == entry.local_id) {
                mergeProperties(channel.properties, entry.properties);
            }
        }
    }
    ++m_configurations_taken;
    return true;
}

std::vector<HostChannel> PluginChannelTree::channels() const
{
    std::lock_guard lock(m_mutex);
    return m_channels;
}

std::optional<HostChannel> PluginChannelTree::channel(std::uint32_t local_id) const
{
    std::lock_guard lock(m_mutex);
    for (const HostChannel& channel : m_channels) {
        if (channel.local_id == local_id) {
            return channel;
        }
    }
    return std::nullopt;
}

std::optional<HostProperty> PluginChannelTree::property(std::uint32_t local_id,
                                                        const std::string& name) const
{
    const auto found = channel(local_id);
    if (!found) {
        return std::nullopt;
    }
    for (const HostProperty& property : found->properties) {
        if (property.value.getName() == name) {
            return property;
        }
    }
    return std::nullopt;
}

std::size_t PluginChannelTree::treesTaken() const
{
    std::lock_guard lock(m_mutex);
    return m_trees_taken;
}

std::size_t PluginChannelTree::configurationsTaken() const
{
    std::lock_guard lock(m_mutex);
    return m_configurations_taken;
}

void PluginChannelTree::describe(std::ostream& out) const
{
    std::lock_guard lock(m_mutex);
    out << "plug-in channels: " << m_channels.size() << " (" << m_trees_taken << " trees, "
        << m_configurations_taken << " configurations taken)\n";
    for (const HostChannel& channel : m_channels) {
        out << "  channel " << channel.local_id << " \"" << channel.default_name << "\"";
        if (channel.parent != NO_PARENT) {
            out << " parent " << channel.parent;
        }
        out << (channel.valid ? " valid" : " not valid");
        if (channel.deletable) {
            out << " deletable";
        }
        if (!channel.domain.empty()) {
            out << " domain \"" << channel.domain << "\"";
        }
        out << ", format "
            << (channel.data_format ? describeDataFormat(*channel.data_format) : "none")
            << ", timebase " << describeTimebase(channel.timebase) << "\n";
        for (const HostProperty& property : channel.properties) {
            out << "    " << property.value.getName() << ": " << describeValue(property.value)
                << "\n";
            for (const HostConstraint& constraint : property.constraints) {
                out << "      " << describeConstraint(constraint) << "\n";
            }
        }
    }
}

} // namespace zelvar_sim
