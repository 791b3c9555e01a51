// The software channel instance through a small channel of its own, against
// the simulated host: what the plug-in's own scenarios cannot reach.
#include "sim_data_set_writers.h"
#include "sim_host.h"
#include "sim_values.h"
#include "zlrapi_utils.h"
#include "zlrfw_callback_error.h"
#include "zlrfw_software_channel_instance.h"

#include "host_tree_check.h"
#include "zlr_assert_capture.h"
#include "zlr_log_capture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <vector>

using namespace zlr;
using namespace zlr::framework;

namespace {

const char* const INPUTS = "Inputs";

// A channel that reads the ids named by its root's "Inputs" and keeps what
// each processing round saw.
class ProbeInstance : public SoftwareChannelInstance {
public:
    struct Round {
        double start = 0.0;
        double end = 0.0;
        std::map<std::uint64_t, std::vector<double>> samples;
        bool operator==(const Round&) const = default;
    };

    void initInstance(IfHost*) override
    {
        getRootChannel()->addProperty(INPUTS, std::make_shared<EditableChannelIDListProperty>());
    }
    bool restoreInstance(const std::vector<PluginChannelInfo>& channels, LocalIdMap& map) override
    {
        restoreChannels(channels, map);
        restoreProperties(channels, map);
        return true;
    }
    bool update() override { return update_result; }
    void process(ProcessContext& context, IfHost*) override
    {
        Round round{context.window_start, context.window_end, {}};
        for (auto& [id, iterator] : context.channel_iterators) {
            iterator.setSkipGaps(false);
            for (; iterator.valid(); ++iterator) {
                // A gap reads as NaN; -1 keeps the rounds comparable.
                const double value = iterator.value();
                round.samples[id].push_back(std::isnan(value) ? -1.0 : value);
            }
        }
        rounds.push_back(round);
        if (fail_round && *fail_round == rounds.size()) {
            throw std::runtime_error("bad round");
        }
    }

    void setInputs(const std::vector<std::uint64_t>& ids, PluginChannel& channel)
    {
        std::static_pointer_cast<EditableChannelIDListProperty>(channel.getProperty(INPUTS))
            ->setValue(ids);
    }

