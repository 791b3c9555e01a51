// The UpdatePluginChannels telegram: the plug-in's output channels as the host
// shows them, each with its format, timebase, parent and properties, and the
// tree in which the host groups them. The host also hands it back to restore
// a saved configuration.
#pragma once

#include "zlrapi_data_format.h"
#include "zlrapi_timebase.h"
#include "zlrapi_update_config_xml.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zlr {

inline constexpr std::uint32_t NO_LOCAL_ID = ~std::uint32_t{0};

struct PluginChannelInfo {
    std::uint32_t m_local_id = NO_LOCAL_ID;
    DataFormat m_dataformat;
    Timebase m_timebase;
    std::string m_default_name;
    std::string m_domain;
    std::uint32_t m_local_parent_id = NO_LOCAL_ID;
    bool m_deletable = false;
    bool m_valid = false;
    // The channel's properties, and beside them their constraints.
    std::vector<Property> m_properties;
    ConstraintMap m_constraints;

    bool operator==(const PluginChannelInfo&) const = default;
};

// A group (with a name) or a channel (with a local id) of the host's tree.
struct TopologyNode {
    std::string m_name;
    std::uint32_t m_local_id = NO_LOCAL_ID;
    std::vector<TopologyNode> m_children;

    bool operator==(const TopologyNode&) const = default;
};

// The channels in parent-first order: a channel joins in the round after its
// parent, and siblings keep their order. A channel whose parent never joins
// (a cycle, or a parent that is not in the list) throws std::domain_error.
std::vector<PluginChannelInfo> sortParentFirst(const std::vector<PluginChannelInfo>& channels);

// The ids of the channels below `local_id`, depth first; only its children
// unless `recursive`. A cycle throws std::domain_error.
std::vector<std::uint32_t> findDescendants(const std::vector<PluginChannelInfo>& channels,
                                           std::uint32_t local_id, bool recursive);

struct UpdatePluginChannelsTelegram {
    std::vector<PluginChannelInfo> m_channels;
    // Its children are the roots of "ListTopology"; its own fields are unused.
    TopologyNode m_topology;

    // Throws std::domain_error for a cycle of parents and std::out_of_range
    // for a data format value without text.
    std::string generate() const;

    bool parse(const char* text, std::size_t length);

    bool operator==(const UpdatePluginChannelsTelegram&) const = default;
};

} // namespace zlr
