// What the channel makes of the data: gaps, the frequency range, and
// results that do not depend on how the host cuts and hands out the data.
#include "frequency_scenario.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace {

using namespace frequency_test;
using zelvar_sim::MemoryRecording;
using zelvar_sim::SampleSpan;

class DataScenario : public FrequencyScenario {};

bool sameBits(double a, double b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

// One value per index, in the order the host got them.
std::vector<std::pair<std::uint64_t, double>> indexed(const std::vector<zelvar_sim::CapturedBlock>& blocks)
{
    std::vector<std::pair<std::uint64_t, double>> values;
    for (const auto& block : blocks) {
        for (std::size_t i = 0; i < block.values.size(); ++i) {
            values.emplace_back(block.first_index + i, block.values[i]);
        }
    }
    return values;
}

// The same tone with and without a gap, each step given its time span (a
// pulled stream carries no gaps): the windows that hold a gap sample are
// NaN, all others keep their bits, and no index moves.
TEST_F(DataScenario, WindowsThatHoldAGapAreNaNAndIndicesStayAligned)
{
    const std::vector<double> samples = tone(440.0, 10000.0, 30000);
    const SampleSpan gap{12345, 12845};
    addInput(1, "Whole", 10000.0, MemoryRecording::of(samples));
    addInput(2, "Holed", 10000.0, MemoryRecording::of(samples, {gap}));
    const std::uint32_t root = createChannel({1, 2});
    run({.block_duration = 0.03, .process_interval = 0.07,
         .mode = zelvar_sim::ProcessMode::time_stamped});

    const auto outputs = bench().outputsOf(root);
    ASSERT_EQ(outputs.size(), 2u);
    const auto whole = indexed(blocks(outputs[0].local_id));
    const auto holed = indexed(blocks(outputs[1].local_id));
    ASSERT_EQ(whole.size(), 28u); // (30000 - 2048) / 1000 + 1
    ASSERT_EQ(holed.size(), whole.size());
    std::size_t refused = 0;
    for (std::size_t j = 0; j < whole.size(); ++j) {
        EXPECT_EQ(holed[j].first, j + 1);
        EXPECT_EQ(whole[j].first, j + 1);
        // Value j + 1 comes from samples j * 1000 to j * 1000 + 2047.
        const std::uint64_t first = j * 1000;
        const bool touches_gap = first < gap.end && gap.begin < first + 2048;
        EXPECT_NEAR(whole[j].second, 440.0, 0.5) << j;
        if (touches_gap) {
            EXPECT_TRUE(std::isnan(holed[j].second)) << j;
            ++refused;
        } else {
            EXPECT_TRUE(sameBits(holed[j].second, whole[j].second)) << j;
        }
    }
    EXPECT_EQ(refused, 2u);
}

// A tone of eight samples a period lies on bin 256 of a 2048-sample window
// and repeats every step of 1000 samples, so every window gives the same
// bits. A limit equal to that estimate lets it pass; one step beyond, not.
TEST_F(DataScenario, EstimatesOutsideTheRangeAreNaNAndTheLimitsThemselvesStand)
{
    std::vector<double> samples(12048);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        samples[i] = std::sin(M_PI / 4.0 * static_cast<double>(i % 8));
    }
    addInput(1, "Tone", 10000.0, MemoryRecording::of(samples));
    const std::uint32_t root = createChannel({1});
    const std::uint32_t output = bench().outputsOf(root).at(0).local_id;
    edit(root, MIN_FREQUENCY, "0");
    run();
    const std::vector<double> free = acquisition().outputValues(output);
    ASSERT_EQ(free.size(), 11u);
    const double f = free.front();
    EXPECT_NEAR(f, 1250.0, 1e-6);
    for (const double value : free) {
        ASSERT_TRUE(sameBits(value, f));
    }

    const double above = std::nextafter(f, 1e300);
    const double below = std::nextafter(f, -1e300);
    const struct {
        double min;
        double max;
        bool kept;
    } cases[] = {
        {f, 5000.0, true}, {above, 5000.0, false}, {0.0, f, true}, {0.0, below, false}, {f, f, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "min " << c.min << " max " << c.max);
        // Through the host with every bit of the limits, lowest first.
        zlr::Property min(MIN_FREQUENCY), max(MAX_FREQUENCY);
        min.setValue(zlr::Scalar(c.min, "Hz"));
        max.setValue(zlr::Scalar(c.max, "Hz"));
        for (const zlr::Property& limit : {min, max, min}) {
            EXPECT_EQ(model().sendConfigUpdate(root, limit), 0u);
        }
        ASSERT_EQ(shownScalar(root, MIN_FREQUENCY), c.min);
        ASSERT_EQ(shownScalar(root, MAX_FREQUENCY), c.max);
        run();
        const std::vector<double> values = acquisition().outputValues(output);
        ASSERT_EQ(values.size(), free.size());
        for (const double value : values) {
            if (c.kept) {
                EXPECT_TRUE(sameBits(value, f));
            } else {
                EXPECT_TRUE(std::isnan(value));
            }
        }
    }
}

