// The fast "%.17g" printer against the C library's own, on the numbers that
// take the short way and on those that leave it.
#include "zlr_random.h"
#include "zlrapi_seventeen_digits.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdio>
#include <functional>
#include <string>

namespace zlr {
namespace {

std::string printed(double magnitude)
{
    char text[SEVENTEEN_DIGITS_ROOM];
    return std::string(text, printSeventeenDigits(text, magnitude));
}

std::string reference(double magnitude)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.17g", magnitude);
    return text;
}

TEST(SeventeenDigits, PrintsWhatPrintfPrints)
{
    test::Random random(17);
    const auto withExponent = [&](int low, int high) {
        const std::uint64_t fraction = random.bits() & 0x000FFFFFFFFFFFFFULL;
        const auto exponent = static_cast<std::uint64_t>(random.pick(low, high) + 1023);
        return std::bit_cast<double>((exponent << 52) | fraction);
    };
    const struct {
        const char* family;
        std::function<double()> draw;
    } families[] = {
        // Every binary exponent of the short way and a few beyond its ends.
        {"random bits", [&] { return withExponent(-24, 58); }},
        // Times on a block grid, as the host writes them.
        {"grid times", [&] { return static_cast<double>(random.pick(0, 400000000)) / 48000.0; }},
        {"decimal steps", [&] { return static_cast<double>(random.pick(1, 3600000)) * 0.001; }},
        // 16 whole digits and a quarter: the 18th digit is a 5 with nothing
        // after it, so the 17th rounds half to even.
        {"exact ties",
         [&] { return static_cast<double>(random.pick(1LL << 50, 1LL << 51)) / 4.0; }},
        {"anything", [&] { return std::fabs(random.finite()); }},
    };
    for (const auto& family : families) {
        for (int i = 0; i < 100000; ++i) {
            const double value = family.draw();
            ASSERT_EQ(printed(value), reference(value)) << family.family << " " << i;
        }
    }
    for (const double edge : {0.0, 1.0, 0.1, 0.5, 1e-4, 9.9999999999999995e-5, 1e-5, 0x1p-19,
                              0x1.fffffffffffffp-20, 0x1p52, 0x1.fffffffffffffp52, 0x1p53, 1e16,
                              9.9999999999999998e15, 999999.99999999998, 4.9406564584124654e-324}) {
        EXPECT_EQ(printed(edge), reference(edge)) << edge;
    }
}

} // namespace
} // namespace zlr
