// The host's object, as a plug-in sees it. The plug-in receives a pointer
// through IfPlugin::setPluginHost and never owns it. The order of the
// operations is the binary contract with the host.
#pragma once

#include "zlrbase_values.h"

#include <cstdint>

namespace zlr {

class IfHost {
public:
    // A new value of `type` with one reference for the caller, or null.
    // Called on any plug-in thread.
    virtual IfValue* createValue(std::uint32_t type) = 0;

    // Sends a message and waits for its answer; 0 is success. A result
    // object, when the message has one, is stored through `result` with one
    // reference for the caller. `value` stays the caller's.
    virtual std::uint64_t messageSync(std::uint32_t id, std::uint64_t key, IfValue* value,
                                      IfValue** result) = 0;

    // Sends `size` bytes at `data` and waits; the bytes stay the caller's.
    virtual std::uint64_t messageSyncData(std::uint32_t id, std::uint64_t key, const void* data,
                                          std::uint64_t size, IfValue** result) = 0;

    // Queues a message; the answer means nothing to plug-ins.
    virtual std::uint64_t messageAsync(std::uint32_t id, std::uint64_t key, IfValue* value) = 0;

    // A value of the host's value tree with one reference for the caller, or
    // null when there is none. The last two arguments are always 0.
    virtual IfValue* queryValue(const char* path, const char* key, std::uint64_t reserved1,
                                std::uint64_t reserved2) = 0;

protected:
    ~IfHost() = default;
};

} // namespace zlr
