// The channel's configuration through the host's dialogue: refused settings
// and their way back, save and restore under new input ids, messages the
// plug-in cannot use, and a plug-in that is unloaded and loaded again.
#include "frequency_scenario.h"

#include "sim_channel_tree_telegrams.h"
#include "zlrbase_messages.h"
#include "zlrbase_values.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <cstring>
#include <functional>
#include <set>

namespace {

using namespace frequency_test;
using zelvar_sim::MemoryRecording;

class ConfigurationScenario : public FrequencyScenario {
protected:
    std::shared_ptr<MemoryRecording> someTone(double rate)
    {
        return MemoryRecording::of(tone(rate / 9.0, rate, static_cast<std::size_t>(rate * 0.5)));
    }
};

// Each refusal shows its text, keeps the task away from the host and lets
// nothing be processed; the fix brings the task back and the values come.
TEST_F(ConfigurationScenario, RefusedSettingsShowTheirStatusUntilFixed)
{
    const struct Case {
        const char* status;
        std::function<std::uint32_t()> refuse;
        std::function<void(std::uint32_t)> fix;
    } cases[] = {
        {"Input channel is not supported",
         [this]() {
             addInput(11, "Sync", 10000.0, someTone(10000.0));
             addInput(12, "Async", 10000.0, someTone(10000.0), true, zlr::SAMPLE_OCCURRENCE_ASYNC);
             const std::uint32_t root = createChannel({11});
             edit(root, INPUTS, "11,12");
             return root;
         },
         [this](std::uint32_t root) { edit(root, INPUTS, "11"); }},
        {"Input channel is not usable",
         [this]() {
             addInput(21, "Asleep", 10000.0, someTone(10000.0), false);
             return createChannel({21});
         },
         [this](std::uint32_t) {
             acquisition().inputs().setUsable(21, true);
             EXPECT_EQ(model().sendChannelConfigChanged({{21, {}}}), 0u);
         }},
        {"All input channels must have the same sample rate",
         [this]() {
             addInput(31, "Ten", 10000.0, someTone(10000.0));
             addInput(32, "Eight", 8000.0, someTone(8000.0));
             return createChannel({31, 32});
         },
         [this](std::uint32_t root) { edit(root, INPUTS, "31"); }},
        {"Min/Max frequency values are out of range",
         [this]() {
             // The first input at 100 Hz with the shortest window: at least
             // five periods in 0.01 s is 500 Hz, above half the rate.
             addInput(41, "Slow", 100.0, someTone(100.0));
             const std::uint32_t root = createChannel({});
             edit(root, LENGTH, "0.01");
             edit(root, INPUTS, "41");
             return root;
         },
         [this](std::uint32_t root) { edit(root, MIN_FREQUENCY, "0"); }},
        {"Minimum frequency is larger than maximum frequency",
         [this]() {
             addInput(51, "Tone", 10000.0, someTone(10000.0));
             const std::uint32_t root = createChannel({51});
             edit(root, MIN_FREQUENCY, "3000");
             edit(root, MAX_FREQUENCY, "2000");
             return root;
         },
         [this](std::uint32_t root) { edit(root, MAX_FREQUENCY, "4000"); }},
    };

    std::vector<std::uint32_t> roots;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.status);
        roots.push_back(c.refuse());
        EXPECT_EQ(status(roots.back()), c.status);
        EXPECT_FALSE(taskRegistered(roots.back()));
        for (const auto& output : bench().outputsOf(roots.back())) {
            EXPECT_FALSE(output.valid) << output.default_name;
        }
    }
    run({.mode = zelvar_sim::ProcessMode::time_stamped});
    EXPECT_TRUE(acquisition().output().channels().empty()) << "nothing is processed";

    for (std::size_t i = 0; i < roots.size(); ++i) {
        SCOPED_TRACE(cases[i].status);
        cases[i].fix(roots[i]);
        EXPECT_EQ(status(roots[i]), "");
        EXPECT_TRUE(taskRegistered(roots[i]));
    }
    run({.mode = zelvar_sim::ProcessMode::time_stamped});
    for (std::size_t i = 0; i < roots.size(); ++i) {
        SCOPED_TRACE(cases[i].status);
        const auto outputs = bench().outputsOf(roots[i]);
        ASSERT_EQ(outputs.size(), 1u);
        EXPECT_TRUE(outputs[0].valid);
        EXPECT_FALSE(acquisition().outputValues(outputs[0].local_id).empty());
    }
}

