// Plug-in channels and tasks against the simulated host: what goes out, in
// which order, and what the host's messages do to the tree.
#include "sim_host.h"
#include "zlrapi_update_config_xml.h"
#include "zlrapi_update_plugin_channels_xml.h"
#include "zlrapi_utils.h"
#include "zlrfw_callback_error.h"
#include "zlrfw_channels.h"

#include "host_tree_check.h"
#include "zlr_assert_capture.h"
#include "zlr_log_capture.h"
#include "zlr_parse_text.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

using namespace zlr;
using namespace zlr::framework;

namespace {

constexpr std::uint32_t NO_PARENT = NO_LOCAL_ID;

class RecordingWorker : public IfTaskWorker {
public:
    explicit RecordingWorker(std::vector<std::string>& journal, std::string name = "w")
        : m_journal(journal), m_name(std::move(name))
    {
    }
    void onInitTimebases(IfHost*, std::uint64_t token) override { note("init", token); }
    void onPrepareProcessing(IfHost*, std::uint64_t token) override { note("prepare", token); }
    void onProcess(IfHost*, std::uint64_t token, IfXmlValue* start) override
    {
        note(start ? "process with start" : "process", token);
    }
    void onStopProcessing(IfHost*, std::uint64_t token) override { note("stop", token); }
    void onChannelConfigChanged(IfHost*, std::uint64_t token) override { note("changed", token); }
    void workerHook() override {}

    std::function<void()> on_call;

private:
    void note(const std::string& what, std::uint64_t token)
    {
        m_journal.push_back(m_name + " " + what + " " + std::to_string(token));
        if (on_call) {
            on_call();
        }
    }
    std::vector<std::string>& m_journal;
    std::string m_name;
};

class PluginChannelsTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        channels->setPluginHost(&host);
        host.addService(host_tree);
    }
    void TearDown() override
    {
        // Once all is told, the host, reading with its own strict readers,
        // holds the plug-in's tree as it stands.
        channels->commitChanges(false);
        test::expectHostSeesTheTree(host, *host_tree, *channels);
        channels.reset();
        EXPECT_EQ(host.valuesOutsideTree(), 0);
    }

    std::uint64_t send(std::uint32_t id, std::uint64_t key, const std::string& text)
    {
        zlrbase_api_object_ptr<IfXmlValue> value = createTypedValue<IfXmlValue>(&host);
        value->set(text.c_str());
        return channels->pluginMessage(id, key, value.get(), nullptr);
    }

    std::vector<std::uint32_t> sentIds() const
    {
        std::vector<std::uint32_t> ids;
        for (const zelvar_sim::MessageRecord& message : host.messages()) {
            ids.push_back(message.id);
        }
        return ids;
    }

    // The tree as the last HOST_UPDATE_CHANNELS told it.
    std::vector<PluginChannelInfo> lastTree() const
    {
        const auto sent = host.messagesWithId(HOST_UPDATE_CHANNELS);
        UpdatePluginChannelsTelegram telegram;
        EXPECT_FALSE(sent.empty());
        if (!sent.empty()) {
            EXPECT_TRUE(test::parseText(telegram, sent.back().text));
        }
        return telegram.m_channels;
    }

    UpdateConfigTelegram lastConfig() const
    {
        const auto sent = host.messagesWithId(HOST_UPDATE_CONFIG);
        UpdateConfigTelegram telegram;
        EXPECT_FALSE(sent.empty());
        if (!sent.empty()) {
            EXPECT_TRUE(test::parseText(telegram, sent.back().text));
        }
        return telegram;
    }

    zelvar_sim::SimHost host;
    std::shared_ptr<zelvar_sim::PluginChannelTree> host_tree =
        std::make_shared<zelvar_sim::PluginChannelTree>(host);
    std::shared_ptr<PluginChannels> channels = std::make_shared<PluginChannels>();
    std::vector<std::string> journal;
};

