// Drives the registered tasks the way the host runs a measurement: each
// task's timebases, its preparation, process steps at an interval of host
// time while the master clock runs over the recordings, and its stop.
#pragma once

#include "sim_data_sets.h"
#include "sim_input_channels.h"
#include "sim_master_clock.h"
#include "sim_tasks.h"
#include "zlrbase_values.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace zelvar_sim {

// Hands one message to the plug-in and answers its result code.
using PluginSender =
    std::function<std::uint64_t(std::uint32_t id, std::uint64_t key, zlr::IfValue* value)>;

enum class ProcessMode {
    stream,       // PLUGIN_TASK_PROCESS without a value: the plug-in pulls its stream
    time_stamped, // PLUGIN_TASK_PROCESS with the span of the step
};

struct RunOptions {
    // Duration of a data block in seconds; 0 takes what the stream asks for.
    double block_duration = 0.0;
    // Host time between two process steps, in seconds.
    double process_interval = 0.1;
    ProcessMode mode = ProcessMode::stream;
    // At most this many blocks per request for a stream's next blocks; 0: all due.
    std::size_t blocks_per_request = 0;
    // Steps the plug-in is given, once the recordings have ended, to take
    // the last data of its streams before the run gives up.
    std::uint64_t extra_steps = 16;

    // A clock that does not tick evenly, as a loaded host's does: the host
    // time of each step, taken in turn from this list (seconds) instead of
    // process_interval. A 0 is a step at which the clock stands still, a
    // long one a jump forward. A list without a positive entry is ignored,
    // since the run would never end.
    std::vector<double> step_intervals{};
    // Every this many steps (0: never) two adjoining steps reach the plug-in
    // in swapped order: the later span first, then the earlier one. With
    // time stamps the windows come out of order; a stream sees the clock go
    // back and forward again.
    std::uint64_t swap_every = 0;
};

// One message the driver sent and what the plug-in answered.
struct DriverMessage {
    std::uint32_t id = 0;
    std::uint64_t task_key = 0;
    std::uint64_t answer = 0;
};

struct RunReport {
    std::uint64_t process_steps = 0;
    double end_seconds = 0.0;  // where the recordings of the run's tasks end
    // The clock passed the end, and (stream mode) every stream handed out
    // its last block.
    bool all_delivered = false;
    std::vector<DriverMessage> messages;

    // Messages the plug-in did not answer with 0.
    std::vector<DriverMessage> failures() const;
};

class TaskDriver {
public:
    TaskDriver(SimHost& host, const TaskRegistry& tasks, const InputChannels& inputs,
               DataSets& data_sets, MasterClock& clock);

    // Runs every task registered now, from the clock's tick 0. The process
    // steps go on until the clock has passed the end of every task's
    // recordings and every stream has handed out its last block.
    RunReport run(const PluginSender& send, const RunOptions& options);

private:
    // Sends PLUGIN_TASK_PROCESS to every task for the span [start, end].
    void processStep(const std::vector<RegisteredTask>& tasks, const PluginSender& send,
                     const RunOptions& options, zlr::Timestamp start, zlr::Timestamp end,
                     RunReport& report);
    double endOfRecordings(const std::vector<RegisteredTask>& tasks) const;

    SimHost& m_host;
    const TaskRegistry& m_tasks;
    const InputChannels& m_inputs;
    DataSets& m_data_sets;
    MasterClock& m_clock;
};

} // namespace zelvar_sim
