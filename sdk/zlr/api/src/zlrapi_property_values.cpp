#include "zlrapi_property_values.h"

namespace zlr {
namespace {

// The remainder, without the one overflowing case of the smallest value
// divided by -1 (whose remainder is 0 anyway).
std::int64_t remainder(std::int64_t a, std::int64_t b)
{
    return b == -1 ? 0 : a % b;
}

// Euclid on signed values as they stand: the sign of the result follows the
// operands, and a zero second operand gives the first.
std::int64_t greatestCommonDivisor(std::int64_t a, std::int64_t b)
{
    while (b != 0) {
        const std::int64_t next = remainder(a, b);
        a = b;
        b = next;
    }
    return a;
}

} // namespace

Range::Range(double min, double max, const std::string& unit)
    : m_min(min), m_max(max), m_min_unit(unit), m_max_unit(unit)
{
}

Range::Range(double min, double max, const std::string& min_unit, const std::string& max_unit)
    : m_min(min), m_max(max), m_min_unit(min_unit), m_max_unit(max_unit)
{
}

bool Range::operator==(const Range& other) const
{
    return m_min == other.m_min && m_max == other.m_max && m_min_unit == other.m_min_unit &&
           m_max_unit == other.m_max_unit;
}

bool Scalar::operator==(const Scalar& other) const
{
    return m_val == other.m_val && m_unit == other.m_unit;
}

Rational::Rational(std::int64_t numerator, std::int64_t denominator, const std::string& unit)
    : m_numerator(numerator), m_denominator(denominator), m_unit(unit)
{
    // With a zero denominator the divisor is the numerator itself. A negative
    // divisor leaves the pair as given.
    const std::int64_t divisor = greatestCommonDivisor(m_numerator, m_denominator);
    if (divisor > 1) {
        m_numerator /= divisor;
        m_denominator /= divisor;
    }
}

} // namespace zlr
