// The host bench around one plug-in object for the checks that need
// channels, with the session: by default two recorded inputs whose tones
// come from the check's seed, or the inputs a check brings.
#pragma once

#include "plugin_loader.h"
#include "sim_acquisition.h"
#include "sim_check_context.h"
#include "sim_host.h"
#include "sim_host_bench.h"
#include "sim_host_model.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace zelvar_sim::validate {

// What one output channel of a run carried, by its place under its root.
struct OutputRun {
    std::string name;
    std::vector<CapturedBlock> blocks;
};

// One input channel of the host and the recording behind it.
struct BenchInput {
    InputChannelSetup setup;
    std::shared_ptr<const Recording> recording;
};

class ChannelBench {
public:
    // Loads nothing: `library` stays the caller's. Skips the check (with
    // CheckSkipped) when the plug-in registers no software channel.
    ChannelBench(PluginLibrary& library, std::uint64_t seed);
    // The same over inputs of the caller's.
    ChannelBench(PluginLibrary& library, const std::vector<BenchInput>& inputs);
    ~ChannelBench();

    SimHost& host() { return m_bench.host(); }
    HostModel& model() { return m_bench.model(); }
    Acquisition& acquisition() { return m_bench.acquisition(); }
    PluginSession& session() { return *m_session; }

    // A channel over every input; answers its root's local id, or fails the
    // check when the plug-in makes none.
    std::uint32_t createChannel();

    // The outputs under `root`, in the host's order, after a run.
    std::vector<OutputRun> outputs(std::uint32_t root) const;

    // The settings of `root` as their XML, one line each, for comparing.
    std::string settingsText(std::uint32_t root) const;

    // PLUGIN_FINISH, delete, and fails the check on value objects left alive.
    void finish();

private:
    HostBench m_bench;
    std::unique_ptr<PluginSession> m_session;
};

// True when the two runs carry the same bits, NaN payloads included; else
// `difference` says where they part.
bool sameBits(const std::vector<OutputRun>& a, const std::vector<OutputRun>& b,
              std::string& difference);

// The answers of the contract: 0, 1, 4, 12, 13 and all bits set.
bool isResultCode(std::uint64_t answer);

} // namespace zelvar_sim::validate