    bool update_result = true;
    std::optional<std::size_t> fail_round;
    std::vector<Round> rounds;
};

const std::string SYNC_DOUBLE =
    R"(<DataFormat sample_occurrence="SYNC" sample_format="double" sample_dimension="1" sample_value_type="scalar"/>)";

class SoftwareChannelInstanceTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        host.addService(host_tree);
        channels->setPluginHost(&host);
        instance->setup(channels);
        instance->initialise(&host);
    }
    void TearDown() override
    {
        channels->commitChanges(false);
        test::expectHostSeesTheTree(host, *host_tree, *channels);
        instance.reset();
        channels.reset();
        EXPECT_EQ(host.valuesOutsideTree(), 0);
    }

    zlr::IfValue* xmlValue(const std::string& text)
    {
        auto* value = static_cast<IfXmlValue*>(host.createValue(VALUE_TYPE_XML));
        value->set(text.c_str());
        return value;
    }

    // Channel 5, synchronous at 1 kHz, usable, in a data set of key 77 whose
    // one stream carries it as plain doubles.
    void prepareOneInput(std::uint64_t described_channel = 5)
    {
        host.tree().setXml("#Zelvar#Channels#5", "DataFormat", SYNC_DOUBLE);
        host.tree().setBoolean("#Zelvar#Channels#5", "Usable", true);
        host.tree().setXml("#Zelvar#Channels#5", "Timebase",
                           R"(<SimpleTimebase frequency="1000"/>)");
        instance->setInputs({5}, *instance->getRootChannel());
        instance->rebuildInputChannels();
        StreamDescriptors descriptors;
        descriptors.m_data_set_key = 77;
        ChannelDescriptor channel;
        channel.m_channel_id = described_channel;
        channel.m_dimension = 1;
        channel.m_size = 64;
        channel.m_stride = 64;
        descriptors.m_stream_descriptors.push_back({3, {channel}});
        host.setResponder(HOST_DATA_SET_REGISTER,
                          [this, text = zelvar_sim::writeStreamDescriptors(descriptors)](
                              const zelvar_sim::MessageRecord&, IfValue** result) {
                              *result = xmlValue(text);
                              return std::uint64_t{0};
                          });
    }

    // A block of samples of channel 5 from `first`.
    struct Samples {
        std::uint64_t first;
        std::vector<double> values;
    };
    static Samples block(std::uint64_t first, std::vector<double> values)
    {
        return {first, std::move(values)};
    }

    // A block list covering [begin, end) seconds.
    IfValue* blockList(double begin, double end, const std::vector<Samples>& samples)
    {
        std::vector<zelvar_sim::DataBlockList::Block> blocks;
        zelvar_sim::BlockBytes bytes;
        for (const Samples& one : samples) {
            DataBlock layout;
            layout.m_stream_id = 3;
            DataBlockChannel run;
            run.m_channel_id = 5;
            run.m_first_sample_index = one.first;
            run.m_count = one.values.size();
            layout.m_channels.push_back(run);
            layout.m_data_size = one.values.size() * sizeof(double);
            zelvar_sim::DataBlockList::Block block;
            block.offset = bytes.size();
            block.description = zelvar_sim::writeDataBlock(layout);
            bytes.resize(bytes.size() + layout.m_data_size);
            std::memcpy(bytes.data() + block.offset, one.values.data(), layout.m_data_size);
            blocks.push_back(std::move(block));
        }
        DataBlockList list;
        list.m_block_count = static_cast<std::uint32_t>(blocks.size());
        if (!blocks.empty()) {
            list.m_intervals.push_back({begin, end});
        }
        return new zelvar_sim::DataBlockList(host.ledger(), zelvar_sim::writeDataBlockList(list),
                                             std::move(blocks), std::move(bytes));
    }

    zelvar_sim::SimHost host;
    std::shared_ptr<zelvar_sim::PluginChannelTree> host_tree =
        std::make_shared<zelvar_sim::PluginChannelTree>(host);
    std::shared_ptr<PluginChannels> channels = std::make_shared<PluginChannels>();
    std::shared_ptr<ProbeInstance> instance = std::make_shared<ProbeInstance>();
};

