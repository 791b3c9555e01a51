// Deep comparison of two properties for tests: Property::operator== only
// notes whether a structured value is present, this looks inside, and
// compares doubles bit for bit.
#pragma once

#include "zlrapi_property.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <string>

namespace zlr::test {

inline ::testing::AssertionResult sameBits(double a, double b, const std::string& where)
{
    if (std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b)) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << where << ": " << numberText(a) << " vs "
                                         << numberText(b);
}

inline ::testing::AssertionResult sameProperty(const Property& a, const Property& b);

inline ::testing::AssertionResult samePropertyList(const PropertyList& a, const PropertyList& b)
{
    if (a.size() != b.size()) {
        return ::testing::AssertionFailure() << "list sizes " << a.size() << " vs " << b.size();
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (auto result = sameProperty(a[i], b[i]); !result) {
            return result << " (list item " << i << ")";
        }
    }
    return ::testing::AssertionSuccess();
}

inline ::testing::AssertionResult sameProperty(const Property& a, const Property& b)
{
    if (!(a == b)) {
        return ::testing::AssertionFailure()
               << "shallow: '" << a.getName() << "' type " << a.getType() << " detail '"
               << a.getTypeDetail() << "' vs '" << b.getName() << "' type " << b.getType()
               << " detail '" << b.getTypeDetail() << "'";
    }
    const auto fail = [&]() {
        return ::testing::AssertionFailure() << "property '" << a.getName() << "' type "
                                             << a.getType() << ": ";
    };
    switch (a.getType()) {
    case Property::RANGE_VALUE: {
        const Range x = a.getRangeValue(), y = b.getRangeValue();
        if (!sameBits(x.m_min, y.m_min, "min") || !sameBits(x.m_max, y.m_max, "max") ||
            x.m_min_unit != y.m_min_unit || x.m_max_unit != y.m_max_unit) {
            return fail() << "ranges differ";
        }
        break;
    }
    case Property::SCALAR_VALUE: {
        const Scalar x = a.getScalarValue(), y = b.getScalarValue();
        if (!sameBits(x.m_val, y.m_val, "value") || x.m_unit != y.m_unit) {
            return fail() << "scalars differ";
        }
        break;
    }
    case Property::RATIONAL_VALUE: {
        const Rational x = a.getRationalValue(), y = b.getRationalValue();
        if (x.m_numerator != y.m_numerator || x.m_denominator != y.m_denominator ||
            x.m_unit != y.m_unit) {
            return fail() << "rationals differ";
        }
        break;
    }
    case Property::DECORATED_NUMBER: {
        const DecoratedNumber x = a.getDecoratedNumberValue(), y = b.getDecoratedNumberValue();
        if (!sameBits(x.m_val, y.m_val, "value") || x.m_prefix != y.m_prefix ||
            x.m_suffix != y.m_suffix) {
            return fail() << "decorated numbers differ";
        }
        break;
    }
    case Property::POINT: {
        const Point x = a.getPointValue(), y = b.getPointValue();
        if (!sameBits(x.first, y.first, "x") || !sameBits(x.second, y.second, "y")) {
            return fail() << "points differ";
        }
        break;
    }
    case Property::DOUBLE_LIST_VALUE: {
        const auto x = a.getDoubleListValue(), y = b.getDoubleListValue();
        if (x.size() != y.size()) return fail() << "double list sizes differ";
        for (std::size_t i = 0; i < x.size(); ++i) {
            if (!sameBits(x[i], y[i], "item")) return fail() << "double item " << i;
        }
        break;
    }
    case Property::STRING_LIST_VALUE:
        if (a.getStringListValue() != b.getStringListValue()) {
            return fail() << "string lists differ";
        }
        break;
    case Property::POINT_LIST_VALUE: {
        const auto x = a.getPointListValue(), y = b.getPointListValue();
        if (x.size() != y.size()) return fail() << "point list sizes differ";
        for (std::size_t i = 0; i < x.size(); ++i) {
            if (!sameBits(x[i].first, y[i].first, "x") || !sameBits(x[i].second, y[i].second, "y")) {
                return fail() << "point " << i;
            }
        }
        break;
    }
    case Property::CHANNEL_ID_LIST:
        if (a.getChannelIDListValue() != b.getChannelIDListValue()) {
            return fail() << "channel id lists differ";
        }
        break;
    case Property::PROPERTY_LIST_VALUE:
        return samePropertyList(a.getPropertyListValue(), b.getPropertyListValue());
    default:
        break;
    }
    return ::testing::AssertionSuccess();
}

} // namespace zlr::test
