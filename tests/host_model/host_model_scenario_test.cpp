// The configuration side of the host against the loaded plug-in: a software
// channel's life from the question whether it can be made to its deletion
// and the plug-in's finish.
#include "sim_scenario.h"
#include "sim_recording.h"
#include "zlrbase_messages.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using zelvar_sim::HostChannel;

class HostModelScenario : public zelvar_sim::test::SimScenario {
protected:
    // The setting's value as the host shows it, as a scalar.
    double shownScalar(std::uint32_t local_id, const std::string& name)
    {
        const auto property = model().channels().property(local_id, name);
        return property ? property->value.getScalarValue().m_val : std::nan("");
    }

    // The one child of `root` in the host's tree.
    std::optional<HostChannel> onlyChild(std::uint32_t root)
    {
        std::optional<HostChannel> child;
        for (const HostChannel& channel : model().channels().channels()) {
            if (channel.parent == root) {
                EXPECT_FALSE(child) << "a second child " << channel.local_id;
                child = channel;
            }
        }
        return child;
    }
};

TEST_F(HostModelScenario, SoftwareChannelFromQueryToFinish)
{
    const auto registered = model().softwareChannels().registered();
    ASSERT_EQ(registered.size(), 1u);
    EXPECT_EQ(registered[0].m_display_name, "Frequency Measurement");
    EXPECT_EQ(registered[0].m_display_group, "Advanced Math");

    std::vector<double> samples(20000);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        samples[i] = std::sin(2.0 * M_PI * 440.0 * static_cast<double>(i) / 10000.0);
    }
    zelvar_sim::InputChannelSetup microphone;
    microphone.id = 7;
    microphone.long_name = "Mic";
    microphone.sample_rate = 10000.0;
    acquisition().addInputChannel(microphone, zelvar_sim::MemoryRecording::of(samples));
    const auto query = model().queryAction({{7, zelvar_sim::synchronousScalar()}});
    ASSERT_TRUE(query.response);
    EXPECT_TRUE(query.response->m_valid);

    const auto created = model().createSoftwareChannel({{7, zelvar_sim::synchronousScalar()}});
    ASSERT_TRUE(created.response) << model().dump();
    ASSERT_EQ(created.response->m_created_channels.size(), 2u);
    const std::uint32_t root = created.response->m_created_channels[0];
    EXPECT_TRUE(created.response->m_show_details);
    EXPECT_EQ(created.response->m_details_channel, root);
    EXPECT_EQ(model().hasInstances(), std::optional<bool>(true));

    // Window 0.2 s at 10 kHz with half of it overlapping: a step of 1000
    // samples, 10 results a second. 95 % is beyond the limit, and the
    // plug-in's reply shows the value it kept.
    auto output = onlyChild(root);
    ASSERT_TRUE(output);
    EXPECT_EQ(output->default_name, "Mic_Frequency");
    EXPECT_EQ(output->timebase.m_frequency, 10.0);
    model().editProperty(root, "FREQUENCY_MEASUREMENT/WindowOverlap", "95");
    EXPECT_EQ(shownScalar(root, "FREQUENCY_MEASUREMENT/WindowOverlap"), 50.0);

    // A person deletes the output: the whole software channel goes.
    EXPECT_EQ(model().deleteChannels({output->local_id}), 0u);
    EXPECT_TRUE(model().channels().channels().empty()) << model().dump();
    EXPECT_EQ(model().hasInstances(), std::optional<bool>(false));

    // At the finish the software channel leaves the host's list.
    EXPECT_EQ(session().finish(), 0u);
    EXPECT_TRUE(model().softwareChannels().registered().empty());
}

} // namespace