TEST_F(PluginChannelsTest, CommitSendsTreeThenSettingsThenTaskAndThenNothing)
{
    RecordingWorker worker(journal);
    const auto task = channels->addTask(&worker, 5);
    const auto root = channels->addChannel();
    root->setDefaultName("Frequency");
    root->addProperty("Overlap", std::make_shared<EditableScalarProperty>(50, "%", 0, 90));
    const auto child = channels->addChannel();
    child->setLocalParent(root);
    task->addOutputChannel(root);
    task->addOutputChannel(child);
    task->addInputChannel(12);
    task->setValid(true);

    // What each carries, the host's strict readers take in the plug-in's
    // scenarios; here the order, and that nothing goes out again.
    channels->commitChanges(true);
    EXPECT_EQ(sentIds(), (std::vector<std::uint32_t>{HOST_UPDATE_CHANNELS, HOST_UPDATE_CONFIG,
                                                     HOST_ADD_TASK}));
    EXPECT_TRUE(lastTree()[0].m_properties.empty()) << "settings travel only in UpdateConfig";

    host.clearMessages();
    channels->commitChanges(true);
    channels->commitChanges(false);
    EXPECT_TRUE(sentIds().empty());

    // An unchanged value still marks the tree; an equal setting does not.
    root->setDeletable(false);
    std::static_pointer_cast<EditableScalarProperty>(root->getProperty("Overlap"))->setValue(50.0);
    channels->commitChanges(true);
    EXPECT_EQ(sentIds(), std::vector<std::uint32_t>{HOST_UPDATE_CHANNELS});
}

