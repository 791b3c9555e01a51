// The structured values that a Property can hold.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace zlr {

struct Range {
    Range() = default;
    // One unit for both ends.
    Range(double min, double max, const std::string& unit);
    Range(double min, double max, const std::string& min_unit, const std::string& max_unit);

    bool operator==(const Range& other) const;

    double m_min = 0.0;
    double m_max = 0.0;
    std::string m_min_unit;
    std::string m_max_unit;
};

struct Scalar {
    Scalar() = default;
    Scalar(double val, const std::string& unit) : m_val(val), m_unit(unit) {}

    bool operator==(const Scalar& other) const;

    double m_val = 0.0;
    std::string m_unit;
};

struct Rational {
    Rational() = default;
    // Reduced by the greatest common divisor, see the source for the cases
    // that stay as given.
    Rational(std::int64_t numerator, std::int64_t denominator, const std::string& unit = {});

    std::int64_t m_numerator = 0;
    std::int64_t m_denominator = 0;
    std::string m_unit;

    bool operator==(const Rational&) const = default;
};

struct DecoratedNumber {
    DecoratedNumber() = default;
    DecoratedNumber(double val, const std::string& prefix, const std::string& suffix)
        : m_val(val), m_prefix(prefix), m_suffix(suffix)
    {
    }

    double m_val = 0.0;
    std::string m_prefix;
    std::string m_suffix;

    bool operator==(const DecoratedNumber&) const = default;
};

template <typename T>
struct ValueList {
    std::vector<T> m_values;

    bool operator==(const ValueList&) const = default;
};

using Point = std::pair<double, double>;

} // namespace zlr
