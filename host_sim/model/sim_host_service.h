// One concern of the simulated host (its channel tree, its tasks, its data
// sets, ...): the handler of the HOST_* messages that concern it, the way a
// plug-in registers its message handlers with the plug-in base.
#pragma once

#include "sim_message_record.h"
#include "zlrbase_values.h"

#include <cstdint>
#include <iosfwd>

namespace zelvar_sim {

class HostService {
public:
    virtual ~HostService() = default;

    // Offered every message the plug-in sends that no test responder took,
    // on the plug-in's calling thread. Answers false when the message is not
    // for this service; otherwise sets `answer` and, when `result` is not
    // null, may store one reference of a result object there.
    virtual bool handleMessage(const MessageRecord& message, zlr::IfValue** result,
                               std::uint64_t& answer) = 0;

    // Writes a readable account of what the service holds, for a test that
    // failed and for the command line.
    virtual void describe(std::ostream& /*out*/) const {}
};

} // namespace zelvar_sim
