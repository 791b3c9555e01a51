// A run of the registered tasks against a plug-in played by the test with
// the kit's own code: the order of the task messages, every sample handed
// out once and in order, and what the plug-in wrote, captured as written.
#include "plugin_side.h"
#include "sim_acquisition.h"
#include "zlrapi_data_set_xml.h"
#include "zlrapi_process_window_xml.h"
#include "zlrapi_utils.h"
#include "zlrfw_sample_position.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace zelvar_sim;
using host_data_test::Delivery;
using host_data_test::PluginSide;

struct DriverCase {
    ProcessMode mode;
    double process_interval;
    double block_duration;
    std::size_t blocks_per_request;
};

const DriverCase CASES[] = {
    {ProcessMode::stream, 0.1, 0.0, 0},
    {ProcessMode::stream, 0.037, 0.013, 0},
    {ProcessMode::stream, 0.1, 0.01, 3},
    {ProcessMode::stream, 0.004, 0.025, 1},
    {ProcessMode::time_stamped, 0.1, 0.0, 0},
    {ProcessMode::time_stamped, 0.0123, 0.005, 0},
};

struct ChannelOfTask {
    std::uint64_t id;
    SampleEncoding encoding;
    RecordShape shape;
    double rate;
    std::uint64_t length;
    std::vector<SampleSpan> gaps;
};

struct TaskOfRun {
    std::uint64_t key;
    std::vector<ChannelOfTask> channels;
};

const TaskOfRun TASKS[] = {
    {1, {{4, SampleEncoding::float64, RecordShape::synchronous, 1000.0, 1234, {{300, 340}}}}},
    {2,
     {{5, SampleEncoding::int16, RecordShape::timestamped, 2000.0, 1000, {}},
      // Its end, 7/3 s, falls between two ticks of the clock.
      {6, SampleEncoding::float32, RecordShape::variable_size, 300.0, 700, {{0, 3}}}}},
};

// The plug-in's side of one task, as a software channel instance plays it.
struct ScriptedTask {
    ScriptedTask(SimHost& host, const TaskOfRun& task) : host(host), task(task), side(host)
    {
        for (const ChannelOfTask& channel : task.channels) {
            rates[channel.id] = channel.rate;
            ids.push_back(channel.id);
        }
    }

    std::uint64_t handle(std::uint32_t id, zlr::IfValue* value)
    {
        switch (id) {
        case zlr::PLUGIN_TASK_PREPARE_PROCESSING:
            side.registerDataSet(task.key, ids);
            return side.startStream(task.key, 0.01);
        case zlr::PLUGIN_TASK_PROCESS:
            return value ? processWindow(value) : processStream();
        case zlr::PLUGIN_TASK_STOP_PROCESSING:
            side.stopStream(task.key);
            return side.unregisterDataSet(task.key);
        default:
            return zlr::RESULT_OK;
        }
    }

    std::uint64_t processWindow(zlr::IfValue* value)
    {
        auto* xml = static_cast<zlr::IfXmlValue*>(value);
        zlr::ProcessWindowTelegram window;
        if (value->getType() != zlr::VALUE_TYPE_XML ||
            !window.parse(xml->getData(), static_cast<std::size_t>(xml->getLength()))) {
            return zlr::RESULT_BAD_ARGUMENT;
        }
        windows.push_back(window);
        const double start = static_cast<double>(window.m_start.ticks) / window.m_start.frequency;
        const double end = static_cast<double>(window.m_end.ticks) / window.m_end.frequency;
        const std::optional<Delivery> delivery = side.window(task.key, start, end, rates);
        if (!delivery) {
            return zlr::RESULT_FAILED;
        }
        take(*delivery);
        return zlr::RESULT_OK;
    }

    std::uint64_t processStream()
    {
        const zlr::Timestamp now = zlr::getMasterTimestamp(&host);
        const double master = static_cast<double>(now.ticks) / now.frequency;
        double reached = 0.0;
        while (master > reached) {
            const std::optional<Delivery> delivery = side.nextBlocks(task.key, rates);
            if (!delivery) {
                return zlr::RESULT_FAILED;
            }
            if (delivery->block_count == 0) {
                break;
            }
            take(*delivery);
            reached = delivery->end;
        }
        return zlr::RESULT_OK;
    }

    // Keeps the samples and writes the span of the delivery to the output.
    void take(const Delivery& delivery)
    {
        for (const auto& [id, samples] : delivery.channels) {
            for (const auto& sample : samples) {
                walked[id].push_back(sample.tick);
                data[id] += sample.value.has_value();
            }
        }
        CapturedBlock block{written.size(), {delivery.begin, delivery.end}};
        zlr::writeSamples(&host, static_cast<std::uint32_t>(task.key * 10), block.first_index,
                          block.values.data(), block.values.size() * sizeof(double));
        written.push_back(block);
    }

    SimHost& host;
    const TaskOfRun& task;
    PluginSide side;
    std::map<std::uint64_t, double> rates;
    std::vector<std::uint64_t> ids;
    std::map<std::uint64_t, std::vector<std::uint64_t>> walked;
    std::map<std::uint64_t, std::uint64_t> data;
    std::vector<zlr::ProcessWindowTelegram> windows;
    std::vector<CapturedBlock> written;
};

void PrintTo(const DriverCase& test, std::ostream* out)
{
    *out << (test.mode == ProcessMode::stream ? "stream" : "time-stamped") << ", steps of "
         << test.process_interval << " s, blocks of " << test.block_duration << " s, "
         << test.blocks_per_request << " blocks a request";
}

class TaskDriverRun : public ::testing::TestWithParam<DriverCase> {};

