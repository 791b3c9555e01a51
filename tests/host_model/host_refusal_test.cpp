// The host's readers against telegrams it must refuse: each is answered 1,
// kept as a protocol fault with its text, and leaves what the host knows as
// it was. What it must take, it takes, and gives back readable by the kit.
#include "sim_host.h"
#include "sim_host_model.h"
#include "sim_values.h"
#include "zlrbase_messages.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using zelvar_sim::HostModel;
using zelvar_sim::SimHost;

enum class Carrier { data, xml, string, data_without_terminator };

std::uint64_t deliver(SimHost& host, std::uint32_t id, Carrier carrier, const std::string& text)
{
    switch (carrier) {
    case Carrier::data:
        return host.messageSyncData(id, 0, text.c_str(), text.size() + 1, nullptr);
    case Carrier::data_without_terminator:
        return host.messageSyncData(id, 0, text.data(), text.size(), nullptr);
    case Carrier::xml: {
        auto* value = new zelvar_sim::XmlValue(host.ledger(), text);
        const std::uint64_t answer = host.messageSync(id, 0, value, nullptr);
        value->release();
        return answer;
    }
    case Carrier::string: {
        auto* value = new zelvar_sim::StringValue(host.ledger(), text);
        const std::uint64_t answer = host.messageSync(id, 0, value, nullptr);
        value->release();
        return answer;
    }
    }
    return ~std::uint64_t{0};
}

const std::string TREE =
    R"(<UpdatePluginChannels protocol_version="1.0">)"
    R"(<Channel local_id="0" default_name="Root" deletable="true" valid="true"/>)"
    R"(<Channel local_id="1" default_name="Out" valid="false">)"
    R"(<DataFormat sample_occurrence="SYNC" sample_format="double" sample_dimension="1"/>)"
    R"(<SimpleTimebase frequency="100"/><Parent local_id="0"/></Channel>)"
    R"(</UpdatePluginChannels>)";

const std::string CONFIG =
    R"(<UpdateConfig protocol_version="1.0"><Channel local_id="1">)"
    R"(<Property name="Window"><ScalarValue><Value>0.5</Value><Unit>s</Unit></ScalarValue>)"
    R"(<Constraints><DoubleRangeConstraint min="0.001" max="10"/>)"
    R"(<OptionConstraint><ScalarValue><Value>1</Value><Unit>s</Unit></ScalarValue></OptionConstraint>)"
    R"(<VisibilityConstraint visibility="PUBLIC"/></Constraints></Property>)"
    R"(<Property name="Inputs"><ChannelIDList><ChannelIDList><ChannelID>7</ChannelID>)"
    R"(<ChannelID>9</ChannelID></ChannelIDList></ChannelIDList><Constraints>)"
    R"(<ChannelIdsConstraint max_items="0" max_dimension="-1" channel_type="SYNC"/>)"
    R"(</Constraints></Property></Channel></UpdateConfig>)";

const std::string REGISTRATION =
    R"(<RegisterSoftwareChannel protocol_version="1.0"><ServiceName>BASE</ServiceName>)"
    R"(<DisplayName>Base</DisplayName><DisplayGroup>Group</DisplayGroup>)"
    R"(<AnalysisCapable>True</AnalysisCapable><AcquisitionCapable>True</AcquisitionCapable>)"
    R"(</RegisterSoftwareChannel>)";

const std::string TRANSLATION =
    R"(<TS version="2.1" language="en"><context><name>Keys</name>)"
    R"(<message><source>A</source><translation>Aa</translation></message></context></TS>)";

// A tree of one root with `channel` as its only other element.
std::string treeWith(const std::string& channel)
{
    return R"(<UpdatePluginChannels protocol_version="1.0"><Channel local_id="0" valid="true"/>)" +
           channel + "</UpdatePluginChannels>";
}

// A configuration of channel 1 with `property` as its only element.
std::string configWith(const std::string& property)
{
    return R"(<UpdateConfig protocol_version="1.0"><Channel local_id="1">)" + property +
           "</Channel></UpdateConfig>";
}

struct Refusal {
    const char* what;
    std::uint32_t id;
    Carrier carrier;
    std::string text;
    const char* reason_part;
};