// Saved, cleared and restored over inputs that came back under other ids:
// the same settings, the outputs found again by their keys, and a setting
// this code does not know kept as it was.
TEST_F(ConfigurationScenario, RestoreUnderNewInputIdsKeepsTheChannel)
{
    addInput(1, "Left", 10000.0, someTone(10000.0));
    addInput(2, "Right", 10000.0, someTone(10000.0));
    const std::uint32_t root = createChannel({1, 2});
    edit(root, OVERLAP, "75");
    edit(root, LENGTH, "0.1");
    edit(root, MAX_FREQUENCY, "3000");

    auto saved_channels = model().channels().channels();
    for (auto& channel : saved_channels) {
        if (channel.local_id == root) {
            channel.properties.push_back({zlr::Property("Elsewhere/Note", "kept as it was"), {}});
        }
    }
    const std::string saved = zelvar_sim::writeUpdatePluginChannels(saved_channels);
    std::set<std::string> output_names;
    for (const auto& output : bench().outputsOf(root)) {
        output_names.insert(output.default_name);
    }
    const double min_before = shownScalar(root, MIN_FREQUENCY);

    EXPECT_EQ(model().clearConfiguration(), 0u);
    EXPECT_EQ(model().hasInstances(), std::optional<bool>(false));
    acquisition().inputs().remove(1);
    acquisition().inputs().remove(2);
    addInput(7, "Left", 10000.0, someTone(10000.0));
    addInput(8, "Right", 10000.0, someTone(10000.0));

    const auto restored =
        model().restoreConfiguration(zelvar_sim::HostModel::remapSavedConfiguration(saved, {{1, 7}, {2, 8}}));
    ASSERT_TRUE(restored.id_map) << model().dump();
    ASSERT_EQ(restored.id_map->count(root), 1u);
    EXPECT_EQ(model().configApplied(), 0u);
    const auto new_root = static_cast<std::uint32_t>(restored.id_map->at(root));

    EXPECT_EQ(shown(new_root, INPUTS)->getChannelIDListValue(), (std::vector<std::uint64_t>{7, 8}));
    EXPECT_EQ(shownScalar(new_root, OVERLAP), 75.0);
    EXPECT_EQ(shownScalar(new_root, LENGTH), 0.1);
    // A restored channel is configured anew: its first usable input sets the
    // frequency limits again, from the restored window length and its rate.
    EXPECT_NE(shownScalar(new_root, MIN_FREQUENCY), min_before);
    EXPECT_EQ(shownScalar(new_root, MIN_FREQUENCY), 5.0 / 0.1);
    EXPECT_EQ(shownScalar(new_root, MAX_FREQUENCY), 10000.0 * 0.5);
    EXPECT_EQ(status(new_root), "");
    ASSERT_TRUE(shown(new_root, "Elsewhere/Note"));
    EXPECT_EQ(shown(new_root, "Elsewhere/Note")->getStringValue(), "kept as it was");
    std::set<std::string> restored_names;
    for (const auto& output : bench().outputsOf(new_root)) {
        restored_names.insert(output.default_name);
        EXPECT_EQ(restored.id_map->size(), 3u) << "the root and both outputs found again";
        EXPECT_EQ(output.timebase.m_frequency, 40.0);
    }
    EXPECT_EQ(restored_names, output_names);
    EXPECT_TRUE(taskRegistered(new_root));
    run();
    for (const auto& output : bench().outputsOf(new_root)) {
        EXPECT_FALSE(acquisition().outputValues(output.local_id).empty());
    }
}

// Messages the plug-in cannot use, or that name nothing of its own, answer
// their codes and change nothing; no exception reaches the host, and the
// channel runs on.
TEST_F(ConfigurationScenario, UnusableMessagesAnswerCodesAndChangeNothing)
{
    addInput(1, "Tone", 10000.0, someTone(10000.0));
    const std::uint32_t root = createChannel({1});
    ASSERT_EQ(acquisition().tasks().tasks().size(), 1u);
    const std::uint64_t task = acquisition().tasks().tasks().front().key;

    const struct {
        std::uint32_t id;
        std::uint64_t key;
        const char* text; // null: no value
        std::uint64_t answer;
    } cases[] = {
        {zlr::PLUGIN_CONFIG_UPDATE, 0, "<UpdateConfig><Channel", zlr::RESULT_BAD_ARGUMENT},
        {zlr::PLUGIN_CONFIG_UPDATE, 0, nullptr, zlr::RESULT_BAD_ARGUMENT},
        {zlr::PLUGIN_CHANNELS_CHECK, 0, "no channels here", zlr::RESULT_BAD_ARGUMENT},
        {zlr::PLUGIN_CHANNEL_DATA_FORMAT, 0, "<Channel channel_id=\"1\"/>", zlr::RESULT_BAD_ARGUMENT},
        {zlr::PLUGIN_CHANNEL_STATUS, 0, "<Channels", zlr::RESULT_BAD_ARGUMENT},
        {zlr::PLUGIN_CHANNEL_CONFIG_CHANGED, 0, "<Other/>", zlr::RESULT_BAD_ARGUMENT},
        {zlr::PLUGIN_TASK_PROCESS, task + 100, nullptr, zlr::RESULT_NOT_HANDLED},
        {zlr::PLUGIN_CUSTOM_REQUEST, 1, nullptr, zlr::RESULT_NOT_HANDLED},
        {zlr::PLUGIN_SOFTWARE_CHANNEL_CREATE, 0, nullptr, zlr::RESULT_NOT_HANDLED},
        {zlr::PLUGIN_CHANNEL_IDS_MAPPED, 0, nullptr, zlr::RESULT_NOT_HANDLED},
        {zlr::PLUGIN_EVENT, 7, nullptr, zlr::RESULT_NOT_HANDLED},
        // The registration again, as it was: the host takes it unchanged.
        {zlr::PLUGIN_EVENT, 14, nullptr, zlr::RESULT_OK},
        {zlr::PLUGIN_CHANNELS_CHECK, 0, R"(<Channels><Channel channel_id="999"/></Channels>)",
         zlr::RESULT_OK},
        // Before any preparation, and with a start that holds no time.
        {zlr::PLUGIN_TASK_PROCESS, task, "<Start/>", zlr::RESULT_OK},
        {zlr::PLUGIN_TASK_STOP_PROCESSING, task, nullptr, zlr::RESULT_OK},
        {zlr::PLUGIN_TASK_PROCESS, task, nullptr, zlr::RESULT_OK},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << zelvar_sim::messageName(c.id) << " "
                                        << (c.text ? c.text : "without value"));
        zlr::IfValue* value = nullptr;
        if (c.text) {
            value = host().createValue(zlr::VALUE_TYPE_XML);
            static_cast<zlr::IfXmlValue*>(value)->set(c.text);
        }
        EXPECT_EQ(session().send(c.id, c.key, value), c.answer);
        if (value) {
            value->release();
        }
    }
    // A setting of the wrong type is dropped; the reply shows what stands.
    EXPECT_EQ(model().sendConfigUpdate(root, zlr::Property(INPUTS, "seven")), 0u);
    EXPECT_EQ(shown(root, INPUTS)->getChannelIDListValue(), (std::vector<std::uint64_t>{1}));

    run();
    EXPECT_EQ(acquisition().outputValues(bench().outputsOf(root).at(0).local_id).size(), 3u);
}

