// The main job of zelvar-sim: play the host around one "Frequency
// Measurement" channel. The host model adds the channel over the given
// inputs, edits the settings a person asked for, and the data side runs it
// over the recordings; what the host then holds is gathered for printing.
#pragma once

#include "plugin_loader.h"
#include "sim_demo_recording.h"
#include "sim_output_capture.h"
#include "sim_saved_settings.h"
#include "sim_task_driver.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zelvar_sim {

// A setting of the channel as the person typed it, by its key.
struct SettingEdit {
    std::string key;
    std::string text;
};

struct FrequencyRunRequest {
    std::vector<DemoInput> inputs;
    std::vector<SettingEdit> edits;
    RunOptions run;
    // How many of the plug-in's latest messages the host keeps: none by
    // default, so that memory stays flat however long the recording.
    std::size_t kept_messages = 0;
    // Hears every message between host and plug-in, from PLUGIN_INIT on.
    MessageObserver observer;
    // Settings saved before: the channel is restored from them (its inputs
    // mapped onto these inputs in order) instead of being created, and the
    // edits follow.
    std::optional<SavedSettings> restore;
};

// One setting as the host shows it after the edits.
struct ShownSetting {
    std::string key;
    std::string label; // from the plug-in's English catalogue, or the key
    std::string value;
};

// One output channel and what the plug-in wrote to it.
struct RunOutput {
    std::uint32_t local_id = 0;
    std::string name;
    double rate = 0.0; // values per second, from the channel's timebase
    bool valid = false;
    std::vector<CapturedBlock> blocks;
};

struct FrequencyRunResult {
    std::vector<ShownSetting> settings;
    double window_length = 0.0; // seconds, as the host shows the setting
    // Edits the plug-in did not take as typed: the key and what the host shows now.
    std::vector<std::string> refused_edits;
    std::vector<RunOutput> outputs;
    bool task_registered = false;
    RunReport report;
    std::vector<ProtocolFault> faults;
    std::int64_t values_left = 0; // host values the plug-in still held at the end
    std::string saved_configuration; // what the host saves of the channel after the run
};

// Runs the whole dialogue in a fresh host of its own; the library stays
// loaded. Throws std::runtime_error when the channel cannot be created or
// restored, and
// std::invalid_argument for an edit whose text does not fit the setting.
FrequencyRunResult runFrequencyMeasurement(PluginLibrary& library,
                                           const FrequencyRunRequest& request);

} // namespace zelvar_sim
