// The check that ends each channel scenario: the simulated host, reading
// with its own strict readers, holds the plug-in's tree as it stands.
#pragma once

#include "sim_host.h"
#include "sim_plugin_channel_tree.h"
#include "zlrfw_channels.h"

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <sstream>
#include <string>

namespace zlr::test {

inline std::string xmlOf(const Property& property)
{
    pugi::xml_document document;
    property.writeTo(document);
    std::ostringstream text;
    document.save(text, "", pugi::format_raw);
    return text.str();
}

inline void expectHostSeesTheTree(const zelvar_sim::SimHost& host,
                                  const zelvar_sim::PluginChannelTree& host_tree,
                                  const framework::PluginChannels& channels)
{
    for (const zelvar_sim::ProtocolFault& fault : host.faults()) {
        ADD_FAILURE() << "host refused " << zelvar_sim::messageName(fault.message_id) << ": "
                      << fault.reason;
    }
    const std::vector<zelvar_sim::HostChannel> known = host_tree.channels();
    ASSERT_EQ(known.size(), channels.getChannels().size());
    for (const auto& [local_id, channel] : channels.getChannels()) {
        SCOPED_TRACE(local_id);
        const std::optional<zelvar_sim::HostChannel> seen = host_tree.channel(local_id);
        ASSERT_TRUE(seen);
        const PluginChannelInfo& info = channel->getChannelInfo();
        EXPECT_EQ(seen->parent, info.m_local_parent_id);
        EXPECT_EQ(seen->default_name, info.m_default_name);
        EXPECT_EQ(seen->deletable, info.m_deletable);
        EXPECT_EQ(seen->valid, info.m_valid);
        ChannelConfig mine;
        for (const auto& [name, property] : channel->getProperties()) {
            property->updateTelegram(mine, name);
        }
        ASSERT_EQ(seen->properties.size(), mine.m_properties.size());
        for (std::size_t i = 0; i < mine.m_properties.size(); ++i) {
            const Property& property = mine.m_properties[i];
            EXPECT_EQ(xmlOf(seen->properties[i].value), xmlOf(property));
            const auto constraints = mine.m_constraints.find(property.getName());
            EXPECT_EQ(seen->properties[i].constraints.size(),
                      constraints == mine.m_constraints.end() ? 0u : constraints->second.size());
        }
    }
}

} // namespace zlr::test
