// The simulated Zelvar host: it implements the host object that a plug-in
// talks to, keeps the value tree, records every message the plug-in sends
// (with a copy of its text or bytes) and answers each one the way the host
// would, or as a test configured it.
#pragma once

#include "sim_message_record.h"
#include "sim_value_ledger.h"
#include "sim_value_tree.h"
#include "zlrbase_host.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace zelvar_sim {

class HostService;

// A message the host refused because it could not read it or because it did
// not fit what the host knows; the plug-in never sees more than the answer.
struct ProtocolFault {
    std::uint32_t message_id = 0;
    std::string reason;
    std::string telegram;
};

// One queryValue of the plug-in: what it asked for and whether the tree had it.
struct ValueQuery {
    std::string path;
    std::string key;
    bool found = false;
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

    // Every later message `id` is answered by `responder`, ahead of any
    // service: the test's override.
    void setResponder(std::uint32_t id, Responder responder);

    // Adds a concern of the host model; services are asked in the order of
    // adding, and a message none of them takes is answered 0.
    void addService(std::shared_ptr<HostService> service);
    const std::vector<std::shared_ptr<HostService>>& services() const { return m_services; }

    // Records a refusal of the host; a strict run fails on any it did not expect.
    void recordFault(std::uint32_t message_id, std::string reason, std::string telegram);
    std::vector<ProtocolFault> faults() const;
    void clearFaults();

    ValueTree& tree() { return m_tree; }
    ValueLedger& ledger() { return m_ledger; }

    // Values alive beyond those the tree holds: what a plug-in still holds or
    // leaked. Zero once a plug-in has given every reference back.
    std::int64_t valuesOutsideTree() const;

    // Every queryValue so far, in order.
    std::vector<ValueQuery> queries() const;
    void clearQueries();

    // The message log keeps the latest `most_recent` messages of the
    // plug-in, and the log of value queries as many queries; a run over a
    // long recording keeps none, since every sample block it writes and
    // every clock reading would stay in memory. Tests keep them all (the
    // default).
    static constexpr std::size_t KEEP_EVERY_MESSAGE = std::numeric_limits<std::size_t>::max();
    void limitMessageLog(std::size_t most_recent);

    // Hears every message of both directions as it ends: the plug-in's, and
    // the host's that go through PluginSession. Set it before the session
    // starts to hear PLUGIN_INIT; messages reach it one at a time.
    void setObserver(MessageObserver observer);
    bool observed() const { return static_cast<bool>(m_observer); }

    // For the sending side of the host: numbers a call as it begins, and
    // tells the observer of it, with its result object, once it has ended.
    struct CallStamp {
        std::uint64_t sequence = 0;
        unsigned depth = 0;
    };
    CallStamp beginCall();
    void endCall(const CallStamp& stamp, MessageDirection direction, const MessageRecord& message,
                 zlr::IfValue* result);

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
    std::deque<MessageRecord> m_messages;
    std::size_t m_message_log_limit = KEEP_EVERY_MESSAGE;
    std::map<std::uint32_t, Responder> m_responders;
    std::vector<std::shared_ptr<HostService>> m_services;
    std::vector<ProtocolFault> m_faults;
    std::deque<ValueQuery> m_queries;
    MessageObserver m_observer;
    std::uint64_t m_calls_begun = 0;
    unsigned m_open_calls = 0;
};

// Copies what `value` carries into `record`: its type, and its text, number,
// flag or block count; nothing for a null value.
void describeValue(zlr::IfValue* value, MessageRecord& record);

// The name of a message number of either direction, for printing
// ("HOST_ADD_TASK", "PLUGIN_INIT", ...), or its
// number in hexadecimal when it has none.
std::string messageName(std::uint32_t id);

} // namespace zelvar_sim
