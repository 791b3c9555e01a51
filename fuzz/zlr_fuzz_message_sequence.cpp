// The loaded plug-in driven through the simulated host by a sequence of
// host messages that the input decodes to: raw messages with any id, key and
// value (telegrams assembled from the contract's element and attribute
// names), the host's own dialogues (create, edit, save, clear, restore) and
// runs over sample data with any block size, clock and process mode. The
// module is loaded once per process; each input gets a fresh plug-in object
// and host, and must leave no host value alive.
#include "zlr_fuzz_harness.h"

#include "plugin_loader.h"
#include "sim_host_bench.h"
#include "sim_values.h"
#include "zlrbase_messages.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <numbers>
#include <string>
#include <vector>

namespace {

using zelvar_sim::HostBench;
using zelvar_sim::PluginSession;

constexpr double RATE = 1000.0;
constexpr std::size_t MAX_STEPS = 16;

// With ZLR_FUZZ_TRACE set, each step is told on stderr, so that a finding's
// input can be read as the sequence it is.
void trace(const std::string& line)
{
    static const bool tracing = std::getenv("ZLR_FUZZ_TRACE") != nullptr;
    if (tracing) {
        std::fprintf(stderr, "step: %s\n", line.c_str());
    }
}

const std::uint32_t MESSAGE_IDS[] = {
    zlr::PLUGIN_EVENT,
    zlr::PLUGIN_CUSTOM_REQUEST,
    zlr::PLUGIN_CHANNELS_CHECK,
    zlr::PLUGIN_CONFIG_UPDATE,
    zlr::PLUGIN_CONFIG_RESTORE,
    zlr::PLUGIN_CONFIG_CLEAR,
    zlr::PLUGIN_CONFIG_APPLIED,
    zlr::PLUGIN_CHANNEL_IDS_MAPPED,
    zlr::PLUGIN_CHANNEL_DATA_FORMAT,
    zlr::PLUGIN_CHANNEL_CONFIG_CHANGED,
    zlr::PLUGIN_CHANNEL_STATUS,
    zlr::PLUGIN_TASK_PROCESS,
    zlr::PLUGIN_TASK_INIT_TIMEBASES,
    zlr::PLUGIN_TASK_PREPARE_PROCESSING,
    zlr::PLUGIN_TASK_STOP_PROCESSING,
    zlr::PLUGIN_SOFTWARE_CHANNEL_CREATE,
    zlr::PLUGIN_SOFTWARE_CHANNEL_QUERY_ACTION,
    zlr::PLUGIN_SOFTWARE_CHANNEL_HAS_INSTANCES,
};

const char* const ELEMENTS[] = {
    "UpdateConfig", "UpdatePluginChannels", "Channels", "Channel", "ChannelIDMap",
    "ChannelMappingPair", "CreateSoftwareChannel", "QuerySoftwareChannelAction", "ServiceName",
    "Property", "Group", "ScalarValue", "DoubleValue", "StringValue", "BooleanValue", "EnumValue",
    "Value", "Unit", "ChannelIDList", "ChannelID", "Constraints", "ScalarRangeConstraint",
    "DoubleRangeConstraint", "ChannelIdsConstraint", "VisibilityConstraint", "DataFormat",
    "SimpleTimebase", "TimebaseWithOffset", "Parent", "Start", "End", "MasterTimebaseValue",
    "ChannelConfigChanged", "StreamDescriptors", "StreamDescriptor", "DataRegions", "DataRegion",
    "Intervals", "Interval", "InvalidRegions", "DataBlockList", "DataBlock", "Scaling", "Linear",
};

const char* const ATTRIBUTES[] = {
    "name", "local_id", "channel_id", "id", "protocol_version", "ticks", "frequency", "valid",
    "status", "default_name", "deletable", "min", "max", "min_unit", "max_unit", "first", "second",
    "sample_occurrence", "sample_format", "sample_dimension", "sample_value_type", "offset",
    "begin", "end", "stream_id", "data_set_key", "count", "duration", "timestamp", "visibility",
    "max_items", "channel_type", "enum", "factor",
};

const char* const WORDS[] = {
    "0", "1", "2", "-1", "4294967295", "18446744073709551615", "1e308", "1e-320", "nan", "inf",
    "-inf", "0x10", "1.0", "2.0", "SYNC", "ASYNC", "double", "scalar", "true", "false", "True",
    "Hz", "s", "%", "FREQUENCY_MEASUREMENT/WindowLength", "FREQUENCY_MEASUREMENT/WindowOverlap",
    "FREQUENCY_MEASUREMENT/MinFrequency", "FREQUENCY_MEASUREMENT/MaxFrequency",
    "FREQUENCY_MEASUREMENT/InputChannels", "FREQUENCY_MEASUREMENT/StatusText", "Used",
    "SoftwareChannelInstanceKey", "FREQUENCY_MEASUREMENT", "",
};

template <typename T, std::size_t N>
const T& pick(FuzzedDataProvider& input, const T (&table)[N])
{
    return table[input.ConsumeIntegralInRange<std::size_t>(0, N - 1)];
}

std::string word(FuzzedDataProvider& input)
{
    if (input.ConsumeBool()) {
        return pick(input, WORDS);
    }
    return input.ConsumeRandomLengthString(16);
}

void appendElement(FuzzedDataProvider& input, std::string& text, int depth)
{
    const std::string name = pick(input, ELEMENTS);
    text += "<" + name;
    const int attributes = input.ConsumeIntegralInRange(0, 3);
    for (int i = 0; i < attributes; ++i) {
        text += std::string(" ") + pick(input, ATTRIBUTES) + "=\"" + word(input) + "\"";
    }
    const int children = depth < 6 ? input.ConsumeIntegralInRange(0, 3) : 0;
    if (children == 0 && input.ConsumeBool()) {
        text += "/>";
        return;
    }
    text += ">";
    if (children == 0) {
        text += word(input);
    }
    for (int i = 0; i < children; ++i) {
        appendElement(input, text, depth + 1);
    }
    // Now and then the end tag is left out, so that readers meet broken text.
    if (input.ConsumeIntegralInRange(0, 15) != 0) {
        text += "</" + name + ">";
    }
}

std::string telegram(FuzzedDataProvider& input)
{
    std::string text;
    if (input.ConsumeBool()) {
        text = "<?xml version=\"1.0\"?>";
    }
    appendElement(input, text, 0);
    return text;
}

zlr::IfValue* hostValue(FuzzedDataProvider& input, zelvar_sim::SimHost& host)
{
    switch (input.ConsumeIntegralInRange(0, 5)) {
    case 0:
        return nullptr;
    case 1:
        return new zelvar_sim::StringValue(host.ledger(), word(input));
    case 2:
        return new zelvar_sim::BooleanValue(host.ledger(), input.ConsumeBool());
    case 3:
        return new zelvar_sim::UInt64Value(host.ledger(), input.ConsumeIntegral<std::uint64_t>());
    default:
        return new zelvar_sim::XmlValue(host.ledger(), telegram(input));
    }
}

// Keys that find something now and then: the host's channel and task ids,
// small numbers, and anything.
std::uint64_t key(FuzzedDataProvider& input, HostBench& bench)
{
    switch (input.ConsumeIntegralInRange(0, 3)) {
    case 0: {
        const auto tasks = bench.acquisition().tasks().tasks();
        if (!tasks.empty()) {
            return tasks[input.ConsumeIntegralInRange<std::size_t>(0, tasks.size() - 1)].key;
        }
        return 0;
    }
    case 1: {
        const auto channels = bench.model().channels().channels();
        if (!channels.empty()) {
            return channels[input.ConsumeIntegralInRange<std::size_t>(0, channels.size() - 1)].local_id;
        }
        return 0;
    }
    case 2:
        return input.ConsumeIntegralInRange<std::uint64_t>(0, 8);
    default:
        return input.ConsumeIntegral<std::uint64_t>();
    }
}

std::shared_ptr<const zelvar_sim::Recording> recording(FuzzedDataProvider& input)
{
    const std::size_t length = input.ConsumeIntegralInRange<std::size_t>(0, 2000);
    const double frequency = input.ConsumeFloatingPointInRange<double>(1.0, 499.0);
    std::vector<double> samples(length);
    for (std::size_t i = 0; i < length; ++i) {
        samples[i] = std::sin(2.0 * std::numbers::pi * frequency * static_cast<double>(i) / RATE);
    }
    std::vector<zelvar_sim::SampleSpan> gaps;
    const int gap_count = input.ConsumeIntegralInRange(0, 3);
    for (int i = 0; i < gap_count; ++i) {
        const std::uint64_t begin = input.ConsumeIntegralInRange<std::uint64_t>(0, length);
        gaps.push_back({begin, begin + input.ConsumeIntegralInRange<std::uint64_t>(1, 500)});
    }
    if (length > 0 && input.ConsumeBool()) {
        samples[input.ConsumeIntegralInRange<std::size_t>(0, length - 1)] =
            input.ConsumeBool() ? std::nan("") : HUGE_VAL;
    }
    return zelvar_sim::MemoryRecording::of(samples, gaps);
}

void run(FuzzedDataProvider& input, HostBench& bench, PluginSession& session)
{
    zelvar_sim::RunOptions options;
    options.mode = input.ConsumeBool() ? zelvar_sim::ProcessMode::stream
                                       : zelvar_sim::ProcessMode::time_stamped;
    // Bounded below, so that a run over two seconds of data stays a few
    // hundred steps at most and an input a fraction of a second.
    options.block_duration = input.ConsumeBool() ? 0.0 : input.ConsumeFloatingPointInRange(0.005, 2.0);
    options.process_interval = input.ConsumeFloatingPointInRange(0.05, 2.0);
    options.blocks_per_request = input.ConsumeIntegralInRange<std::size_t>(0, 3);
    const int intervals = input.ConsumeIntegralInRange(0, 4);
    for (int i = 0; i < intervals; ++i) {
        options.step_intervals.push_back(input.ConsumeBool() ? 0.0
                                                             : input.ConsumeFloatingPointInRange(0.01, 3.0));
    }
    options.swap_every = input.ConsumeIntegralInRange<std::uint64_t>(0, 3);
    trace(std::string("run, ") + (options.mode == zelvar_sim::ProcessMode::stream ? "streamed" : "in windows") +
          ", blocks of " + std::to_string(options.block_duration) + " s, steps of " +
          std::to_string(options.process_interval) + " s");
    const zelvar_sim::RunReport report = bench.acquisition().run(session, options);
    trace("  " + std::to_string(report.process_steps) + " steps");
}

// One step of the sequence; host-side refusals (a setting the channel does
// not show, a number that does not read) are the host's, not findings.
void step(FuzzedDataProvider& input, HostBench& bench, PluginSession& session)
{
    switch (input.ConsumeIntegralInRange(0, 7)) {
    case 0:
    case 1: {
        const std::uint32_t id = pick(input, MESSAGE_IDS);
        const std::uint64_t message_key = key(input, bench);
        zlr::IfValue* value = hostValue(input, bench.host());
        zlr::IfValue* result = nullptr;
        const bool with_result = input.ConsumeBool();
        trace(zelvar_sim::messageName(id) + " key " + std::to_string(message_key) + " value " +
              (value ? zelvar_sim::valueText(value) : std::string("none")));
        const std::uint64_t answer = session.send(id, message_key, value, with_result ? &result : nullptr);
        trace("  answer " + std::to_string(answer));
        if (result) {
            result->release();
        }
        if (value) {
            value->release();
        }
        break;
    }
    case 2:
        trace("create a channel");
        bench.createChannel();
        break;
    case 3: {
        const auto channels = bench.model().channels().channels();
        if (channels.empty()) {
            break;
        }
        const auto& channel = channels[input.ConsumeIntegralInRange<std::size_t>(0, channels.size() - 1)];
        if (channel.properties.empty()) {
            break;
        }
        const auto& property =
            channel.properties[input.ConsumeIntegralInRange<std::size_t>(0, channel.properties.size() - 1)];
        const std::string text = word(input);
        trace("edit " + property.value.getName() + " of " + std::to_string(channel.local_id) + " to \"" +
              text + "\"");
        try {
            bench.model().editProperty(channel.local_id, property.value.getName(), text);
        } catch (const std::exception&) {
        }
        break;
    }
    case 4:
        run(input, bench, session);
        break;
    case 5: {
        trace("save and restore");
        const std::string saved = bench.model().savedConfiguration();
        if (input.ConsumeBool()) {
            bench.model().clearConfiguration();
        }
        bench.model().restoreConfiguration(saved);
        bench.model().configApplied();
        break;
    }
    case 6: {
        std::vector<std::uint32_t> doomed;
        for (const auto& channel : bench.model().channels().channels()) {
            if (input.ConsumeBool()) {
                doomed.push_back(channel.local_id);
            }
        }
        trace("remove " + std::to_string(doomed.size()) + " channels");
        bench.model().deleteChannels(doomed);
        break;
    }
    default:
        trace("clear");
        bench.model().clearConfiguration();
        break;
    }
}

zelvar_sim::PluginLibrary& library()
{
    // The fuzz build's own plug-in, or another one named in the environment.
    static zelvar_sim::PluginLibrary loaded(std::getenv("ZLR_FUZZ_PLUGIN") ? std::getenv("ZLR_FUZZ_PLUGIN")
                                                                           : ZLR_FUZZ_PLUGIN_PATH);
    return loaded;
}

} // namespace

extern "C" int ZLR_FUZZ_ENTRY(const std::uint8_t* data, std::size_t size)
{
    zlr::fuzz::prepareLogging();
    FuzzedDataProvider input(data, size);
    zelvar_sim::PluginLibrary& plugin = library();
    HostBench bench("Zelvar", plugin.manifestInfo().minimum_host_version);
    bench.host().limitMessageLog(0);
    const int inputs = input.ConsumeIntegralInRange(1, 2);
    for (int i = 0; i < inputs; ++i) {
        bench.addInput({.id = static_cast<std::uint64_t>(i + 1), .long_name = "Input " + std::to_string(i),
                        .sample_rate = RATE},
                       recording(input));
    }
    {
        PluginSession session(plugin, bench.host());
        bench.model().attach(session);
        for (std::size_t i = 0; i < MAX_STEPS && input.remaining_bytes() > 0; ++i) {
            step(input, bench, session);
        }
        bench.model().detach();
        session.finish();
    }
    zlr::fuzz::expect(bench.host().valuesOutsideTree() == 0,
                      "every host value the plug-in was given or made is released");
    return 0;
}
