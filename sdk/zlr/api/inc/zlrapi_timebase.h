// When a channel's samples occur: the SimpleTimebase and TimebaseWithOffset
// elements.
#pragma once

#include <pugixml.hpp>

#include <cstdint>
#include <limits>

namespace zlr {

struct Timebase {
    enum Type : std::uint32_t {
        TYPE_NONE = 0,
        TYPE_SIMPLE = 1,
        TYPE_WITH_OFFSET = 2,
    };

    std::uint32_t m_type = TYPE_NONE;
    double m_frequency = std::numeric_limits<double>::quiet_NaN();
    double m_offset = 0.0;

    // Two unset frequencies (NaN) count as equal.
    bool operator==(const Timebase& other) const;
};

// Appends the element that fits the type; a type of 0 writes nothing and
// answers false. Doubles go out at 17 significant digits so that they read
// back unchanged.
bool writeTimebase(pugi::xml_node parent, const Timebase& timebase);

// Looks among the children of `parent` for "SimpleTimebase", then for
// "TimebaseWithOffset". Answers true when one with a frequency was found;
// `timebase` is touched only then.
bool readTimebase(pugi::xml_node parent, Timebase& timebase);

} // namespace zlr
