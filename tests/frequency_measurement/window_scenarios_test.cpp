// How the settings and the input's rate become window size, step and output
// rate, seen from the host: the output channel's rate, and how many values
// a recording of a given length yields.
#include "frequency_scenario.h"

#include <gtest/gtest.h>

namespace {

using namespace frequency_test;

class WindowScenario : public FrequencyScenario {};

// A window of `size` samples stepping by `step` gives its second value at
// size + step samples, whether the windows overlap or the step is longer:
// two inputs that differ by one sample around it show the size exactly.
TEST_F(WindowScenario, SettingsGiveWindowStepAndOutputRate)
{
    const struct {
        double rate;
        const char* length;
        const char* overlap;
        std::uint64_t size;
        std::uint64_t step;
    } cases[] = {
        {10000.0, "0.2", "50", 2048, 1000},   // 51.2 % real overlap
        {10000.0, "0.2", "0", 2048, 2000},    // still 48 samples shared
        {10000.0, "0.2", "90", 2048, 200},    // 199.99999999999997 rounds up to 200
        {8192.0, "0.25", "0", 2048, 2048},    // windows adjoin exactly
        {1200000.0, "1", "0", 1048576, 1200000}, // the step passes the largest window
    };
    std::uint64_t id = 1;
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string("rate ") + std::to_string(c.rate) + ", " + c.length + " s, " +
                     c.overlap + " %");
        const std::uint64_t second = c.size + c.step;
        const std::uint64_t full = id++;
        const std::uint64_t short_by_one = id++;
        addInput(full, "Full" + std::to_string(full), c.rate,
                 zelvar_sim::MemoryRecording::of(tone(c.rate / 7.3, c.rate, second)));
        addInput(short_by_one, "Short" + std::to_string(short_by_one), c.rate,
                 zelvar_sim::MemoryRecording::of(tone(c.rate / 7.3, c.rate, second - 1)));
        const std::uint32_t root = createChannel({full, short_by_one});
        edit(root, LENGTH, c.length);
        edit(root, OVERLAP, c.overlap);
        EXPECT_EQ(status(root), "");
        const auto outputs = bench().outputsOf(root);
        ASSERT_EQ(outputs.size(), 2u);
        for (const auto& output : outputs) {
            EXPECT_EQ(output.timebase.m_frequency, c.rate / static_cast<double>(c.step));
        }

        run();
        const auto& full_blocks = blocks(outputs[0].local_id);
        const auto& short_blocks = blocks(outputs[1].local_id);
        ASSERT_FALSE(full_blocks.empty());
        EXPECT_EQ(full_blocks.front().first_index, 1u) << "a run from 0 starts at index 1";
        EXPECT_EQ(acquisition().outputValues(outputs[0].local_id).size(), 2u);
        EXPECT_EQ(acquisition().outputValues(outputs[1].local_id).size(), 1u);
        ASSERT_FALSE(short_blocks.empty());
        EXPECT_EQ(short_blocks.front().first_index, 1u);

        // Each case runs alone: the channel goes before the next is made.
        EXPECT_EQ(model().deleteChannels({root}), 0u);
        acquisition().inputs().remove(full);
        acquisition().inputs().remove(short_by_one);
    }
}

// The two frequency limits follow the first input that can be used, as
// five periods per window and half the rate, and never again.
TEST_F(WindowScenario, FirstUsableInputSetsTheLimits)
{
    addInput(1, "Fast", 10000.0, zelvar_sim::MemoryRecording::of(tone(440.0, 10000.0, 100)));
    addInput(2, "Slow", 8000.0, zelvar_sim::MemoryRecording::of(tone(440.0, 8000.0, 100)));
    const std::uint32_t root = createChannel({});
    EXPECT_TRUE(bench().outputsOf(root).empty());
    EXPECT_EQ(shownScalar(root, MIN_FREQUENCY), 10.0);
    EXPECT_EQ(shownScalar(root, MAX_FREQUENCY), 1000.0);

    edit(root, LENGTH, "0.1");
    EXPECT_EQ(shownScalar(root, MIN_FREQUENCY), 10.0) << "no input yet";
    edit(root, INPUTS, "1");
    EXPECT_EQ(shownScalar(root, MIN_FREQUENCY), 50.0);
    EXPECT_EQ(shownScalar(root, MAX_FREQUENCY), 5000.0);
    EXPECT_EQ(status(root), "");

    // A later input keeps them, and half its rate is now below the maximum.
    edit(root, LENGTH, "0.2");
    edit(root, INPUTS, "2");
    EXPECT_EQ(shownScalar(root, MIN_FREQUENCY), 50.0);
    EXPECT_EQ(shownScalar(root, MAX_FREQUENCY), 5000.0);
    EXPECT_EQ(status(root), "Min/Max frequency values are out of range");
    EXPECT_FALSE(taskRegistered(root));
}

} // namespace
