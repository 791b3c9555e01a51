// The host's record of a plug-in's output channels and their settings. Each
// HOST_UPDATE_CHANNELS is the whole tree: a channel missing from it is
// deleted with its properties. Each HOST_UPDATE_CONFIG sets properties of
// channels the tree already holds, name by name, with their constraints.
#pragma once

#include "sim_channel_tree_telegrams.h"
#include "sim_host_service.h"

#include <cstddef>
#include <mutex>
#include <optional>
#include <vector>

namespace zelvar_sim {

class SimHost;

class PluginChannelTree : public HostService {
public:
    explicit PluginChannelTree(SimHost& host) : m_host(host) {}

    bool handleMessage(const MessageRecord& message, zlr::IfValue** result,
                       std::uint64_t& answer) override;
    void describe(std::ostream& out) const override;

    // The channels in the order of the last tree, parents first.
    std::vector<HostChannel> channels() const;
    std::optional<HostChannel> channel(std::uint32_t local_id) const;
    std::optional<HostProperty> property(std::uint32_t local_id, const std::string& name) const;

    // How many trees and configurations the host took.
    std::size_t treesTaken() const;
    std::size_t configurationsTaken() const;

private:
    bool takeTree(const std::string& text, std::string& why);
    bool takeConfiguration(const std::string& text, std::string& why);

    SimHost& m_host;
    mutable std::mutex m_mutex;
    std::vector<HostChannel> m_channels;
    std::size_t m_trees_taken = 0;
    std::size_t m_configurations_taken = 0;
};

} // namespace zelvar_sim