TEST(HostReaders, RefuseWhatTheHostCannotTakeAndKeepTheirState)
{
    const std::string scalar = R"(<ScalarValue><Value>1</Value><Unit>s</Unit></ScalarValue>)";
    const Refusal refusals[] = {
        {"tree as XML value", zlr::HOST_UPDATE_CHANNELS, Carrier::xml, TREE, "XML value"},
        {"tree without terminator", zlr::HOST_UPDATE_CHANNELS,
         Carrier::data_without_terminator, TREE, "terminator"},
        {"tree not XML", zlr::HOST_UPDATE_CHANNELS, Carrier::data, "<Update", "version 1.0"},
        {"tree other root", zlr::HOST_UPDATE_CHANNELS, Carrier::data,
         R"(<UpdateConfig protocol_version="1.0"/>)", "UpdatePluginChannels"},
        {"tree version 2.0", zlr::HOST_UPDATE_CHANNELS, Carrier::data,
         R"(<UpdatePluginChannels protocol_version="2.0"/>)", "version 1.0"},
        {"channel without local_id", zlr::HOST_UPDATE_CHANNELS, Carrier::data,
         treeWith(R"(<Channel valid="true"/>)"), "local_id"},
        {"local_id with a rest", zlr::HOST_UPDATE_CHANNELS, Carrier::data,
         treeWith(R"(<Channel local_id="1x" valid="true"/>)"), "local_id"},
        {"local_id beyond 32 bits", zlr::HOST_UPDATE_CHANNELS, Carrier::data,
         treeWith(R"(<Channel local_id="4294967296" valid="true"/>)"), "local_id"},
        {"channel without valid", zlr::HOST_UPDATE_CHANNELS, Carrier::data,
         treeWith(R"(<Channel local_id="1"/>)"), "without valid"},
        {"valid with a capital", zlr::HOST_UPDATE_CHANNELS, Carrier::data,
         treeWith(R"(<Channel local_id="1" valid="True"/>)"), "valid"},
        {"local id twice", zlr::HOST_UPDATE_CHANNELS, Carrier::data,
         treeWith(R"(<Channel local_id="0" valid="true"/>)"), "twice"},
        {"parent after child", zlr::HOST_UPDATE_CHANNELS, Carrier::data,
         treeWith(R"(<Channel local_id="1" valid="true"><Parent local_id="2"/></Channel>)"
                  R"(<Channel local_id="2" valid="true"/>)"),
         "parent 2"},
        {"unknown sample format", zlr::HOST_UPDATE_CHANNELS, Carrier::data,
         treeWith(R"(<Channel local_id="1" valid="true"><DataFormat sample_occurrence="SYNC" )"
                  R"(sample_format="quadruple" sample_dimension="1"/></Channel>)"),
         "quadruple"},
        {"format without occurrence", zlr::HOST_UPDATE_CHANNELS, Carrier::data,
         treeWith(R"(<Channel local_id="1" valid="true"><DataFormat sample_format="double"/>)"
                  R"(</Channel>)"),
         "sample_occurrence"},
        {"timebase without frequency", zlr::HOST_UPDATE_CHANNELS, Carrier::data,
         treeWith(R"(<Channel local_id="1" valid="true"><SimpleTimebase/></Channel>)"),
         "frequency"},
        {"unknown element", zlr::HOST_UPDATE_CHANNELS, Carrier::data,
         treeWith(R"(<Channel local_id="1" valid="true"><Colour/></Channel>)"), "Colour"},
        {"unknown attribute", zlr::HOST_UPDATE_CHANNELS, Carrier::data,
         treeWith(R"(<Channel local_id="1" valid="true" colour="red"/>)"), "colour"},
        {"config as string value", zlr::HOST_UPDATE_CONFIG, Carrier::string, CONFIG,
         "type 16"},
        {"config of an unknown channel", zlr::HOST_UPDATE_CONFIG, Carrier::data,
         R"(<UpdateConfig protocol_version="1.0"><Channel local_id="7"/></UpdateConfig>)",
         "does not know"},
        {"config names a channel twice", zlr::HOST_UPDATE_CONFIG, Carrier::data,
         R"(<UpdateConfig protocol_version="1.0"><Channel local_id="1"/><Channel local_id="1"/>)"
         R"(</UpdateConfig>)",
         "twice"},
        {"config with another child", zlr::HOST_UPDATE_CONFIG, Carrier::data,
         R"(<UpdateConfig protocol_version="1.0"><Group/></UpdateConfig>)", "Group"},
        {"property without name", zlr::HOST_UPDATE_CONFIG, Carrier::xml,
         configWith("<Property>" + scalar + "</Property>"), "without a name"},
        {"property without value", zlr::HOST_UPDATE_CONFIG, Carrier::xml,
         configWith(R"(<Property name="Window"/>)"), "no value"},
        {"property with an unknown type", zlr::HOST_UPDATE_CONFIG, Carrier::xml,
         configWith(R"(<Property name="Window"><QuadValue>1</QuadValue></Property>)"),
         "QuadValue"},
        {"property with two values", zlr::HOST_UPDATE_CONFIG, Carrier::xml,
         configWith(R"(<Property name="Window">)" + scalar + scalar + "</Property>"),
         "unexpected ScalarValue"},
        {"property twice", zlr::HOST_UPDATE_CONFIG, Carrier::xml,
         configWith(R"(<Property name="Window">)" + scalar + R"(</Property><Property name="Window">)" +
                    scalar + "</Property>"),
         "twice"},
        {"unknown constraint", zlr::HOST_UPDATE_CONFIG, Carrier::xml,
         configWith(R"(<Property name="Window">)" + scalar +
                    "<Constraints><FancyConstraint/></Constraints></Property>"),
         "FancyConstraint"},
        {"range with a word", zlr::HOST_UPDATE_CONFIG, Carrier::xml,
         configWith(R"(<Property name="Window">)" + scalar +
                    R"(<Constraints><DoubleRangeConstraint min="low" max="1"/></Constraints>)"
                    "</Property>"),
         "min"},
        {"channel type unknown", zlr::HOST_UPDATE_CONFIG, Carrier::xml,
         configWith(R"(<Property name="Window">)" + scalar +
                    R"(<Constraints><ChannelIdsConstraint max_items="0" max_dimension="-1" )"
                    R"(channel_type="SOME"/></Constraints></Property>)"),
         "channel_type"},
        {"translation as bytes", zlr::HOST_ADD_TRANSLATION, Carrier::data, TRANSLATION,
         "bytes"},
        {"translation of no language", zlr::HOST_ADD_TRANSLATION, Carrier::xml,
         R"(<TS version="2.1"/>)", "language"},
        {"translation missing", zlr::HOST_ADD_TRANSLATION, Carrier::xml,
         R"(<TS language="fr"><context><name>K</name><message><source>A</source></message>)"
         R"(</context></TS>)",
         "without source or translation"},
        {"registration without service", zlr::HOST_REGISTER_SOFTWARE_CHANNEL, Carrier::xml,
         R"(<RegisterSoftwareChannel protocol_version="1.0"><DisplayName>X</DisplayName>)"
         R"(</RegisterSoftwareChannel>)",
         "RegisterSoftwareChannel"},
        {"registration twice", zlr::HOST_REGISTER_SOFTWARE_CHANNEL, Carrier::xml, REGISTRATION,
         "already"},
        {"re-registration of an unknown service", zlr::HOST_REREGISTER_SOFTWARE_CHANNEL,
         Carrier::xml,
         R"(<RegisterSoftwareChannel protocol_version="1.0"><ServiceName>OTHER</ServiceName>)"
         R"(<DisplayName>O</DisplayName><DisplayGroup>G</DisplayGroup>)"
         R"(<AnalysisCapable>False</AnalysisCapable><AcquisitionCapable>True</AcquisitionCapable>)"
         R"(</RegisterSoftwareChannel>)",
         "never registered"},
        {"unregistration of an unknown service", zlr::HOST_UNREGISTER_SOFTWARE_CHANNEL,
         Carrier::string, "OTHER", "not registered"},
        {"unregistration as XML value", zlr::HOST_UNREGISTER_SOFTWARE_CHANNEL, Carrier::xml,
         "BASE", "string value"},
    };

    for (const Refusal& refusal : refusals) {
        SCOPED_TRACE(refusal.what);
        SimHost host;
        HostModel model(host);
        ASSERT_EQ(deliver(host, zlr::HOST_UPDATE_CHANNELS, Carrier::data, TREE), 0u);
        ASSERT_EQ(deliver(host, zlr::HOST_UPDATE_CONFIG, Carrier::data, CONFIG), 0u);
        ASSERT_EQ(deliver(host, zlr::HOST_REGISTER_SOFTWARE_CHANNEL, Carrier::xml, REGISTRATION),
                  0u);
        ASSERT_EQ(deliver(host, zlr::HOST_ADD_TRANSLATION, Carrier::xml, TRANSLATION), 0u);
        ASSERT_TRUE(host.faults().empty()) << model.dump();
        const std::string before = model.dump();

        EXPECT_EQ(deliver(host, refusal.id, refusal.carrier, refusal.text), 1u);
        const auto faults = host.faults();
        ASSERT_EQ(faults.size(), 1u);
        EXPECT_EQ(faults[0].message_id, refusal.id);
        EXPECT_NE(faults[0].reason.find(refusal.reason_part), std::string::npos)
            << faults[0].reason;
        if (refusal.carrier != Carrier::data_without_terminator) {
            EXPECT_EQ(faults[0].telegram, refusal.text);
        }
        host.clearFaults();
        EXPECT_EQ(model.dump(), before);
    }
}

