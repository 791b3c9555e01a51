// One message as the simulated host received it from the plug-in.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zelvar_sim {

enum class CallKind { sync, sync_data, async };

struct MessageRecord {
    CallKind kind = CallKind::sync;
    std::uint32_t id = 0;
    std::uint64_t key = 0;
    std::uint32_t value_type = 0;     // 0 when the message carried no value
    std::string text;                 // text of a string or XML value, or the bytes as text
    std::vector<unsigned char> bytes; // the bytes of a data message
    std::uint64_t number = 0;         // an unsigned 64-bit value
    bool wants_result = false;        // a result address was given
    std::uint64_t answer = 0;
};

} // namespace zelvar_sim
