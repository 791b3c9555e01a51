#include "sim_frequency_run.h"

#include "sim_frequency_table.h"
#include "sim_host_bench.h"
#include "zlrapi_property_values.h"
#include "zlrapi_utils.h"
#include "zlrbase_messages.h"

#include <cstdlib>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>

namespace zelvar_sim {
namespace {

const char* const SETTING_KEYS[] = {
    "FREQUENCY_MEASUREMENT/InputChannels", "FREQUENCY_MEASUREMENT/WindowOverlap",
    "FREQUENCY_MEASUREMENT/WindowLength",  "FREQUENCY_MEASUREMENT/MinFrequency",
    "FREQUENCY_MEASUREMENT/MaxFrequency",  "FREQUENCY_MEASUREMENT/StatusText",
};

std::string shownNumber(double value)
{
    std::ostringstream text;
    text << value;
    return text.str();
}

// A property's value the way a person reads it.
std::string shownValue(const zlr::Property& property)
{
    switch (property.getType()) {
    case zlr::Property::SCALAR_VALUE: {
        const zlr::Scalar scalar = property.getScalarValue();
        return shownNumber(scalar.m_val) + (scalar.m_unit.empty() ? "" : " " + scalar.m_unit);
    }
    case zlr::Property::DOUBLE_VALUE:
        return shownNumber(property.getDoubleValue());
    case zlr::Property::RANGE_VALUE: {
        const zlr::Range range = property.getRangeValue();
        return shownNumber(range.m_min) + " .. " + shownNumber(range.m_max);
    }
    case zlr::Property::CHANNEL_ID_LIST: {
        std::string ids;
        for (const std::uint64_t id : property.getChannelIDListValue()) {
            ids += (ids.empty() ? "" : ", ") + std::to_string(id);
        }
        return ids;
    }
    default:
        return property.getStringValue();
    }
}

// The channel as a person made it before, restored as the host restores a
// project: PLUGIN_CONFIG_RESTORE, then the saved inputs' ids mapped onto the
// run's inputs in order (a saved input beyond them is dropped, a run input
// beyond them is added). A restored channel meets its first usable input
// again and takes the frequency limits of a new one, so a saved number the
// plug-in did not keep is typed in again, as a person would. Answers the
// restored root.
std::uint32_t restoreChannel(HostModel& model, const SavedSettings& saved,
                             std::size_t input_count)
{
    const RestoreOutcome restored = model.restoreConfiguration(saved.record);
    if (restored.code != zlr::RESULT_OK || !restored.id_map) {
        throw std::runtime_error("the plug-in did not restore the saved settings (answer " +
                                 std::to_string(restored.code) + ")");
    }
    const auto root = restored.id_map->find(saved.root);
    if (root == restored.id_map->end()) {
        throw std::runtime_error("the plug-in's restore does not name the saved channel");
    }
    const auto new_root = static_cast<std::uint32_t>(root->second);
    std::map<std::uint64_t, std::uint64_t> inputs;
    for (std::size_t k = 0; k < saved.inputs.size(); ++k) {
        inputs.emplace(saved.inputs[k], k < input_count ? k + 1 : zlr::NO_CHANNEL_ID);
    }
    model.mapChannelIds(inputs);
    if (saved.inputs.size() < input_count) {
        std::string all;
        for (std::size_t id = 1; id <= input_count; ++id) {
            all += (all.empty() ? "" : ",") + std::to_string(id);
        }
        model.editProperty(new_root, "FREQUENCY_MEASUREMENT/InputChannels", all);
    }
    model.configApplied();
    for (const auto& [key, saved_value] : saved.numbers) {
        const auto now = model.channels().property(new_root, key);
        if (now && now->value.getType() == zlr::Property::SCALAR_VALUE &&
            now->value.getScalarValue().m_val != saved_value) {
            model.editProperty(new_root, key, numberText(saved_value));
        }
    }
    return new_root;
}

} // namespace

FrequencyRunResult runFrequencyMeasurement(PluginLibrary& library,
                                           const FrequencyRunRequest& request)
{
    auto host = std::make_unique<SimHost>();
    host->limitMessageLog(request.kept_messages);
    host->setObserver(request.observer);
    HostBench bench("Zelvar", "5.6", std::move(host));
    HostModel& model = bench.model();
    Acquisition& acquisition = bench.acquisition();
    std::uint64_t next_id = 1;
    for (const DemoInput& input : request.inputs) {
        bench.addInput({.id = next_id++, .long_name = input.long_name,
                        .sample_rate = input.sample_rate},
                       input.recording);
    }

    FrequencyRunResult result;
    {
        PluginSession session(library, bench.host());
        model.attach(session);
        std::uint32_t root = 0;
        try {
            if (request.restore) {
                root = restoreChannel(model, *request.restore, request.inputs.size());
            } else {
                const CreateOutcome created = bench.createChannel();
                if (!created.response || created.response->m_created_channels.empty()) {
                    throw std::runtime_error("the plug-in made no channel (answer " +
                                             std::to_string(created.code) + ")");
                }
                root = created.response->m_created_channels.front();
            }
        } catch (...) {
            model.detach();
            throw;
        }

        for (const SettingEdit& edit : request.edits) {
            model.editProperty(root, edit.key, edit.text);
            const auto shown = model.channels().property(root, edit.key);
            const std::string now = shown ? shownValue(shown->value) : std::string("nothing");
            if (shown && shown->value.getType() == zlr::Property::SCALAR_VALUE &&
                shown->value.getScalarValue().m_val != std::strtod(edit.text.c_str(), nullptr)) {
                result.refused_edits.push_back(edit.key + " = " + edit.text + " (kept " + now + ")");
            }
        }

        for (const char* key : SETTING_KEYS) {
            const auto shown = model.channels().property(root, key);
            const auto label = model.translations().translate("en", "ConfigKeys", key);
            result.settings.push_back(
                {key, label ? *label : key, shown ? shownValue(shown->value) : "(none)"});
        }

        if (const auto length = model.channels().property(root, "FREQUENCY_MEASUREMENT/WindowLength");
            length && length->value.getType() == zlr::Property::SCALAR_VALUE) {
            result.window_length = length->value.getScalarValue().m_val;
        }
        result.task_registered = !acquisition.tasks().tasks().empty();
        result.report = acquisition.run(session, request.run);
        result.saved_configuration = model.savedConfiguration();
        for (const HostChannel& channel : bench.outputsOf(root)) {
            result.outputs.push_back({channel.local_id, channel.default_name,
                                      channel.timebase.m_frequency, channel.valid,
                                      acquisition.takeOutputBlocks(channel.local_id)});
        }
        session.finish();
        model.detach();
    }
    result.faults = bench.host().faults();
    result.values_left = bench.host().valuesOutsideTree();
    return result;
}

} // namespace zelvar_sim
