// One message as the simulated host received it from the plug-in, and
// what an observer of the whole conversation hears of each message.
#pragma once

#include <cstdint>
#include <functional>
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

enum class MessageDirection { host_to_plugin, plugin_to_host };

// One message of either direction once it has been answered. A message sent
// while another is open (the plug-in's data request inside a process step)
// ends first, so `sequence` tells the order in which the calls began.
struct ObservedMessage {
    MessageDirection direction = MessageDirection::host_to_plugin;
    std::uint64_t sequence = 0; // from 1, in the order the calls began
    unsigned depth = 0;         // calls still open around this one
    const MessageRecord* message = nullptr; // the call, its value and its answer
    const MessageRecord* result = nullptr;  // what the result object held; null: none came back
};

using MessageObserver = std::function<void(const ObservedMessage&)>;

} // namespace zelvar_sim
