// The enumerations of data set and stream telegrams. Printing never fails:
// a number without a text prints the enumeration's fallback text, so that a
// telegram with a bad value still goes out and the host refuses it.
#pragma once

#include <cstdint>
#include <string>

namespace zlr {

enum DataSetType : std::uint32_t {
    DATA_SET_TYPE_EXACT = 0,
    DATA_SET_TYPE_RELAXED = 1,
};

enum DataSetMode : std::uint32_t {
    DATA_SET_MODE_NORMAL = 0,
    DATA_SET_MODE_SKIP = 1,
    DATA_SET_MODE_AVERAGE = 2,
    DATA_SET_MODE_REDUCED = 3,
};

enum StreamPolicy : std::uint32_t {
    STREAM_POLICY_PUSH = 0,
    STREAM_POLICY_PULL = 1,
};

enum StreamType : std::uint32_t {
    STREAM_TYPE_RAW = 0,
    STREAM_TYPE_SCALED = 1,
};

std::string toText(DataSetType value);
std::string toText(DataSetMode value);
std::string toText(StreamPolicy value);
std::string toText(StreamType value);

// Text to value; false for a text without a value (fallback texts included).
bool fromText(const std::string& text, DataSetType& value);
bool fromText(const std::string& text, DataSetMode& value);
bool fromText(const std::string& text, StreamPolicy& value);
bool fromText(const std::string& text, StreamType& value);

} // namespace zlr
