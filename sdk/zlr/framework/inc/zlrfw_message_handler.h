// One receiver of host messages, registered with a PluginBase.
#pragma once

#include "zlrbase_host.h"

#include <cstdint>

namespace zlr::framework {

class IfMessageHandler {
public:
    // Offered every message the plug-in itself did not take, on the host's
    // thread. Answers all bits set when the message is not for this handler.
    virtual std::uint64_t pluginMessage(std::uint64_t id, std::uint64_t key, IfValue* value,
                                        IfValue** result) = 0;
    // Learns the host; the host stays the owner.
    virtual void setPluginHost(IfHost* /*host*/) {}
    virtual ~IfMessageHandler() = default;
};

} // namespace zlr::framework