TEST_F(SoftwareChannelInstanceTest, InputsComeOnceEachAndDecideValidity)
{
    test::AssertCapture asserts;
    host.tree().setXml("#Zelvar#Channels#5", "DataFormat", SYNC_DOUBLE);
    host.tree().setXml("#Zelvar#Channels#7", "DataFormat",
                       R"(<DataFormat sample_occurrence="NEVER" sample_format="none"/>)");
    const auto second = instance->addOutputChannel("second");
    second->addProperty(INPUTS, std::make_shared<EditableChannelIDListProperty>());
    instance->setInputs({9, 5, 7}, *instance->getRootChannel());
    instance->setInputs({5, 5}, *second);
    EXPECT_FALSE(instance->addOutputChannel("second")) << "a key is taken once";

    struct Case {
        const char* what;
        bool update_ok;
        bool usable;
        bool used;
        bool channels_valid;
        bool task_valid;
    };
    // A refused configuration and an input that is not usable are seen
    // through the plug-in's refused settings; here what it never meets.
    const Case cases[] = {
        {"nothing used", true, true, false, true, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        host.tree().setBoolean("#Zelvar#Channels#5", "Usable", c.usable);
        instance->update_result = c.update_ok;
        for (const auto& channel : instance->getOutputChannels()) {
            channel->getUsedProperty()->setValue(c.used);
        }
        instance->rebuildInputChannels();
        EXPECT_EQ(instance->validate(), c.update_ok);

        std::vector<std::uint64_t> proxies;
        for (const auto& proxy : instance->getInputChannels()) {
            proxies.push_back(proxy->getChannelId());
        }
        EXPECT_EQ(proxies, (std::vector<std::uint64_t>{5, 7, 9}));
        EXPECT_EQ(instance->getTask()->getInputChannels(), std::vector<std::uint64_t>{5})
            << "a channel without samples or of unknown format is not requested";
        for (const auto& channel : instance->getOutputChannels()) {
            EXPECT_EQ(channel->getChannelInfo().m_valid, c.channels_valid);
        }
        EXPECT_EQ(instance->getTask()->isValid(), c.task_valid);
    }
    EXPECT_TRUE(asserts.reported().empty());

    // A mapped id replaces the old one everywhere, and the proxies follow.
    instance->applyChannelIdMap({{5, 6}, {9, NO_CHANNEL_ID}});
    std::vector<std::uint64_t> proxies;
    for (const auto& proxy : instance->getInputChannels()) {
        proxies.push_back(proxy->getChannelId());
    }
    EXPECT_EQ(proxies, (std::vector<std::uint64_t>{6, 7, NO_CHANNEL_ID}));
}

TEST_F(SoftwareChannelInstanceTest, StreamRoundsUntilTheHostHasNoMoreBlocks)
{
    prepareOneInput();
    host.tree().setXml("#Zelvar", "MasterTimebaseValue",
                       zelvar_sim::writeMasterTimebaseValue({1000, 1000.0}));
    instance->onPrepareProcessing(&host, 0);
    ASSERT_EQ(host.messagesWithId(HOST_DATA_STREAM_START).size(), 1u);
    const std::string registered = host.messagesWithId(HOST_DATA_SET_REGISTER).at(0).text;
    EXPECT_NE(registered.find("RELAXED"), std::string::npos) << registered;

    struct Case {
        const char* what;
        std::optional<std::size_t> fail_round;
        std::uint64_t request_code;
        std::optional<std::uint64_t> thrown;
        std::size_t rounds;
        std::size_t logged;
    };
    const Case cases[] = {
        {"two rounds, then an empty list", std::nullopt, 0, std::nullopt, 2, 0},
        {"a failed round is logged and the next one runs", 1, 0, RESULT_EXCEPTION, 2, 1},
        {"a refused request", std::nullopt, 5, RESULT_FAILED, 0, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        test::LogCapture log(6);
        instance->rounds.clear();
        instance->fail_round = c.fail_round;
        int answered = 0;
        host.setResponder(HOST_DATA_REQUEST, [&](const zelvar_sim::MessageRecord&,
                                                 IfValue** result) -> std::uint64_t {
            if (c.request_code != 0) {
                return c.request_code;
            }
            switch (answered++) {
            case 0:
                *result = blockList(0.0, 0.003, {block(0, {1, 2, 3})});
                break;
            case 1:
                *result = blockList(0.003, 0.005, {block(3, {4, 5})});
                break;
            default:
                *result = blockList(0, 0, {});
            }
            return 0;
        });
        std::optional<std::uint64_t> thrown;
        try {
            instance->onProcess(&host, 0, nullptr);
        } catch (const CallbackError& error) {
            thrown = error.code();
        }
        EXPECT_EQ(thrown, c.thrown);
        ASSERT_EQ(instance->rounds.size(), c.rounds);
        if (c.rounds == 2) {
            EXPECT_EQ(instance->rounds[0], (ProbeInstance::Round{0.0, 0.003, {{5, {1, 2, 3}}}}));
            EXPECT_EQ(instance->rounds[1], (ProbeInstance::Round{0.003, 0.005, {{5, {4, 5}}}}));
        }
        EXPECT_EQ(log.records().size(), c.logged);
        if (c.logged) {
            EXPECT_EQ(log.records()[0].text, "Unhandled exception during 'process': bad round");
        }
    }

    instance->onStopProcessing(&host, 0);
    EXPECT_EQ(host.messagesWithId(HOST_DATA_STREAM_STOP).size(), 1u);
    const auto unregistered = host.messagesWithId(HOST_DATA_SET_UNREGISTER);
    ASSERT_EQ(unregistered.size(), 1u);
    EXPECT_EQ(unregistered[0].number, 77u);
    instance->onStopProcessing(&host, 0);
    EXPECT_EQ(host.messagesWithId(HOST_DATA_SET_UNREGISTER).size(), 1u) << "the data set is gone";
}

TEST_F(SoftwareChannelInstanceTest, ATimedStepRefusesADescribedChannelWithoutAProxy)
{
    struct Case {
        const char* what;
        std::uint64_t described_channel;
        std::vector<ProbeInstance::Round> rounds;
        std::string logged;
    };
    // Samples with the host's gaps as NaN are the plug-in's gap scenario.
    const Case cases[] = {
        {"a described channel without a proxy", 6, {},
         "Unhandled exception during 'process': no proxy for input channel"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        test::LogCapture log(6);
        prepareOneInput(c.described_channel);
        instance->onInitTimebases(&host, 0);
        instance->onPrepareProcessing(&host, 0);
        host.setResponder(HOST_DATA_REGIONS_REQUEST,
                          [this](const zelvar_sim::MessageRecord&, IfValue** result) {
                              *result = xmlValue(zelvar_sim::writeDataRegions(
                                  {{5, 0, 3}, {5, 6, 10}}));
                              return std::uint64_t{0};
                          });
        host.setResponder(HOST_DATA_REQUEST,
                          [this](const zelvar_sim::MessageRecord&, IfValue** result) {
                              *result = blockList(0.0, 0.01,
                                                  {block(0, {0, 1, 2}), block(6, {6, 7, 8, 9})});
                              return std::uint64_t{0};
                          });
        instance->rounds.clear();
        zlrbase_api_object_ptr<IfXmlValue> start;
        start.adopt(static_cast<IfXmlValue*>(
            xmlValue(zelvar_sim::writeProcessWindow({0, 1000.0}, {10, 1000.0}))));
        std::optional<std::uint64_t> thrown;
        try {
            instance->onProcess(&host, 0, start.get());
        } catch (const CallbackError& error) {
            thrown = error.code();
        }
        EXPECT_EQ(instance->rounds, c.rounds);
        EXPECT_EQ(thrown.has_value(), !c.logged.empty());
        const auto records = log.records();
        EXPECT_EQ(records.empty() ? std::string() : records[0].text, c.logged);
        instance->onStopProcessing(&host, 0);
    }
}

TEST_F(SoftwareChannelInstanceTest, WithoutInputsATimedStepRunsWithoutData)
{
    instance->onPrepareProcessing(&host, 0);
    EXPECT_TRUE(host.messagesWithId(HOST_DATA_SET_REGISTER).empty());
    struct Case {
        std::optional<std::string> start;
        std::vector<ProbeInstance::Round> rounds;
    };
    const Case cases[] = {
        {std::nullopt, {}},
        {zelvar_sim::writeProcessWindow({3, 1000.0}, {7, 1000.0}),
         {{ticksToSeconds(3, 1000.0), ticksToSeconds(7, 1000.0), {}}}},
        {zelvar_sim::writeProcessWindow({3, 1000.0}, {7, 0.0}), {}},
    };
    for (const Case& c : cases) {
        instance->rounds.clear();
        zlrbase_api_object_ptr<IfXmlValue> start;
        if (c.start) {
            start.adopt(static_cast<IfXmlValue*>(xmlValue(*c.start)));
        }
        instance->onProcess(&host, 0, start.get());
        EXPECT_EQ(instance->rounds, c.rounds) << c.start.value_or("no start");
    }
    EXPECT_TRUE(host.messagesWithId(HOST_DATA_REQUEST).empty());
}

TEST_F(SoftwareChannelInstanceTest, RestoreSkipsAnOrphanAndReportsARefusedSetting)
{
    test::AssertCapture asserts;
    const auto saved = [](std::uint32_t id, std::uint32_t parent, const std::string& key,
                           std::vector<Property> properties) {
        PluginChannelInfo channel;
        channel.m_local_id = id;
        channel.m_local_parent_id = parent;
        channel.m_default_name = key + " name";
        channel.m_dataformat.m_sample_occurrence = SAMPLE_OCCURRENCE_SYNC;
        channel.m_dataformat.m_sample_format = SAMPLE_FORMAT_DOUBLE;
        channel.m_dataformat.m_sample_dimension = 1;
        properties.insert(properties.begin(), Property(INSTANCE_KEY_PROPERTY, key));
        channel.m_properties = properties;
        return channel;
    };
    Property used_as_number("Used");
    used_as_number.setValue(2.0);
    const std::vector<PluginChannelInfo> kept = {
        saved(10, NO_LOCAL_ID, "root", {}),
        saved(11, 10, "A", {}),
        saved(13, 11, "C", {used_as_number}),
    };
    std::vector<PluginChannelInfo> all = kept;
    all.insert(all.begin() + 2, saved(12, 99, "B", {}));

    LocalIdMap map{{10, instance->getRootChannel()->getLocalId()}};
    instance->restoreChannels(all, map);
    EXPECT_EQ(asserts.reported(), std::vector<std::string>{"Unable to determine Parent"});
    ASSERT_EQ(instance->getOutputChannels().size(), 3u);
    const auto a = instance->findOutputChannel("A");
    const auto c = instance->findOutputChannel("C");
    ASSERT_TRUE(a && c);
    EXPECT_EQ(c->getLocalParent(), a);
    EXPECT_EQ(a->getChannelInfo().m_default_name, "A name");
    EXPECT_EQ(a->getChannelInfo().m_dataformat.m_sample_format, SAMPLE_FORMAT_DOUBLE);
    EXPECT_EQ(map, (LocalIdMap{{10, instance->getRootChannel()->getLocalId()},
                               {11, a->getLocalId()},
                               {13, c->getLocalId()}}));

    // A setting the channel cannot take is reported and leaves its value;
    // typed and unknown settings come back in the channels' own tests.
    asserts.clear();
    instance->restoreProperties(kept, map);
    EXPECT_EQ(asserts.reported(),
              std::vector<std::string>{"destination_property->update(property)"});
    EXPECT_TRUE(c->getUsedProperty()->getValue()) << "the refused value left the old one";

    EXPECT_THROW(instance->restoreProperties(all, map), std::out_of_range);
}

TEST(TicksToSecondsTest, ConvertingBackNeverFallsShort)
{
    struct Case {
        std::uint64_t ticks;
        double frequency;
    };
    std::vector<Case> cases = {{0, 1000.0},       {1, 3.0},        {7, 1e9},
                               {(1ull << 53) + 1, 1.0}, {999999999999, 1e7}, {10, 0.1}};
    std::mt19937_64 random(17);
    for (int i = 0; i < 2000; ++i) {
        cases.push_back({random() >> (random() % 40), std::ldexp(1.0 + (random() % 1000) / 7.0,
                                                               static_cast<int>(random() % 40))});
    }
    for (const Case& c : cases) {
        const double seconds = ticksToSeconds(c.ticks, c.frequency);
        const double back = seconds * c.frequency;
        // Exact only while the tick count itself is a double.
        if (c.ticks <= (1ull << 53)) {
            EXPECT_GE(static_cast<std::uint64_t>(back), c.ticks) << c.ticks << " / " << c.frequency;
        }
        // Never more than one step above the plain quotient.
        const double plain = static_cast<double>(c.ticks) / c.frequency;
        EXPECT_LE(seconds, std::nextafter(plain, std::numeric_limits<double>::max()));
        EXPECT_GE(seconds, plain);
    }
}

} // namespace