TEST_P(TaskDriverRun, EverySampleOnceInOrderAndEveryTaskMessageInTurn)
{
    const DriverCase& test = GetParam();
    SimHost host;
    {
        Acquisition acquisition(host);
        std::vector<std::unique_ptr<ScriptedTask>> scripted;
        double end = 0.0;
        for (const TaskOfRun& task : TASKS) {
            zlr::AcquisitionTaskAddTelegram add;
            add.m_acquisition_task_key = task.key;
            for (const ChannelOfTask& channel : task.channels) {
                InputChannelSetup setup;
                setup.id = channel.id;
                setup.sample_rate = channel.rate;
                setup.shape = channel.shape;
                std::vector<unsigned char> bytes(channel.length * sampleBytes(channel.encoding), 7);
                acquisition.addInputChannel(
                    setup, std::make_shared<MemoryRecording>(channel.encoding, bytes, channel.gaps));
                add.m_input_channels.push_back(channel.id);
                end = std::max(end, static_cast<double>(channel.length) / channel.rate);
            }
            add.m_output_channels = {task.key * 10};
            const std::string text = add.generate();
            ASSERT_EQ(zlr::sendSyncXmlMessage(&host, zlr::HOST_ADD_TASK, 0, text.c_str(),
                                              text.size() + 1, nullptr),
                      0u);
            scripted.push_back(std::make_unique<ScriptedTask>(host, task));
        }

        std::vector<std::pair<std::uint32_t, std::uint64_t>> sent;
        RunOptions options;
        options.mode = test.mode;
        options.process_interval = test.process_interval;
        options.block_duration = test.block_duration;
        options.blocks_per_request = test.blocks_per_request;
        const RunReport report = acquisition.run(
            [&](std::uint32_t id, std::uint64_t key, zlr::IfValue* value) {
                sent.emplace_back(id, key);
                return scripted.at(key - 1)->handle(id, value);
            },
            options);

        EXPECT_TRUE(report.failures().empty());
        EXPECT_TRUE(report.all_delivered);
        EXPECT_EQ(report.end_seconds, end);
        ASSERT_GE(sent.size(), 6u);
        const std::vector<std::pair<std::uint32_t, std::uint64_t>> opening{
            {zlr::PLUGIN_TASK_INIT_TIMEBASES, 1}, {zlr::PLUGIN_TASK_INIT_TIMEBASES, 2},
            {zlr::PLUGIN_TASK_PREPARE_PROCESSING, 1}, {zlr::PLUGIN_TASK_PREPARE_PROCESSING, 2}};
        EXPECT_TRUE(std::equal(opening.begin(), opening.end(), sent.begin()));
        for (std::size_t i = 4; i + 2 < sent.size(); ++i) {
            EXPECT_EQ(sent[i], (std::pair<std::uint32_t, std::uint64_t>{zlr::PLUGIN_TASK_PROCESS, i % 2 + 1}));
        }
        EXPECT_EQ(sent[sent.size() - 2], (std::pair<std::uint32_t, std::uint64_t>{zlr::PLUGIN_TASK_STOP_PROCESSING, 1}));
        EXPECT_EQ(sent.back(), (std::pair<std::uint32_t, std::uint64_t>{zlr::PLUGIN_TASK_STOP_PROCESSING, 2}));

        for (std::size_t t = 0; t < std::size(TASKS); ++t) {
            const ScriptedTask& task = *scripted[t];
            for (const ChannelOfTask& channel : TASKS[t].channels) {
                const std::vector<std::uint64_t>& ticks = task.walked.at(channel.id);
                // Every tick up to the end of the task's data set, in order, once.
                double task_end = 0.0;
                for (const ChannelOfTask& other : TASKS[t].channels) {
                    task_end = std::max(task_end, static_cast<double>(other.length) / other.rate);
                }
                std::uint64_t expected_ticks =
                    zlr::framework::timeToSampleIndex(task_end, channel.rate);
                if (test.mode == ProcessMode::time_stamped) {
                    const zlr::Timestamp last = task.windows.back().m_end;
                    expected_ticks = zlr::framework::timeToSampleIndex(
                        static_cast<double>(last.ticks) / last.frequency, channel.rate);
                }
                ASSERT_EQ(ticks.size(), expected_ticks) << "channel " << channel.id;
                if (static_cast<double>(channel.length) / channel.rate == end) {
                    // The last window takes in the last sample and nothing behind it.
                    EXPECT_EQ(ticks.size(), channel.length);
                }
                for (std::uint64_t i = 0; i < ticks.size(); ++i) {
                    ASSERT_EQ(ticks[i], i) << "channel " << channel.id;
                }
                std::uint64_t gap_samples = 0;
                for (const SampleSpan& gap : channel.gaps) {
                    gap_samples += gap.end - gap.begin;
                }
                EXPECT_EQ(task.data.at(channel.id), channel.length - gap_samples);
            }
            if (test.mode == ProcessMode::time_stamped) {
                std::uint64_t tick = 0;
                for (const zlr::ProcessWindowTelegram& window : task.windows) {
                    EXPECT_EQ(window.m_start.ticks, tick);
                    EXPECT_GT(window.m_end.ticks, window.m_start.ticks);
                    tick = window.m_end.ticks;
                }
                EXPECT_EQ(task.windows.size(), report.process_steps);
            }
            EXPECT_EQ(acquisition.outputBlocks(static_cast<std::uint32_t>(TASKS[t].key * 10)),
                      task.written);
        }
        EXPECT_TRUE(host.faults().empty()) << host.faults().front().reason;
    }
    EXPECT_EQ(host.valuesOutsideTree(), 0);
}

INSTANTIATE_TEST_SUITE_P(HostData, TaskDriverRun, ::testing::ValuesIn(CASES));

} // namespace