// The same values cut into blocks of different lengths, handed out at
// different intervals, pulled as a stream or given with time stamps, and
// recorded as double, float and 16-bit integers: the same bits at the same
// indices on every input, since the host hands each out as the same doubles.
TEST_F(DataScenario, ResultsDoNotDependOnHowTheHostCutsTheData)
{
    // Whole numbers of a 16-bit range, which float and int16 hold exactly.
    std::vector<double> values(25000);
    std::vector<float> as_float(values.size());
    std::vector<std::int16_t> as_int16(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double t = static_cast<double>(i) / 10000.0;
        values[i] = std::round(12000.0 * std::sin(2.0 * M_PI * (300.0 + 400.0 * t) * t));
        as_float[i] = static_cast<float>(values[i]);
        as_int16[i] = static_cast<std::int16_t>(values[i]);
    }
    addInput(1, "Double", 10000.0, MemoryRecording::of(values));
    // This one's host gives the format wrapped in ChannelDataFormat/Channel.
    acquisition().addInputChannel({.id = 2, .long_name = "Float", .sample_rate = 10000.0,
                                   .wrapped_data_format = true},
                                  MemoryRecording::of(as_float));
    addInput(3, "Int16", 10000.0, MemoryRecording::of(as_int16));
    const std::uint32_t root = createChannel({1, 2, 3});
    edit(root, OVERLAP, "75");
    const auto outputs = bench().outputsOf(root);
    ASSERT_EQ(outputs.size(), 3u);

    using zelvar_sim::ProcessMode;
    const zelvar_sim::RunOptions cuts[] = {
        {.block_duration = 0.01, .process_interval = 0.1, .mode = ProcessMode::stream},
        {.block_duration = 0.1, .process_interval = 0.05, .mode = ProcessMode::stream},
        {.block_duration = 0.01, .process_interval = 0.1, .mode = ProcessMode::stream, .blocks_per_request = 3},
        {.block_duration = 1.0, .process_interval = 0.37, .mode = ProcessMode::stream},
        {.block_duration = 0.01, .process_interval = 0.023, .mode = ProcessMode::time_stamped},
        {.block_duration = 0.1, .process_interval = 0.5, .mode = ProcessMode::time_stamped},
        {.block_duration = 1.0, .process_interval = 1.3, .mode = ProcessMode::time_stamped},
    };
    std::vector<std::pair<std::uint64_t, double>> reference;
    for (const auto& cut : cuts) {
        SCOPED_TRACE(testing::Message() << "blocks " << cut.block_duration << " s, every "
                                        << cut.process_interval << " s, "
                                        << (cut.mode == ProcessMode::stream ? "stream" : "time-stamped"));
        run(cut);
        for (const auto& output : outputs) {
            SCOPED_TRACE(output.default_name);
            const auto got = indexed(blocks(output.local_id));
            if (reference.empty()) {
                reference = got;
                ASSERT_EQ(reference.size(), 46u); // (25000 - 2048) / 500 + 1
                // A measurement, not the NaN of an input read wrong.
                for (const auto& [index, frequency] : reference) {
                    ASSERT_TRUE(std::isfinite(frequency)) << index;
                }
            }
            ASSERT_EQ(got.size(), reference.size());
            for (std::size_t j = 0; j < got.size(); ++j) {
                ASSERT_EQ(got[j].first, reference[j].first);
                ASSERT_TRUE(sameBits(got[j].second, reference[j].second))
                    << j << ": " << got[j].second << " against " << reference[j].second;
            }
        }
    }
}

} // namespace
