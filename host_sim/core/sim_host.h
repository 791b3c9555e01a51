// The simulated Zelvar host: it implements the host object that a plug-in
// talks to, keeps the value tree, records every message the plug-in sends
// (with a copy of its text or bytes) and answers each one the way the host
// would, or as a test configured it.
#pragma once

#include "sim_value_ledger.h"
#include "sim_value_tree.h"
#include "zlrbase_host.h"

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
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

class SimHost : public zlr::IfHost {
public:
    // Answers one message; may store a result object (one reference for the
    // plug-in) through `result` when it is not null.
    using Responder = std::function<std::uint64_t(const MessageRecord& message,
                                                  zlr::IfValue** result)>;

    SimHost();
    SimHost(const SimHost&) = delete;
    SimHost& operator=(const SimHost&) = delete;
    ~SimHost();

    // Fills "#PluginHost" with a name and a version, as the real host does.
    void setIdentity(const std::string& name, const std::string& version);

    // Every later message `id` is answered by `responder` instead of 0.
    void setResponder(std::uint32_t id, Responder responder);

    ValueTree& tree() { return m_tree; }
    ValueLedger& ledger() { return m_ledger; }

    // Values alive beyond those the tree holds: what a plug-in still holds or
    // leaked. Zero once a plug-in has given every reference back.
    std::int64_t valuesOutsideTree() const;

    std::vector<MessageRecord> messages() const;
    std::vector<MessageRecord> messagesWithId(std::uint32_t id) const;
    void clearMessages();

    // The host object's operations.
    zlr::IfValue* createValue(std::uint32_t type) override;
    std::uint64_t messageSync(std::uint32_t id, std::uint64_t key, zlr::IfValue* value,
                              zlr::IfValue** result) override;
    std::uint64_t messageSyncData(std::uint32_t id, std::uint64_t key, const void* data,
                                  std::uint64_t size, zlr::IfValue** result) override;
    std::uint64_t messageAsync(std::uint32_t id, std::uint64_t key, zlr::IfValue* value) override;
    zlr::IfValue* queryValue(const char* path, const char* key, std::uint64_t reserved1,
                             std::uint64_t reserved2) override;

private:
    std::uint64_t deliver(MessageRecord record, zlr::IfValue** result);

    ValueLedger m_ledger;
    ValueTree m_tree{m_ledger};
    mutable std::mutex m_mutex;
    std::vector<MessageRecord> m_messages;
    std::map<std::uint32_t, Responder> m_responders;
};

// The name of a message number, for printing ("HOST_ADD_TASK", ...), or its
// number in hexadecimal when it has none.
std::string messageName(std::uint32_t id);

} // namespace zelvar_sim
