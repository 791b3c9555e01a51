// The whole simulated host around one software channel: the host object, its
// configuration model and its acquisition side, wired so that a task may
// only write to channels the host's tree shows, plus the inputs a channel
// will be offered. Programs, benchmarks, checks and tests that run a
// plug-in's channel over recordings start here instead of wiring the pieces
// again.
//
//   zelvar_sim::HostBench bench;
//   bench.addInput({.id = 1, .long_name = "Mic", .sample_rate = 48000}, recording);
//   zelvar_sim::PluginSession session(library, bench.host());
//   bench.model().attach(session);
//   const auto created = bench.createChannel(); // over every input added
//   bench.acquisition().run(session);
//   for (const HostChannel& output : bench.outputsOf(root)) ...
//   session.finish();
//   bench.model().detach();
#pragma once

#include "sim_acquisition.h"
#include "sim_host.h"
#include "sim_host_model.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace zelvar_sim {

class HostBench {
public:
    // The host calls itself `name` `version`; a test may hand in a host
    // object of its own that misbehaves.
    explicit HostBench(const std::string& name = "Zelvar", const std::string& version = "5.6",
                       std::unique_ptr<SimHost> host = std::make_unique<SimHost>());
    HostBench(const HostBench&) = delete;
    HostBench& operator=(const HostBench&) = delete;

    SimHost& host() { return *m_host; }
    HostModel& model() { return *m_model; }
    Acquisition& acquisition() { return *m_acquisition; }
    const SimHost& host() const { return *m_host; }
    const HostModel& model() const { return *m_model; }
    const Acquisition& acquisition() const { return *m_acquisition; }

    // An input channel with its recording, offered to the next channel made
    // by createChannel() as synchronous scalar data.
    void addInput(const InputChannelSetup& setup, std::shared_ptr<const Recording> recording);

    // The create dialogue over every input added so far.
    CreateOutcome createChannel();

    // The channels under `root` in the host's tree, in tree order.
    std::vector<HostChannel> outputsOf(std::uint32_t root) const;

private:
    std::unique_ptr<SimHost> m_host;
    std::unique_ptr<HostModel> m_model;
    std::unique_ptr<Acquisition> m_acquisition;
    std::vector<zlr::InputChannelFormat> m_candidates;
};

} // namespace zelvar_sim
