// A point of host time: ticks of the host's master clock and the clock's rate.
#pragma once

#include <pugixml.hpp>

#include <cstddef>
#include <cstdint>

namespace zlr {

struct Timestamp {
    std::uint64_t ticks = 0;
    double frequency = 0.0; // ticks per second

    // Nothing but the rate is checked: a clock at tick 0 is a valid time.
    bool isValid() const { return frequency > 0.0; }

    bool operator==(const Timestamp&) const = default;
};

// Reads an element with the attributes "ticks" (automatic base) and
// "frequency". From the start it leaves 0 ticks at -1.0 Hz behind, so that a
// failed read is an invalid time; a number that does not convert answers
// false and keeps what was read before it.
bool readTimestampElement(pugi::xml_node element, Timestamp& timestamp);

// The same for a document whose element carries the two attributes. An empty
// text answers false and leaves `timestamp` untouched.
bool parseTimestamp(const char* text, std::size_t length, Timestamp& timestamp);

} // namespace zlr
