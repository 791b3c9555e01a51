// The host's registry of acquisition tasks: HOST_ADD_TASK and
// HOST_REMOVE_TASK. A task joins host input channels with the plug-in's
// output channels; the host runs only the tasks it has registered.
#pragma once

#include "sim_host.h"
#include "sim_host_service.h"
#include "sim_input_channels.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace zelvar_sim {

struct RegisteredTask {
    std::uint64_t key = 0;
    std::vector<std::uint64_t> input_channels;
    std::vector<std::uint64_t> output_channels; // the plug-in's local ids
    double block_duration = 0.0;

    bool operator==(const RegisteredTask&) const = default;
};

class TaskRegistry final : public HostService {
public:
    // Whether the host knows an output channel of this local id; the
    // channel tree decides. Without one every output is taken.
    using OutputCheck = std::function<bool(std::uint64_t local_id)>;

    // The registry shares the input channels, since the host may outlive
    // whoever made it.
    TaskRegistry(SimHost& host, std::shared_ptr<const InputChannels> inputs,
                 OutputCheck output_exists = {});

    void setOutputCheck(OutputCheck output_exists) { m_output_exists = std::move(output_exists); }

    // In the order of registration, which is the order the host runs them in.
    const std::vector<RegisteredTask>& tasks() const { return m_tasks; }
    const RegisteredTask* find(std::uint64_t key) const;

    // HOST_ADD_TASK refuses (answer 1, fault) a telegram that does not read,
    // and (answer 4, fault) a key that is registered already, an input the
    // host does not have, or an output the check does not know.
    // HOST_REMOVE_TASK of a key that is not registered answers 4 with a fault.
    bool handleMessage(const MessageRecord& message, zlr::IfValue** result,
                       std::uint64_t& answer) override;
    void describe(std::ostream& out) const override;

private:
    std::uint64_t add(const MessageRecord& message);
    std::uint64_t remove(const MessageRecord& message);

    SimHost& m_host;
    std::shared_ptr<const InputChannels> m_inputs;
    OutputCheck m_output_exists;
    std::vector<RegisteredTask> m_tasks;
};

} // namespace zelvar_sim
