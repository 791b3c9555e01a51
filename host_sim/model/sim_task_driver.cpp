#include "sim_task_driver.h"

#include "sim_data_set_writers.h"
#include "sim_values.h"
#include "zlrbase_messages.h"

#include <algorithm>
#include <cmath>

namespace zelvar_sim {

std::vector<DriverMessage> RunReport::failures() const
{
    std::vector<DriverMessage> failed;
    std::copy_if(messages.begin(), messages.end(), std::back_inserter(failed),
                 [](const DriverMessage& message) { return message.answer != zlr::RESULT_OK; });
    return failed;
}

TaskDriver::TaskDriver(SimHost& host, const TaskRegistry& tasks, const InputChannels& inputs,
                       DataSets& data_sets, MasterClock& clock)
    : m_host(host), m_tasks(tasks), m_inputs(inputs), m_data_sets(data_sets), m_clock(clock)
{
}

double TaskDriver::endOfRecordings(const std::vector<RegisteredTask>& tasks) const
{
    double end = 0.0;
    for (const RegisteredTask& task : tasks) {
        for (std::uint64_t id : task.input_channels) {
            if (const InputChannelEntry* channel = m_inputs.find(id)) {
                end = std::max(end, static_cast<double>(channel->recording->length()) /
                                        channel->setup.sample_rate);
            }
        }
    }
    return end;
}

void TaskDriver::processStep(const std::vector<RegisteredTask>& tasks, const PluginSender& send,
                             const RunOptions& options, zlr::Timestamp start, zlr::Timestamp end,
                             RunReport& report)
{
    for (const RegisteredTask& task : tasks) {
        std::uint64_t answer = 0;
        if (options.mode == ProcessMode::time_stamped) {
            XmlValue* window = new XmlValue(m_host.ledger(), writeProcessWindow(start, end));
            answer = send(zlr::PLUGIN_TASK_PROCESS, task.key, window);
            window->release();
        } else {
            answer = send(zlr::PLUGIN_TASK_PROCESS, task.key, nullptr);
        }
        report.messages.push_back({zlr::PLUGIN_TASK_PROCESS, task.key, answer});
    }
    ++report.process_steps;
}

RunReport TaskDriver::run(const PluginSender& send, const RunOptions& options)
{
    RunReport report;
    // A copy: the plug-in may take a task down and up again while it runs.
    const std::vector<RegisteredTask> tasks = m_tasks.tasks();
    report.end_seconds = endOfRecordings(tasks);
    m_data_sets.setBlockDuration(options.block_duration);
    m_data_sets.setBlocksPerRequest(options.blocks_per_request);
    m_clock.setTicks(0);

    const auto sendToAll = [&](std::uint32_t id) {
        for (const RegisteredTask& task : tasks) {
            report.messages.push_back({id, task.key, send(id, task.key, nullptr)});
        }
    };
    sendToAll(zlr::PLUGIN_TASK_INIT_TIMEBASES);
    sendToAll(zlr::PLUGIN_TASK_PREPARE_PROCESSING);

    // A stream's last block ends exactly at the end, so the clock must reach
    // it. A window rather stops short of a tick than take in a sample behind
    // the recording, which the plug-in would read as a gap.
    const std::uint64_t end_ticks =
        options.mode == ProcessMode::stream
            ? m_clock.ticksAtOrAfter(report.end_seconds)
            : std::max(m_clock.ticksAtOrBefore(report.end_seconds),
                       std::min<std::uint64_t>(1, m_clock.ticksAtOrAfter(report.end_seconds)));
    const std::uint64_t interval =
        std::max<std::uint64_t>(1, m_clock.ticksAtOrAfter(options.process_interval));
    const bool uneven = std::any_of(options.step_intervals.begin(), options.step_intervals.end(),
                                    [](double seconds) { return seconds > 0.0; });
    std::uint64_t step = 0;
    const auto nextInterval = [&]() -> std::uint64_t {
        if (!uneven) {
            return interval;
        }
        const double seconds = options.step_intervals[step++ % options.step_intervals.size()];
        return seconds > 0.0 ? std::max<std::uint64_t>(1, m_clock.ticksAtOrAfter(seconds)) : 0;
    };
    std::uint64_t extra_steps = 0;
    while (!tasks.empty()) {
        const zlr::Timestamp start = m_clock.now();
        const bool ended = start.ticks >= end_ticks;
        if (ended && (options.mode == ProcessMode::time_stamped ||
                      m_data_sets.allStreamsDelivered() || extra_steps++ >= options.extra_steps)) {
            break;
        }
        zlr::Timestamp end = start;
        end.ticks = ended ? start.ticks + interval : std::min(start.ticks + nextInterval(), end_ticks);
        const bool swap = !ended && options.swap_every > 0 &&
                          report.process_steps % options.swap_every == options.swap_every - 1;
        zlr::Timestamp later_end = end;
        later_end.ticks = swap ? std::min(end.ticks + nextInterval(), end_ticks) : end.ticks;
        if (later_end.ticks > end.ticks) {
            // The later span first, with the clock already at its end; a
            // stream then reads the clock back at the earlier end.
            m_clock.setTicks(later_end.ticks);
            processStep(tasks, send, options, end, later_end, report);
            m_clock.setTicks(end.ticks);
            processStep(tasks, send, options, start, end, report);
            m_clock.setTicks(later_end.ticks);
            continue;
        }
        m_clock.setTicks(end.ticks);
        processStep(tasks, send, options, start, end, report);
    }
    // Windows carry their data with them; only streams can be left behind.
    report.all_delivered = m_clock.now().ticks >= end_ticks &&
                           (options.mode == ProcessMode::time_stamped ||
                            m_data_sets.allStreamsDelivered());

    sendToAll(zlr::PLUGIN_TASK_STOP_PROCESSING);
    return report;
}

} // namespace zelvar_sim
