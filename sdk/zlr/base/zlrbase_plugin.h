// What the host holds of a plug-in, and the id of the binary contract.
#pragma once

#include "zlrbase_host.h"

#include <cstdint>
#include <cstring>
#include <string>

namespace zlr {

// Sixteen bytes that name the version of the contract between host and
// plug-in; the two sides compare them as two unsigned 64-bit words.
struct PluginInterfaceId {
    unsigned char bytes[16];
};
static_assert(sizeof(PluginInterfaceId) == 16);

inline bool sameInterfaceId(const PluginInterfaceId& a, const PluginInterfaceId& b)
{
    std::uint64_t wa[2];
    std::uint64_t wb[2];
    std::memcpy(wa, a.bytes, sizeof wa);
    std::memcpy(wb, b.bytes, sizeof wb);
    return wa[0] == wb[0] && wa[1] == wb[1];
}

// The plug-in object. The host creates it through zvCreatePlugin, calls the
// first two operations from its own threads, one message at a time, and
// destroys it through zvDeletePlugin. The order of the operations is part of
// the contract.
class IfPlugin {
public:
    // Called by the host once, before any message. The host stays the owner.
    virtual void setPluginHost(IfHost* host) = 0;

    // Every message of the host arrives here. `result`, when not null,
    // receives a value with one reference that the host then owns. Answers
    // a result code; all bits set means "not handled".
    virtual std::uint64_t pluginMessage(std::uint64_t id, std::uint64_t key, IfValue* value,
                                        IfValue** result) = 0;

    // The plug-in's own first look at a message; true when it took it, with
    // its answer in `answer`.
    virtual bool handleMessage(std::uint64_t id, std::uint64_t key, IfValue* value,
                               IfValue** result, std::uint64_t& answer) = 0;

    // Runs at PLUGIN_INIT: answers 0 or an error code, optionally with a text.
    virtual std::uint64_t init(std::string& error_text) = 0;

    // Runs at PLUGIN_FINISH.
    virtual bool deinit() = 0;

    virtual ~IfPlugin() = default;
};

} // namespace zlr