// The kit reads the host's record in the kit round trip and in the restore
// scenarios; here the host takes its own record again, unchanged, and a later
// tree without a channel deletes it with its settings.
TEST(HostModelState, TakesItsOwnRecordAndDeletesWhatALaterTreeNoLongerNames)
{
    SimHost host;
    HostModel model(host);
    ASSERT_EQ(deliver(host, zlr::HOST_UPDATE_CHANNELS, Carrier::data, TREE), 0u);
    ASSERT_EQ(deliver(host, zlr::HOST_UPDATE_CONFIG, Carrier::data, CONFIG), 0u);
    const std::string record = model.savedConfiguration();
    SimHost other_host;
    HostModel other(other_host);
    ASSERT_EQ(deliver(other_host, zlr::HOST_UPDATE_CHANNELS, Carrier::data, record), 0u);
    EXPECT_EQ(other.savedConfiguration(), record);

    ASSERT_EQ(deliver(host, zlr::HOST_UPDATE_CHANNELS, Carrier::data, treeWith("")), 0u);
    EXPECT_FALSE(model.channels().channel(1));
    ASSERT_EQ(deliver(host, zlr::HOST_UPDATE_CHANNELS, Carrier::data, TREE), 0u);
    ASSERT_TRUE(model.channels().channel(1));
    EXPECT_TRUE(model.channels().channel(1)->properties.empty());
    EXPECT_TRUE(host.faults().empty());
}

} // namespace
