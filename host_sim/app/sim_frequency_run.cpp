#include "sim_frequency_run.h"

#include "sim_host_bench.h"
#include "zlrapi_property_values.h"

#include <cstdlib>
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

std::string numberText(double value)
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
        return numberText(scalar.m_val) + (scalar.m_unit.empty() ? "" : " " + scalar.m_unit);
    }
    case zlr::Property::DOUBLE_VALUE:
        return numberText(property.getDoubleValue());
    case zlr::Property::RANGE_VALUE: {
        const zlr::Range range = property.getRangeValue();
        return numberText(range.m_min) + " .. " + numberText(range.m_max);
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
        const CreateOutcome created = bench.createChannel();
        if (!created.response || created.response->m_created_channels.empty()) {
            model.detach();
            throw std::runtime_error("the plug-in made no channel (answer " +
                                     std::to_string(created.code) + ")");
        }
        const std::uint32_t root = created.response->m_created_channels.front();

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
        for (const HostChannel& channel : bench.outputsOf(root)) {
            result.outputs.push_back({channel.local_id, channel.default_name,
                                      channel.timebase.m_frequency, channel.valid,
                                      acquisition.outputBlocks(channel.local_id)});
        }
        session.finish();
        model.detach();
    }
    result.faults = bench.host().faults();
    result.values_left = bench.host().valuesOutsideTree();
    return result;
}

} // namespace zelvar_sim
