// The task and data side of the simulated host in one piece: input channels
// with their recordings, the task registry, data sets and streams, the
// master clock, the output capture and the driver of a run. It adds its
// services to a SimHost, so that the plug-in's messages reach them.
//
//   zelvar_sim::SimHost host;
//   zelvar_sim::Acquisition acquisition(host);
//   zelvar_sim::InputChannelSetup microphone;
//   microphone.id = 7;
//   microphone.sample_rate = 10000.0;
//   acquisition.addInputChannel(microphone, zelvar_sim::MemoryRecording::of(samples));
//   ... load the plug-in, create its software channel on input 7 ...
//   zelvar_sim::RunReport report = acquisition.run(session, {.process_interval = 0.05});
//   std::vector<double> frequencies = acquisition.outputValues(output_local_id);
#pragma once

#include "plugin_loader.h"
#include "sim_data_sets.h"
#include "sim_input_channels.h"
#include "sim_master_clock.h"
#include "sim_output_capture.h"
#include "sim_recording.h"
#include "sim_task_driver.h"
#include "sim_tasks.h"

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <vector>

namespace zelvar_sim {

struct AcquisitionOptions {
    // Ticks per second of the master clock.
    double clock_frequency = 1e6;
};

class Acquisition {
public:
    explicit Acquisition(SimHost& host, AcquisitionOptions options = {});
    Acquisition(const Acquisition&) = delete;
    Acquisition& operator=(const Acquisition&) = delete;

    // A host channel that plug-ins may read, fed by `recording`.
    void addInputChannel(const InputChannelSetup& setup,
                         std::shared_ptr<const Recording> recording);

    // How the task registry learns which output channels (by the plug-in's
    // local id) the host's channel tree knows; without one it takes all.
    void setOutputCheck(TaskRegistry::OutputCheck output_exists);

    // Drives every registered task through a run over the recordings.
    RunReport run(const PluginSender& send, const RunOptions& options = {});
    RunReport run(PluginSession& session, const RunOptions& options = {});

    // What the plug-in wrote to one output channel.
    const std::vector<CapturedBlock>& outputBlocks(std::uint32_t local_id) const;
    std::vector<double> outputValues(std::uint32_t local_id) const;
    // The same blocks handed over; the capture forgets them.
    std::vector<CapturedBlock> takeOutputBlocks(std::uint32_t local_id);

    // The channels, tasks, data sets, clock and captured outputs, readable.
    void describe(std::ostream& out) const;

    InputChannels& inputs() { return *m_inputs; }
    TaskRegistry& tasks() { return *m_tasks; }
    DataSets& dataSets() { return *m_data_sets; }
    MasterClock& clock() { return *m_clock; }
    OutputCapture& output() { return *m_output; }

private:
    // Shared with the services, which the host keeps after this is gone.
    std::shared_ptr<MasterClock> m_clock;
    std::shared_ptr<InputChannels> m_inputs;
    std::shared_ptr<TaskRegistry> m_tasks;
    std::shared_ptr<DataSets> m_data_sets;
    std::shared_ptr<OutputCapture> m_output;
    TaskDriver m_driver;
};

} // namespace zelvar_sim
