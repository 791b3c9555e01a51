// The value of PLUGIN_TASK_PROCESS: the span of host time that one
// processing step covers.
#pragma once

#include "zlrapi_timestamp.h"

#include <cstddef>

namespace zlr {

struct ProcessWindowTelegram {
    Timestamp m_start;
    Timestamp m_end;

    // Any root of version 1.0 with "Start" and "End" children. A missing
    // child leaves its Timestamp at the default; one that does not read
    // leaves an invalid Timestamp and answers false.
    bool parse(const char* text, std::size_t length);

    bool operator==(const ProcessWindowTelegram&) const = default;
};

} // namespace zlr
