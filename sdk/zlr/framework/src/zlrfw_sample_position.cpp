#include "zlrfw_sample_position.h"

#include <cmath>
#include <limits>

namespace zlr::framework {
namespace {

// Truncation towards zero into 64 bits, defined for every double: values of
// 2^63 and above convert as unsigned, negative ones wrap as signed integers
// do, and what does not fit at all (NaN, beyond 2^64) gives 0.
std::uint64_t truncateToUnsigned(double z)
{
    constexpr double two_to_63 = 9223372036854775808.0;
    if (z >= 0.0 && z < 2.0 * two_to_63) {
        return z < two_to_63 ? static_cast<std::uint64_t>(z)
                             : static_cast<std::uint64_t>(z - two_to_63) + (std::uint64_t{1} << 63);
    }
    if (z < 0.0 && z > -two_to_63) {
        return static_cast<std::uint64_t>(static_cast<std::int64_t>(z));
    }
    return 0;
}

} // namespace

std::uint64_t timeToSampleIndex(double t, double rate)
{
    if (t == 0.0) {
        return 0;
    }
    const double x = std::nextafter(t, 0.0);
    const double y = x * rate;
    const double z = std::nextafter(y, -std::numeric_limits<double>::max());
    return truncateToUnsigned(z) + 1;
}

} // namespace zlr::framework
