// zelvar-sim's --trace: the conversation between host and plug-in written as
// a protocol analyser shows it, one message a line in the order the calls
// began, each with its answer:
//
//   7  host->plug-in   PLUGIN_TASK_PROCESS (0x3000701)  key 1  answer 0  xml[88] "<Start>..."
//   8    plug-in->host HOST_DATA_REQUEST (0x2000602)  key 0  answer 0  xml[120] "..."  result blocks 3
//
// Calls made while another one is open are indented under it. Texts stay on
// one line (newlines and quotes escaped); binary data shows its size and
// first bytes in hexadecimal.
#pragma once

#include "sim_message_record.h"

#include <cstdint>
#include <iosfwd>
#include <map>
#include <string>

namespace zelvar_sim {

class MessageTrace {
public:
    explicit MessageTrace(std::ostream& out) : m_out(out) {}

    // The host's observer: a nested call ends before the one around it, so
    // lines wait until the outermost call has ended and then go out in order.
    void observe(const ObservedMessage& message);

private:
    std::ostream& m_out;
    std::map<std::uint64_t, std::string> m_waiting; // by sequence
};

// One value the way the trace shows it: "-", "xml[12] \"<A/>\"", "uint64 7",
// "bytes[80] 01 00 ...".
std::string traceValueText(const MessageRecord& value);

} // namespace zelvar_sim
