// Checks that need a channel of the plug-in's software channel: the task's
// messages out of order, every setting edited to and beyond its limits,
// save, clear and restore; and runs over data: the same bits from two
// channels, from a rerun, and after the module was unloaded and loaded again.
#include "sim_channel_bench.h"
#include "sim_config_telegrams.h"
#include "sim_values.h"
#include "sim_validate_checks.h"
#include "zlrapi_property_values.h"
#include "zlrbase_messages.h"

#include <cmath>
#include <cstdlib>
#include <limits>
#include <optional>

namespace zelvar_sim::validate {
namespace {

void requireCode(std::uint64_t answer, const std::string& what)
{
    CheckContext::require(isResultCode(answer), what + " answers " + std::to_string(answer) +
                                                    ", which is no result code of the contract");
}

std::uint64_t firstTaskKey(ChannelBench& bench)
{
    const auto tasks = bench.acquisition().tasks().tasks();
    return tasks.empty() ? 0 : tasks.front().key;
}

void checkOutOfOrder(CheckContext& context)
{
    PluginLibrary library(context.pluginPath());
    ChannelBench bench(library, context.seed());
    const std::uint32_t root = bench.createChannel();
    const std::string saved = bench.model().savedConfiguration();
    const std::uint64_t task = firstTaskKey(bench);
    const auto send = [&](std::uint32_t id, const char* what) {
        context.trace(std::string(what) + ", task " + std::to_string(task));
        requireCode(bench.session().send(id, task), what);
    };
    send(zlr::PLUGIN_TASK_PROCESS, "PLUGIN_TASK_PROCESS before the task was prepared");
    send(zlr::PLUGIN_TASK_STOP_PROCESSING, "PLUGIN_TASK_STOP_PROCESSING of a task never started");
    send(zlr::PLUGIN_TASK_STOP_PROCESSING, "PLUGIN_TASK_STOP_PROCESSING a second time");
    send(zlr::PLUGIN_TASK_PREPARE_PROCESSING, "PLUGIN_TASK_PREPARE_PROCESSING without timebases");
    send(zlr::PLUGIN_TASK_PREPARE_PROCESSING, "PLUGIN_TASK_PREPARE_PROCESSING a second time");
    send(zlr::PLUGIN_TASK_PROCESS, "PLUGIN_TASK_PROCESS of a prepared task");

    context.trace("PLUGIN_CONFIG_RESTORE onto a running task");
    const RestoreOutcome restored = bench.model().restoreConfiguration(saved);
    requireCode(restored.code, "PLUGIN_CONFIG_RESTORE onto a running task");
    send(zlr::PLUGIN_TASK_PROCESS, "PLUGIN_TASK_PROCESS of the task the restore replaced");
    send(zlr::PLUGIN_TASK_STOP_PROCESSING, "PLUGIN_TASK_STOP_PROCESSING after the restore");

    const std::uint64_t second_task = firstTaskKey(bench);
    const auto send_second = [&](std::uint32_t id, const char* what) {
        context.trace(std::string(what) + ", task " + std::to_string(second_task));
        requireCode(bench.session().send(id, second_task), what);
    };
    send_second(zlr::PLUGIN_TASK_INIT_TIMEBASES, "PLUGIN_TASK_INIT_TIMEBASES");
    send_second(zlr::PLUGIN_TASK_PREPARE_PROCESSING, "PLUGIN_TASK_PREPARE_PROCESSING");
    send_second(zlr::PLUGIN_TASK_PROCESS, "PLUGIN_TASK_PROCESS");
    std::vector<std::uint32_t> channels;
    for (const HostChannel& channel : bench.model().channels().channels()) {
        channels.push_back(channel.local_id);
    }
    context.trace("PLUGIN_CHANNELS_CHECK removes every channel in the middle of a run");
    requireCode(bench.model().deleteChannels(channels), "PLUGIN_CHANNELS_CHECK in a run");
    send_second(zlr::PLUGIN_TASK_PROCESS, "PLUGIN_TASK_PROCESS of a removed channel's task");
    send_second(zlr::PLUGIN_TASK_STOP_PROCESSING, "PLUGIN_TASK_STOP_PROCESSING of a removed channel's task");
    context.trace("PLUGIN_CONFIG_CLEAR after the run");
    requireCode(bench.model().clearConfiguration(), "PLUGIN_CONFIG_CLEAR");
    (void)root;
    bench.finish();
}

// Numbers at and around the limits a constraint names, and the ones no
// setting may take.
std::vector<double> trialNumbers(double current, const std::vector<HostConstraint>& constraints)
{
    std::vector<double> numbers = {current, 0.0, -1.0, 1e308, -1e308,
                                   std::numeric_limits<double>::infinity(),
                                   std::numeric_limits<double>::denorm_min()};
    for (const HostConstraint& constraint : constraints) {
        for (const auto& [name, text] : constraint.attributes) {
            char* end = nullptr;
            const double limit = std::strtod(text.c_str(), &end);
            if (end == text.c_str() || *end != '\0' || !std::isfinite(limit)) {
                continue;
            }
            const double step = std::abs(limit) * 1e-6 + 1e-9;
            numbers.insert(numbers.end(), {limit, limit - step, limit + step});
            (void)name;
        }
    }
    return numbers;
}

// The limits of a range constraint: its "min" and "max", when the first is
// not above the second (a plug-in says "no limits" with min above max).
std::optional<std::pair<double, double>> rangeOf(const std::vector<HostConstraint>& constraints)
{
    for (const HostConstraint& constraint : constraints) {
        const std::string min_text = constraint.attribute("min");
        const std::string max_text = constraint.attribute("max");
        char* min_end = nullptr;
        char* max_end = nullptr;
        const double min = std::strtod(min_text.c_str(), &min_end);
        const double max = std::strtod(max_text.c_str(), &max_end);
        if (!min_text.empty() && !max_text.empty() && *min_end == '\0' && *max_end == '\0' &&
            min <= max) {
            return std::make_pair(min, max);
        }
    }
    return std::nullopt;
}

std::optional<zlr::Property> withNumber(const zlr::Property& property, double number)
{
    zlr::Property edited = property;
    if (property.getType() == zlr::Property::SCALAR_VALUE) {
        zlr::Scalar scalar = property.getScalarValue();
        scalar.m_val = number;
        edited.setValue(scalar);
        return edited;
    }
    if (property.getType() == zlr::Property::DOUBLE_VALUE) {
        edited.setValue(number);
        return edited;
    }
    return std::nullopt;
}

std::optional<double> numberOf(const zlr::Property& property)
{
    if (property.getType() == zlr::Property::SCALAR_VALUE) {
        return property.getScalarValue().m_val;
    }
    if (property.getType() == zlr::Property::DOUBLE_VALUE) {
        return property.getDoubleValue();
    }
    return std::nullopt;
}

// The UpdateConfig telegram of `setting` whose number reads `text`; empty
// when the number cannot be told apart in the written telegram.
std::string telegramWithText(std::uint32_t root, const zlr::Property& setting, const std::string& text)
{
    constexpr double MARKER = 271828.125;
    const auto marked = withNumber(setting, MARKER);
    if (!marked) {
        return {};
    }
    std::string telegram = writeUpdateConfig(root, *marked);
    const std::string printed = "271828.125";
    const std::size_t at = telegram.find(printed);
    if (at == std::string::npos || telegram.find(printed, at + 1) != std::string::npos) {
        return {};
    }
    return telegram.replace(at, printed.size(), text);
}

// Texts where the setting's number belongs: the plug-in answers a result
// code, keeps the setting, and holds either what it had or a number within
// the setting's limits.
void editWithTexts(CheckContext& context, ChannelBench& bench, std::uint32_t root,
                   const HostProperty& setting)
{
    const std::string name = setting.value.getName();
    const auto limits = rangeOf(setting.constraints);
    for (const char* text : {"abc", "", "1e999", "-1e999", "nan", ",5", "5 Hz", "0x1p3", " 7",
                             "1,5", "--1", "1e", "\xC3\xA4"}) {
        const std::string telegram = telegramWithText(root, setting.value, text);
        if (telegram.empty()) {
            return;
        }
        const auto before = bench.model().channels().property(root, name);
        context.trace("PLUGIN_CONFIG_UPDATE " + name + " = \"" + text + "\"");
        XmlValue* value = new XmlValue(bench.host().ledger(), telegram);
        const std::uint64_t answer = bench.session().send(zlr::PLUGIN_CONFIG_UPDATE, 0, value);
        value->release();
        requireCode(answer, "PLUGIN_CONFIG_UPDATE of " + name + " to \"" + text + "\"");
        const auto shown = bench.model().channels().property(root, name);
        CheckContext::require(shown.has_value(),
                              "the setting " + name + " is gone after the text \"" + text + "\"");
        const auto now = numberOf(shown->value);
        const auto was = before ? numberOf(before->value) : std::nullopt;
        const bool unchanged = now && was && (*now == *was || (std::isnan(*now) && std::isnan(*was)));
        const bool within = now && limits && *now >= limits->first && *now <= limits->second;
        // As with the number NaN above, the text "nan" may be taken.
        const bool nan_asked = now && std::isnan(*now) && std::string(text) == "nan";
        CheckContext::require(!now || unchanged || within || nan_asked || !limits,
                              "the setting " + name + " took " + std::to_string(*now) +
                                  " from the text \"" + text + "\", beyond its limits");
    }
}

void checkSettings(CheckContext& context)
{
    PluginLibrary library(context.pluginPath());
    ChannelBench bench(library, context.seed());
    const std::uint32_t root = bench.createChannel();
    const auto channel = bench.model().channels().channel(root);
    CheckContext::require(channel.has_value(), "the host does not show the channel it was answered");
    std::size_t numeric = 0;
    for (const HostProperty& setting : channel->properties) {
        std::vector<double> numbers = trialNumbers(numberOf(setting.value).value_or(0.0), setting.constraints);
        if (const auto limits = rangeOf(setting.constraints)) {
            numbers.push_back(limits->first + (limits->second - limits->first) / 2.0);
        }
        numbers.push_back(std::numeric_limits<double>::quiet_NaN());
        for (const double number : numbers) {
            const auto edited = withNumber(setting.value, number);
            if (!edited) {
                break;
            }
            ++numeric;
            context.trace("PLUGIN_CONFIG_UPDATE " + setting.value.getName() + " = " +
                          std::to_string(number));
            requireCode(bench.model().sendConfigUpdate(root, *edited),
                        "PLUGIN_CONFIG_UPDATE of " + setting.value.getName());
            const auto shown = bench.model().channels().property(root, setting.value.getName());
            CheckContext::require(shown.has_value(), "the setting " + setting.value.getName() +
                                                         " is gone after an edit");
            // NaN passes a test of "below min or above max", so a plug-in
            // may take it; a number beyond the limits it names it may not.
            const auto now = numberOf(shown->value);
            const auto limits = rangeOf(setting.constraints);
            CheckContext::require(!now || !limits || *now != number ||
                                      (number >= limits->first && number <= limits->second),
                                  "the setting " + setting.value.getName() + " took " +
                                      std::to_string(number) + ", beyond its limits " +
                                      std::to_string(limits ? limits->first : 0.0) + " to " +
                                      std::to_string(limits ? limits->second : 0.0));
        }
    }
    // The round trip is asked of settings a person could have made: each
    // numeric setting goes back to what the channel started with, and from
    // there gets texts that are no numbers.
    for (const HostProperty& setting : channel->properties) {
        if (numberOf(setting.value)) {
            for (int pass = 0; pass < 2; ++pass) {
                context.trace("PLUGIN_CONFIG_UPDATE " + setting.value.getName() + " back to its start");
                requireCode(bench.model().sendConfigUpdate(root, setting.value),
                            "PLUGIN_CONFIG_UPDATE of " + setting.value.getName());
                if (pass == 0) {
                    editWithTexts(context, bench, root, setting);
                }
            }
        }
    }
    context.trace("save, clear, restore after " + std::to_string(numeric) + " edits");
    const std::string before = bench.settingsText(root);
    const std::string saved = bench.model().savedConfiguration();
    requireCode(bench.model().clearConfiguration(), "PLUGIN_CONFIG_CLEAR");
    const RestoreOutcome restored = bench.model().restoreConfiguration(saved);
    CheckContext::require(restored.code == zlr::RESULT_OK && restored.id_map,
                          "PLUGIN_CONFIG_RESTORE of its own saved configuration answers " +
                              std::to_string(restored.code) + (restored.id_map ? "" : " and no id map"));
    const auto new_root = restored.id_map->find(root);
    CheckContext::require(new_root != restored.id_map->end(),
                          "the restore's id map does not name the saved root channel");
    bench.model().configApplied();
    const std::string after = bench.settingsText(static_cast<std::uint32_t>(new_root->second));
    CheckContext::require(before == after, "the restored settings differ from the saved ones:\n" +
                                               before + "against\n" + after);
    bench.finish();
}

std::vector<OutputRun> runOnce(CheckContext& context, PluginLibrary& library, int channels,
                               std::vector<OutputRun>* second = nullptr)
{
    ChannelBench bench(library, context.seed());
    const std::uint32_t root = bench.createChannel();
    const std::uint32_t other = channels > 1 ? bench.createChannel() : 0;
    context.trace("a run over " + std::to_string(channels) + " channel(s)");
    const RunReport report = bench.acquisition().run(bench.session());
    for (const DriverMessage& message : report.failures()) {
        requireCode(message.answer, messageName(message.id) + " in a run");
    }
    CheckContext::require(report.process_steps > 0, "the run made no process step");
    const auto faults = bench.host().faults();
    CheckContext::require(faults.empty(), faults.empty() ? "" : "the host refused " +
                                                                    messageName(faults.front().message_id) +
                                                                    ": " + faults.front().reason);
    std::vector<OutputRun> outputs = bench.outputs(root);
    if (second) {
        *second = bench.outputs(other);
    }
    bench.finish();
    return outputs;
}

void requireSame(const std::vector<OutputRun>& a, const std::vector<OutputRun>& b,
                 const std::string& what)
{
    std::string difference;
    CheckContext::require(sameBits(a, b, difference), what + ": " + difference);
}

void checkDeterminism(CheckContext& context)
{
    PluginLibrary library(context.pluginPath());
    std::vector<OutputRun> twin;
    const std::vector<OutputRun> first = runOnce(context, library, 2, &twin);
    requireSame(first, twin, "two channels on the same data differ");
    const std::vector<OutputRun> rerun = runOnce(context, library, 1);
    requireSame(first, rerun, "a rerun on the same data differs");
}

void checkReload(CheckContext& context)
{
    std::vector<OutputRun> first;
    {
        PluginLibrary library(context.pluginPath());
        first = runOnce(context, library, 1);
    }
    context.trace("the module unloaded; loading it again");
    PluginLibrary again(context.pluginPath());
    requireSame(first, runOnce(context, again, 1), "a run after unloading and loading again differs");
}

} // namespace

std::vector<Check> channelChecks()
{
    return {
        {"out-of-order", 2,
         "task messages out of order, a restore onto a running task, channels removed in a run",
         checkOutOfOrder},
        {"settings", 2,
         "each numeric setting at, inside and beyond its limits, NaN and texts that are no "
         "numbers, then save, clear, restore",
         checkSettings},
        {"determinism", 3, "two channels on the same data and a rerun give the same bits",
         checkDeterminism},
        {"reload", 3, "unload and load again in one process with a run between", checkReload},
    };
}

} // namespace zelvar_sim::validate
