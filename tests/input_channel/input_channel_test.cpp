// The proxy of a host channel against the simulated host's value tree. A
// format given bare and one given wrapped are read in the data scenarios.
#include "sim_host.h"
#include "zlrfw_input_channel.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace {

using zlr::framework::InputChannel;

const char* const PATH = "#Zelvar#Channels#12";

TEST(InputChannel, AFormatThatDoesNotReadLeavesTheCachedOne)
{
    const char* const refused[] = {
        R"(<DataFormat sample_occurrence="SOMETIMES" sample_format="double" sample_value_type="vector"/>)",
        R"(<ChannelDataFormat><Channel><DataFormat sample_occurrence="SOMETIMES" sample_format="double"/></Channel></ChannelDataFormat>)",
        "<DataFormat",
        "",
    };
    for (const char* text : refused) {
        zelvar_sim::SimHost host;
        host.tree().setXml(PATH, "DataFormat",
                           R"(<DataFormat sample_occurrence="ASYNC" sample_format="float"/>)");
        InputChannel channel(&host, 12);
        ASSERT_TRUE(channel.updateDataFormat());
        const zlr::DataFormat before = channel.getDataFormat();
        host.tree().setXml(PATH, "DataFormat", text);
        EXPECT_FALSE(channel.updateDataFormat()) << text;
        EXPECT_EQ(channel.getDataFormat(), before) << text;
    }
    zelvar_sim::SimHost empty_host;
    InputChannel missing(&empty_host, 12);
    EXPECT_FALSE(missing.updateDataFormat());
    EXPECT_EQ(missing.getDataFormat(), zlr::DataFormat());
}

TEST(InputChannel, LiveValuesAndTheirDefaults)
{
    zelvar_sim::SimHost host;
    host.tree().setBoolean(PATH, "Usable", true);
    host.tree().setString(PATH, "LongName", "Voltage U1");
    host.tree().setScalar(PATH, "SampleRate", 10000.0, "Hz");
    host.tree().setXml(PATH, "DataFormat", R"(<DataFormat sample_occurrence="ASYNC" sample_format="double"/>)");

    InputChannel channel(&host, 12);
    EXPECT_TRUE(host.queries().empty());
    EXPECT_TRUE(channel.isUsable());
    EXPECT_EQ(channel.getLongName(), "Voltage U1");

    // Only a synchronous channel has a rate, and the cached format decides.
    const auto before = host.queries().size();
    EXPECT_EQ(channel.getSampleRate(), zlr::Scalar());
    EXPECT_EQ(host.queries().size(), before);
    channel.updateDataFormat();
    EXPECT_EQ(channel.getSampleRate(), zlr::Scalar());
    host.tree().setXml(PATH, "DataFormat", R"(<DataFormat sample_occurrence="SYNC" sample_format="double"/>)");
    channel.updateDataFormat();
    EXPECT_EQ(channel.getSampleRate(), zlr::Scalar(10000.0, "Hz"));

    InputChannel unknown(&host, 13);
    EXPECT_FALSE(unknown.isUsable());
    EXPECT_EQ(unknown.getLongName(), "");
    host.tree().setString(PATH, "Usable", "true"); // a value of the wrong type counts as absent
    EXPECT_FALSE(channel.isUsable());

    InputChannel none(&host, ~std::uint64_t{0});
    const auto queries = host.queries().size();
    EXPECT_FALSE(none.isUsable());
    EXPECT_FALSE(none.updateDataFormat());
    EXPECT_EQ(host.queries().size(), queries);
    EXPECT_EQ(host.valuesOutsideTree(), 0);
}

TEST(InputChannel, TimebaseIsReplacedWhollyOrNotAtAll)
{
    zelvar_sim::SimHost host;
    InputChannel channel(&host, 12);
    EXPECT_TRUE(std::isnan(channel.getTimebase().m_frequency));
    EXPECT_FALSE(channel.updateTimebase());

    host.tree().setXml(PATH, "Timebase", R"(<TimebaseWithOffset frequency="48000" offset="0.5"/>)");
    ASSERT_TRUE(channel.updateTimebase());
    EXPECT_EQ(channel.getTimebase().m_type, zlr::Timebase::TYPE_WITH_OFFSET);
    EXPECT_EQ(channel.getTimebase().m_offset, 0.5);

    host.tree().setXml(PATH, "Timebase", R"(<SimpleTimebase frequency="1000")");
    EXPECT_FALSE(channel.updateTimebase());
    EXPECT_EQ(channel.getTimebase().m_frequency, 48000.0);

    host.tree().setXml(PATH, "Timebase", R"(<SimpleTimebase frequency="1000"/>)");
    ASSERT_TRUE(channel.updateTimebase());
    EXPECT_EQ(channel.getTimebase().m_type, zlr::Timebase::TYPE_SIMPLE);
    EXPECT_EQ(channel.getTimebase().m_frequency, 1000.0);
    EXPECT_EQ(channel.getTimebase().m_offset, 0.0);
    EXPECT_EQ(host.valuesOutsideTree(), 0);
}

} // namespace
