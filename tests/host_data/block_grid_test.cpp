// The grid that cuts host time into blocks, over random origins, durations,
// ends and clock rates: boundaries rise, begin at the origin, end at the end,
// lie on whole ticks in between, and blocks end in order as time goes on.
#include "sim_data_sets.h"

#include <gtest/gtest.h>

#include <random>

namespace {

TEST(BlockGrid, BoundariesRiseOnWholeTicksFromOriginToEnd)
{
    std::mt19937_64 random(20261123);
    std::uniform_real_distribution<double> seconds(0.0, 3.0);
    std::uniform_real_distribution<double> durations(1e-5, 0.5);
    const double frequencies[] = {1e3, 44100.0, 1e6, 1e9};
    for (int round = 0; round < 400; ++round) {
        const double frequency = frequencies[round % 4];
        // Origins come from ticks, as the plug-in's windows do.
        const double origin = std::floor(seconds(random) * frequency) / frequency;
        const double end = origin + seconds(random) * (round % 7 == 0 ? 0.0 : 1.0);
        const double duration = durations(random);
        const zelvar_sim::BlockGrid grid(origin, duration, end, frequency);
        SCOPED_TRACE(::testing::Message() << "origin " << origin << ", duration " << duration
                                          << ", end " << end << ", " << frequency << " Hz");
        const std::uint64_t count = grid.blockCount();
        if (!(end > origin)) {
            EXPECT_EQ(count, 0u);
            continue;
        }
        ASSERT_GE(count, 1u);
        ASSERT_LE(count, static_cast<std::uint64_t>((end - origin) * frequency) + 1);
        EXPECT_EQ(grid.boundary(0), origin);
        EXPECT_EQ(grid.boundary(count), end);
        EXPECT_LT(grid.boundary(count - 1), end);
        for (std::uint64_t k = 0; k < count; ++k) {
            ASSERT_LT(grid.boundary(k), grid.boundary(k + 1)) << "block " << k;
            if (k > 0) {
                EXPECT_EQ(static_cast<double>(grid.boundaryTicks(k)) / frequency, grid.boundary(k));
            }
        }
        std::uint64_t ended = 0;
        for (double now = origin - 0.1; now < end + 0.2; now += duration / 3) {
            const std::uint64_t now_ended = grid.blocksEndedBy(now);
            ASSERT_GE(now_ended, ended);
            ASSERT_LE(now_ended, count);
            if (now_ended > 0) {
                EXPECT_LE(grid.boundary(now_ended), now);
            }
            if (now_ended < count) {
                EXPECT_GT(grid.boundary(now_ended + 1), now);
            }
            ended = now_ended;
        }
        EXPECT_EQ(ended, count);
    }
}

} // namespace
