#include "zlrapi_property_values.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <numeric>
#include <random>

namespace zlr {
namespace {

TEST(Rational, ReductionTable)
{
    constexpr std::int64_t MIN = std::numeric_limits<std::int64_t>::min();
    const struct {
        std::int64_t numerator, denominator, reduced_numerator, reduced_denominator;
    } cases[] = {
        // Positive fractions are the random test's; here zeros and signs.
        {0, 5, 0, 1},     {0, 0, 0, 0},      {1, 0, 1, 0},
        // A zero denominator: the numerator is the divisor, so 5/0 becomes 1/0.
        {5, 0, 1, 0},     {-5, 0, -5, 0},
        // A negative divisor leaves the pair as given.
        {-4, 8, -4, 8},   {4, -8, 1, -2},    {-4, -8, -4, -8}, {6, -4, 3, -2},
        {MIN, -1, MIN, -1}, {MIN, 2, MIN / 2, 1}, {MIN, MIN, MIN, MIN},
    };
    for (const auto& c : cases) {
        const Rational r(c.numerator, c.denominator, "Hz");
        EXPECT_EQ(r.m_numerator, c.reduced_numerator) << c.numerator << "/" << c.denominator;
        EXPECT_EQ(r.m_denominator, c.reduced_denominator) << c.numerator << "/" << c.denominator;
        EXPECT_EQ(r.m_unit, "Hz");
    }
}

TEST(Rational, PositiveFractionsComeOutInLowestTerms)
{
    std::mt19937_64 random(7);
    std::uniform_int_distribution<std::int64_t> factor(1, 1 << 20);
    for (int i = 0; i < 2000; ++i) {
        const std::int64_t common = factor(random), n = factor(random), d = factor(random);
        const Rational r(n * common, d * common);
        EXPECT_EQ(std::gcd(r.m_numerator, r.m_denominator), 1);
        EXPECT_EQ(static_cast<__int128>(r.m_numerator) * d,
                  static_cast<__int128>(r.m_denominator) * n);
    }
}

} // namespace
} // namespace zlr