TEST_F(PluginChannelsTest, LocalIdsAvoidTheHostsAndComeFreeAtTheCommit)
{
    struct Case {
        const char* what;
        std::string status; // the host's PLUGIN_CHANNEL_STATUS, or empty for none
        std::vector<std::string> steps;
        std::vector<std::uint32_t> added;
    };
    const std::vector<Case> cases = {
        {"a removed id is free only after the commit", "",
         {"add", "commit", "remove 0", "add", "commit", "add"}, {0, 1, 0}},
        {"gaps are filled", R"(<Channels><Channel channel_id="1"/><Channel channel_id="3"/></Channels>)",
         {"add", "add", "add"}, {0, 2, 4}},
        {"host ids are cut to 32 bits", R"(<Channels><Channel channel_id="4294967296"/></Channels>)",
         {"add"}, {1}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        zelvar_sim::SimHost own_host;
        PluginChannels fresh;
        fresh.setPluginHost(&own_host);
        if (!c.status.empty()) {
            zlrbase_api_object_ptr<IfXmlValue> value = createTypedValue<IfXmlValue>(&own_host);
            value->set(c.status.c_str());
            EXPECT_EQ(fresh.pluginMessage(PLUGIN_CHANNEL_STATUS, 0, value.get(), nullptr), 0u);
        }
        std::vector<std::uint32_t> added;
        for (const std::string& step : c.steps) {
            if (step == "add") {
                added.push_back(fresh.addChannel()->getLocalId());
            } else if (step == "commit") {
                fresh.commitChanges(false);
            } else {
                fresh.removeChannel(fresh.findChannel(std::stoul(step.substr(7))));
            }
        }
        EXPECT_EQ(added, c.added);
    }
}

TEST_F(PluginChannelsTest, RemovedChannelsFallSilentAndLeaveTheirChildrenAsRoots)
{
    test::AssertCapture asserts;
    const auto parent = channels->addChannel();
    const auto child = channels->addChannel();
    const auto grandchild = channels->addChannel();
    child->setLocalParent(parent);
    grandchild->setLocalParent(child);
    const auto unit = std::make_shared<EditableStringProperty>("V");
    parent->addProperty("Unit", unit);
    channels->commitChanges(false);
    host.clearMessages();

    unit->setValue("mV");
    channels->removeChannel(parent);
    parent->setDefaultName("gone");
    parent->setUnit("kV");
    unit->setValue("A");
    EXPECT_EQ(parent->getChannelInfo().m_default_name, "");
    EXPECT_EQ(unit->getValue(), "A") << "the property itself still takes the value";

    channels->commitChanges(false);
    EXPECT_EQ(sentIds(), std::vector<std::uint32_t>{HOST_UPDATE_CHANNELS})
        << "no UpdateConfig for a removed channel";
    const std::vector<PluginChannelInfo> tree = lastTree();
    ASSERT_EQ(tree.size(), 2u);
    EXPECT_EQ(tree[0].m_local_id, child->getLocalId());
    EXPECT_EQ(tree[0].m_local_parent_id, NO_PARENT);
    EXPECT_EQ(tree[1].m_local_parent_id, child->getLocalId());
    EXPECT_TRUE(asserts.reported().empty());
}

TEST_F(PluginChannelsTest, ConfigUpdateAnswersWithWhatWasAccepted)
{
    RecordingWorker worker(journal);
    const auto task = channels->addTask(&worker, 7);
    const auto root = channels->addChannel();
    root->addProperty("Overlap", std::make_shared<EditableScalarProperty>(50, "%", 0, 90));
    root->addProperty("Status", std::make_shared<StringProperty>("ok"));
    task->addOutputChannel(root);
    task->setValid(true);
    channels->commitChanges(true);

    struct Case {
        const char* what;
        std::string properties; // of channel 0 in the host's UpdateConfig
        double overlap;
        std::string status;
    };
    const std::vector<Case> cases = {
        {"both taken", R"(<Property name="Overlap"><ScalarValue><Value>10</Value><Unit>%</Unit></ScalarValue></Property><Property name="Status"><StringValue>new</StringValue></Property>)",
         10, "new"},
        {"wrong type is dropped, the next one taken", R"(<Property name="Status"><ScalarValue><Value>1</Value><Unit>%</Unit></ScalarValue></Property><Property name="Overlap"><DoubleValue>90</DoubleValue></Property>)",
         90, "new"},
        {"unknown names pass", R"(<Property name="Nope"><DoubleValue>1</DoubleValue></Property>)", 90,
         "new"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        host.clearMessages();
        journal.clear();
        worker.on_call = [&] { journal.push_back("messages " + std::to_string(host.messages().size())); };
        EXPECT_EQ(send(PLUGIN_CONFIG_UPDATE, 0,
                       R"(<UpdateConfig protocol_version="1.0"><Channel local_id="0">)" +
                           c.properties + R"(</Channel><Channel local_id="99"/></UpdateConfig>)"),
                  0u);
        EXPECT_EQ(sentIds(), (std::vector<std::uint32_t>{HOST_REMOVE_TASK, HOST_UPDATE_CONFIG,
                                                         HOST_ADD_TASK}));
        EXPECT_EQ(journal, (std::vector<std::string>{"w changed 7", "messages 2"}))
            << "the worker hears of it after the reply, before the task comes back";
        const UpdateConfigTelegram reply = lastConfig();
        ASSERT_EQ(reply.m_channels.size(), 1u) << "nothing of the unknown channel";
        ASSERT_EQ(reply.m_channels[0].m_properties.size(), 2u);
        EXPECT_EQ(reply.m_channels[0].m_properties[0].getScalarValue(), Scalar(c.overlap, "%"));
        EXPECT_EQ(reply.m_channels[0].m_properties[1].getStringValue(), c.status);
    }

    host.clearMessages();
    EXPECT_EQ(send(PLUGIN_CONFIG_UPDATE, 0,
                   R"(<UpdateConfig protocol_version="1.0"><Channel local_id="42"><Property name="Overlap"><DoubleValue>1</DoubleValue></Property></Channel></UpdateConfig>)"),
              0u);
    EXPECT_TRUE(sentIds().empty()) << "an empty reply sends nothing";
}

TEST_F(PluginChannelsTest, InputChangesStopAllAffectedTasksBeforeTellingAny)
{
    RecordingWorker first(journal, "a");
    RecordingWorker second(journal, "b");
    RecordingWorker other(journal, "c");
    const std::shared_ptr<PluginTask> tasks[] = {channels->addTask(&first, 1),
                                                 channels->addTask(&second, 2),
                                                 channels->addTask(&other, 3)};
    tasks[0]->addInputChannel(5);
    tasks[1]->addInputChannel(6);
    tasks[1]->addInputChannel(5);
    tasks[2]->addInputChannel(7);
    for (const auto& task : tasks) {
        task->setValid(true);
    }
    channels->commitChanges(true);
    for (RecordingWorker* worker : {&first, &second, &other}) {
        worker->on_call = [&] { journal.push_back(std::to_string(host.messages().size())); };
    }

    struct Case {
        std::uint32_t message;
        std::string text;
    };
    const Case cases[] = {
        {PLUGIN_CHANNEL_CONFIG_CHANGED,
         R"(<ChannelConfigChanged protocol_version="1.0"><Channel id="5"/><Channel id="5"/></ChannelConfigChanged>)"},
        {PLUGIN_CHANNEL_DATA_FORMAT,
         R"(<Channel channel_id="5"><DataFormat sample_occurrence="SYNC" sample_format="double"/></Channel>)"},
    };
    for (const Case& c : cases) {
        host.clearMessages();
        journal.clear();
        EXPECT_EQ(send(c.message, 0, c.text), 0u);
        EXPECT_EQ(sentIds(), (std::vector<std::uint32_t>{HOST_REMOVE_TASK, HOST_REMOVE_TASK,
                                                         HOST_ADD_TASK, HOST_ADD_TASK}));
        EXPECT_EQ(host.messages()[0].key, tasks[0]->getId());
        EXPECT_EQ(host.messages()[1].key, tasks[1]->getId());
        EXPECT_EQ(journal, (std::vector<std::string>{"a changed 1", "2", "b changed 2", "2"}));
    }
}

TEST_F(PluginChannelsTest, TaskMessagesReachTheWorkerAndNoExceptionLeaves)
{
    test::LogCapture log(6);
    struct ThrowingWorker : RecordingWorker {
        using RecordingWorker::RecordingWorker;
        std::function<void()> fail = [] {};
        void onPrepareProcessing(IfHost*, std::uint64_t) override { fail(); }
        void onProcess(IfHost* host, std::uint64_t token, IfXmlValue* start) override
        {
            RecordingWorker::onProcess(host, token, start);
            fail();
        }
    };
    ThrowingWorker worker(journal);
    const auto task = channels->addTask(&worker, 9);
    const auto idle = channels->addTask(std::shared_ptr<IfTaskWorker>(), 0);
    const std::string start = R"(<Process protocol_version="1.0"/>)";

    struct Case {
        const char* what;
        std::uint32_t message;
        std::function<void()> fail;
        std::uint64_t answer;
        std::string logged;
    };
    const std::string prepare = std::to_string(PLUGIN_TASK_PREPARE_PROCESSING);
    const std::vector<Case> cases = {
        {"plain prepare", PLUGIN_TASK_PREPARE_PROCESSING, [] {}, 0, ""},
        {"a standard exception", PLUGIN_TASK_PREPARE_PROCESSING,
         [] { throw std::runtime_error("boom"); }, 13,
         "Unhandled exception during 'pluginMessage " + prepare + "' : boom"},
        {"something without a text", PLUGIN_TASK_PREPARE_PROCESSING, [] { throw 42; }, 13,
         "Unhandled exception during 'pluginMessage " + prepare + "'"},
        {"a callback error answers its code", PLUGIN_TASK_PREPARE_PROCESSING,
         [] { throw CallbackError(4); }, 4, ""},
        {"process answers 13 for anything, unlogged", PLUGIN_TASK_PROCESS,
         [] { throw CallbackError(4); }, 13, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        log.clear();
        worker.fail = c.fail;
        EXPECT_EQ(send(c.message, task->getId(), start), c.answer);
        const auto records = log.messages();
        if (c.logged.empty()) {
            EXPECT_TRUE(records.empty());
        } else {
            ASSERT_EQ(records.size(), 1u);
            EXPECT_EQ(records[0], std::make_pair(6u, c.logged));
        }
    }
    worker.fail = [] {};
    journal.clear();
    EXPECT_EQ(channels->pluginMessage(PLUGIN_TASK_PROCESS, task->getId(), nullptr, nullptr), 0u);
    zlrbase_api_object_ptr<IfStringValue> text = createTypedValue<IfStringValue>(&host);
    text->set(start.c_str());
    EXPECT_EQ(channels->pluginMessage(PLUGIN_TASK_PROCESS, task->getId(), text.get(), nullptr), 0u);
    EXPECT_EQ(send(PLUGIN_TASK_INIT_TIMEBASES, task->getId(), ""), 0u);
    EXPECT_EQ(send(PLUGIN_TASK_STOP_PROCESSING, task->getId(), ""), 0u);
    EXPECT_EQ(journal, (std::vector<std::string>{"w process 9", "w process 9", "w init 9",
                                                 "w stop 9"}));

    for (const std::uint32_t id : {PLUGIN_TASK_INIT_TIMEBASES, PLUGIN_TASK_PREPARE_PROCESSING,
                                   PLUGIN_TASK_PROCESS, PLUGIN_TASK_STOP_PROCESSING}) {
        EXPECT_EQ(channels->pluginMessage(id, 77, nullptr, nullptr), RESULT_NOT_HANDLED);
        EXPECT_EQ(channels->pluginMessage(id, idle->getId(), nullptr, nullptr), 1u);
    }
    EXPECT_EQ(channels->pluginMessage(PLUGIN_EVENT, 0, nullptr, nullptr), RESULT_NOT_HANDLED);
}

TEST_F(PluginChannelsTest, RestoredRawSettingsBecomeTyped)
{
    test::AssertCapture asserts;
    const auto channel = channels->addChannel();
    Property rate("SampleRate");
    rate.setValue(Scalar(10, "Hz"));
    Property range("Range");
    range.setValue(Range(0, 5, "Hz"));
    for (const Property& saved : {rate, range, Property("Unit", "Hz"), Property("Other", "x")}) {
        channel->addProperty(saved.getName(), std::make_shared<RawPropertyHolder>(saved));
    }
    EXPECT_FALSE(channel->getSampleRateProperty());
    channel->resolveRawProperties();
    ASSERT_TRUE(channel->getSampleRateProperty());
    EXPECT_EQ(channel->getSampleRateProperty()->getScalar(), Scalar(10, "Hz"));
    ASSERT_TRUE(channel->getRangeProperty());
    EXPECT_EQ(channel->getRangeProperty()->getValue(), Range(0, 5, "Hz"));
    ASSERT_TRUE(channel->getUnitProperty());
    EXPECT_EQ(channel->getUnitProperty()->getValue(), "Hz");
    EXPECT_TRUE(std::dynamic_pointer_cast<RawPropertyHolder>(channel->getProperty("Other")));
    EXPECT_TRUE(asserts.reported().empty());

    // The typed properties are bound: a change goes out, with all four.
    channel->setSimpleTimebase(20);
    channels->commitChanges(false);
    host.clearMessages();
    channel->setDataFormat(SAMPLE_OCCURRENCE_SYNC, SAMPLE_FORMAT_DOUBLE, 1);
    channel->setSimpleTimebase(20);
    channels->commitChanges(false);
    const UpdateConfigTelegram config = lastConfig();
    ASSERT_EQ(config.m_channels.at(0).m_properties.size(), 4u);
    EXPECT_EQ(config.m_channels[0].m_properties[0].getScalarValue(), Scalar(20, "Hz"));

    channel->replaceProperty("Missing", std::make_shared<StringProperty>());
    EXPECT_EQ(asserts.reported(),
              (std::vector<std::string>{"getProperty(name)",
                                        "std::find_if(m_properties.begin(), m_properties.end(), "
                                        "property_matcher) != m_properties.end()"}));
}

} // namespace
