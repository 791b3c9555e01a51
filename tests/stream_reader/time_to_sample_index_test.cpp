#include "zlrfw_sample_position.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

using zlr::framework::timeToSampleIndex;

TEST(TimeToSampleIndex, ExactTimesGiveTheirSampleAndAnythingAboveTheNext)
{
    EXPECT_EQ(timeToSampleIndex(0.0, 1000.0), 0u);
    EXPECT_EQ(timeToSampleIndex(-0.0, 1000.0), 0u);
    EXPECT_EQ(timeToSampleIndex(1.0, 1000.0), 1000u);
    // Within the tolerance of a step or two it is still sample 1000.
    EXPECT_EQ(timeToSampleIndex(std::nextafter(1.0, 2.0), 1000.0), 1000u);
    EXPECT_EQ(timeToSampleIndex(1.0 + 1e-9, 1000.0), 1001u);
    EXPECT_EQ(timeToSampleIndex(0.0005, 1000.0), 1u);
    timeToSampleIndex(1e300, 1e300); // beyond 64 bits: no meaning, but no undefined conversion
    timeToSampleIndex(-2.5, 1000.0);

    // k / rate, however it rounds, comes back as k.
    std::mt19937_64 random(7);
    const double rates[] = {1000.0, 44100.0, 48000.0, 10000.0, 3.0, 1e7, 0.1};
    for (double rate : rates) {
        for (int i = 0; i < 2000; ++i) {
            const std::uint64_t k = random() % 100000000 + 1;
            ASSERT_EQ(timeToSampleIndex(double(k) / rate, rate), k) << k << " at " << rate;
        }
    }
}

} // namespace