// The host renumbers an input, and later has one no more: the channel's
// inputs follow the new id and drop the lost one.
TEST_F(ConfigurationScenario, InputsFollowTheHostsIdsAndDropTheLostOnes)
{
    addInput(5, "Left", 10000.0, someTone(10000.0));
    addInput(8, "Right", 10000.0, someTone(10000.0));
    const std::uint32_t root = createChannel({5, 8});
    acquisition().inputs().remove(5);
    addInput(6, "Left", 10000.0, someTone(10000.0));
    EXPECT_EQ(model().mapChannelIds({{5, 6}}), 0u);
    EXPECT_EQ(shown(root, INPUTS)->getChannelIDListValue(), (std::vector<std::uint64_t>{6, 8}));

    acquisition().inputs().remove(8);
    EXPECT_EQ(model().sendEvent(3), 0u);
    EXPECT_EQ(shown(root, INPUTS)->getChannelIDListValue(), std::vector<std::uint64_t>{6});
    // Without the host's list of ids the event is not taken.
    host().tree().setXml("#Zelvar#Channels", "AllIds", "<Channels");
    EXPECT_EQ(model().sendEvent(3), zlr::RESULT_NOT_HANDLED);
}

// Load, run, unload, and the same again in one process: the module really
// leaves memory, and the second life gives the same bits as the first.
TEST(PluginLifetime, UnloadsAfterARunAndRunsAgain)
{
    const char* path = zelvar_sim::test::frequencyMeasurementPlugin();
    std::vector<double> lives[2];
    for (std::vector<double>& values : lives) {
        zelvar_sim::SimHost host;
        host.setIdentity("Zelvar", "5.6");
        zelvar_sim::HostModel model(host);
        zelvar_sim::Acquisition acquisition(host);
        acquisition.addInputChannel({.id = 3, .long_name = "Tone", .sample_rate = 10000.0},
                                    MemoryRecording::of(tone(733.0, 10000.0, 8000)));
        {
            zelvar_sim::PluginLibrary library(path);
            zelvar_sim::PluginSession session(library, host);
            model.attach(session);
            const auto created = model.createSoftwareChannel({{3, zelvar_sim::synchronousScalar()}});
            ASSERT_TRUE(created.response);
            ASSERT_EQ(created.response->m_created_channels.size(), 2u);
            EXPECT_TRUE(acquisition.run(session).failures().empty());
            values = acquisition.outputValues(created.response->m_created_channels[1]);
            EXPECT_EQ(session.finish(), 0u);
            model.detach();
        }
        EXPECT_EQ(dlopen(path, RTLD_NOW | RTLD_NOLOAD), nullptr) << "the module stays loaded";
        EXPECT_EQ(host.valuesOutsideTree(), 0);
        EXPECT_TRUE(host.faults().empty());
    }
    ASSERT_EQ(lives[0].size(), 6u);
    ASSERT_EQ(lives[1].size(), lives[0].size());
    EXPECT_EQ(std::memcmp(lives[0].data(), lives[1].data(), lives[0].size() * sizeof(double)), 0);
}

} // namespace
