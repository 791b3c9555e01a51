#include "sim_host.h"

#include "sim_host_service.h"
#include "sim_values.h"
#include "zlrapi_utils.h"
#include "zlrbase_messages.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

namespace zelvar_sim {

void describeValue(zlr::IfValue* value, MessageRecord& record)
{
    if (!value) {
        return;
    }
    record.value_type = value->getType();
    switch (record.value_type) {
    case zlr::VALUE_TYPE_UINT64:
        record.number = static_cast<UInt64Value*>(value)->value();
        break;
    case zlr::VALUE_TYPE_BOOLEAN:
        record.number = static_cast<zlr::IfBooleanValue*>(value)->get() ? 1 : 0;
        break;
    case zlr::VALUE_TYPE_SCALAR: {
        auto* scalar = static_cast<zlr::IfScalarValue*>(value);
        const char* unit = scalar->getUnit();
        char number[32];
        const auto written = std::to_chars(number, number + sizeof number, scalar->getValue());
        record.text = std::string(number, written.ptr) + (unit && *unit ? " " : "") +
                      (unit ? unit : "");
        break;
    }
    case zlr::VALUE_TYPE_ERROR: {
        auto* error = static_cast<ErrorValue*>(value);
        const char* text = error->getText();
        record.number = error->code();
        record.text = text ? text : "";
        break;
    }
    case zlr::VALUE_TYPE_DATA_BLOCK_LIST:
        record.number = static_cast<std::uint64_t>(
            std::max(0, static_cast<zlr::IfDataBlockList*>(value)->getBlockCount()));
        break;
    default:
        record.text = valueText(value);
    }
}

SimHost::SimHost() = default;

SimHost::~SimHost()
{
    m_tree.clear();
}

void SimHost::setIdentity(const std::string& name, const std::string& version)
{
    m_tree.setString(zlr::tree::PLUGIN_HOST, zlr::tree::NAME, name);
    m_tree.setString(zlr::tree::PLUGIN_HOST, zlr::tree::VERSION_STRING, version);
}

std::int64_t SimHost::valuesOutsideTree() const
{
    return m_ledger.live() - static_cast<std::int64_t>(m_tree.size());
}

void SimHost::setResponder(std::uint32_t id, Responder responder)
{
    std::lock_guard lock(m_mutex);
    m_responders[id] = std::move(responder);
}

void SimHost::addService(std::shared_ptr<HostService> service)
{
    std::lock_guard lock(m_mutex);
    m_services.push_back(std::move(service));
}

void SimHost::recordFault(std::uint32_t message_id, std::string reason, std::string telegram)
{
    std::lock_guard lock(m_mutex);
    m_faults.push_back(ProtocolFault{message_id, std::move(reason), std::move(telegram)});
}

std::vector<ProtocolFault> SimHost::faults() const
{
    std::lock_guard lock(m_mutex);
    return m_faults;
}

void SimHost::clearFaults()
{
    std::lock_guard lock(m_mutex);
    m_faults.clear();
}

std::vector<ValueQuery> SimHost::queries() const
{
    std::lock_guard lock(m_mutex);
    return {m_queries.begin(), m_queries.end()};
}

void SimHost::clearQueries()
{
    std::lock_guard lock(m_mutex);
    m_queries.clear();
}

void SimHost::limitMessageLog(std::size_t most_recent)
{
    std::lock_guard lock(m_mutex);
    m_message_log_limit = most_recent;
    while (m_messages.size() > m_message_log_limit) {
        m_messages.pop_front();
    }
    while (m_queries.size() > m_message_log_limit) {
        m_queries.pop_front();
    }
}

void SimHost::setObserver(MessageObserver observer)
{
    m_observer = std::move(observer);
}

SimHost::CallStamp SimHost::beginCall()
{
    return CallStamp{++m_calls_begun, m_open_calls++};
}

void SimHost::endCall(const CallStamp& stamp, MessageDirection direction,
                      const MessageRecord& message, zlr::IfValue* result)
{
    --m_open_calls;
    if (!m_observer) {
        return;
    }
    MessageRecord result_record;
    describeValue(result, result_record);
    m_observer(ObservedMessage{direction, stamp.sequence, stamp.depth, &message,
                               result ? &result_record : nullptr});
}

std::vector<MessageRecord> SimHost::messages() const
{
    std::lock_guard lock(m_mutex);
    return {m_messages.begin(), m_messages.end()};
}

std::vector<MessageRecord> SimHost::messagesWithId(std::uint32_t id) const
{
    std::lock_guard lock(m_mutex);
    std::vector<MessageRecord> matching;
    for (const MessageRecord& record : m_messages) {
        if (record.id == id) {
            matching.push_back(record);
        }
    }
    return matching;
}

void SimHost::clearMessages()
{
    std::lock_guard lock(m_mutex);
    m_messages.clear();
}

zlr::IfValue* SimHost::createValue(std::uint32_t type)
{
    return makeValue(m_ledger, type);
}

std::uint64_t SimHost::deliver(MessageRecord record, zlr::IfValue** result)
{
    const CallStamp stamp = beginCall();
    Responder responder;
    {
        std::lock_guard lock(m_mutex);
        const auto found = m_responders.find(record.id);
        if (found != m_responders.end()) {
            responder = found->second;
        }
    }
    record.wants_result = result != nullptr;
    // A responder or a service may call back into the plug-in, so they run
    // unlocked; services are only added while no plug-in talks.
    if (responder) {
        record.answer = responder(record, result);
    } else {
        record.answer = zlr::RESULT_OK;
        for (const auto& service : m_services) {
            std::uint64_t answer = zlr::RESULT_OK;
            if (service->handleMessage(record, result, answer)) {
                record.answer = answer;
                break;
            }
        }
    }
    endCall(stamp, MessageDirection::plugin_to_host, record, result ? *result : nullptr);
    const std::uint64_t answer = record.answer;
    std::lock_guard lock(m_mutex);
    if (m_message_log_limit > 0) {
        if (m_messages.size() == m_message_log_limit) {
            m_messages.pop_front();
        }
        m_messages.push_back(std::move(record));
    }
    return answer;
}

std::uint64_t SimHost::messageSync(std::uint32_t id, std::uint64_t key, zlr::IfValue* value,
                                   zlr::IfValue** result)
{
    MessageRecord record;
    record.kind = CallKind::sync;
    record.id = id;
    record.key = key;
    describeValue(value, record);
    return deliver(std::move(record), result);
}

std::uint64_t SimHost::messageSyncData(std::uint32_t id, std::uint64_t key, const void* data,
                                       std::uint64_t size, zlr::IfValue** result)
{
    MessageRecord record;
    record.kind = CallKind::sync_data;
    record.id = id;
    record.key = key;
    const auto* bytes = static_cast<const unsigned char*>(data);
    if (bytes && size) {
        record.bytes.assign(bytes, bytes + size);
        // Telegrams arrive with their terminator counted; the text leaves it out.
        std::size_t text_size = record.bytes.size();
        if (text_size && record.bytes.back() == 0) {
            --text_size;
        }
        record.text.assign(reinterpret_cast<const char*>(bytes), text_size);
    }
    return deliver(std::move(record), result);
}

std::uint64_t SimHost::messageAsync(std::uint32_t id, std::uint64_t key, zlr::IfValue* value)
{
    MessageRecord record;
    record.kind = CallKind::async;
    record.id = id;
    record.key = key;
    describeValue(value, record);
    return deliver(std::move(record), nullptr);
}

zlr::IfValue* SimHost::queryValue(const char* path, const char* key, std::uint64_t,
                                  std::uint64_t)
{
    zlr::IfValue* value = path && key ? m_tree.query(path, key) : nullptr;
    std::lock_guard lock(m_mutex);
    if (m_message_log_limit > 0) {
        if (m_queries.size() == m_message_log_limit) {
            m_queries.pop_front();
        }
        m_queries.push_back(ValueQuery{path ? path : "", key ? key : "", value != nullptr});
    }
    return value;
}

std::string messageName(std::uint32_t id)
{
    switch (id) {
#define ZELVAR_SIM_NAME(message)                                                                 \
    case zlr::message:                                                                           \
        return #message;
        ZELVAR_SIM_NAME(HOST_ADD_TRANSLATION)
        ZELVAR_SIM_NAME(HOST_UPDATE_CHANNELS)
        ZELVAR_SIM_NAME(HOST_UPDATE_CONFIG)
        ZELVAR_SIM_NAME(HOST_WRITE_SAMPLES)
        ZELVAR_SIM_NAME(HOST_ADD_TASK)
        ZELVAR_SIM_NAME(HOST_REMOVE_TASK)
        ZELVAR_SIM_NAME(HOST_REGISTER_SOFTWARE_CHANNEL)
        ZELVAR_SIM_NAME(HOST_UNREGISTER_SOFTWARE_CHANNEL)
        ZELVAR_SIM_NAME(HOST_REREGISTER_SOFTWARE_CHANNEL)
        ZELVAR_SIM_NAME(HOST_DATA_SET_REGISTER)
        ZELVAR_SIM_NAME(HOST_DATA_SET_UNREGISTER)
        ZELVAR_SIM_NAME(HOST_DATA_REQUEST)
        ZELVAR_SIM_NAME(HOST_DATA_REGIONS_REQUEST)
        ZELVAR_SIM_NAME(HOST_DATA_STREAM_START)
        ZELVAR_SIM_NAME(HOST_DATA_STREAM_STOP)
        ZELVAR_SIM_NAME(PLUGIN_INIT)
        ZELVAR_SIM_NAME(PLUGIN_FINISH)
        ZELVAR_SIM_NAME(PLUGIN_EVENT)
        ZELVAR_SIM_NAME(PLUGIN_CUSTOM_REQUEST)
        ZELVAR_SIM_NAME(PLUGIN_CHANNELS_CHECK)
        ZELVAR_SIM_NAME(PLUGIN_CONFIG_UPDATE)
        ZELVAR_SIM_NAME(PLUGIN_CONFIG_RESTORE)
        ZELVAR_SIM_NAME(PLUGIN_CONFIG_CLEAR)
        ZELVAR_SIM_NAME(PLUGIN_CONFIG_APPLIED)
        ZELVAR_SIM_NAME(PLUGIN_CHANNEL_IDS_MAPPED)
        ZELVAR_SIM_NAME(PLUGIN_CHANNEL_DATA_FORMAT)
        ZELVAR_SIM_NAME(PLUGIN_CHANNEL_CONFIG_CHANGED)
        ZELVAR_SIM_NAME(PLUGIN_CHANNEL_STATUS)
        ZELVAR_SIM_NAME(PLUGIN_TASK_PROCESS)
        ZELVAR_SIM_NAME(PLUGIN_TASK_INIT_TIMEBASES)
        ZELVAR_SIM_NAME(PLUGIN_TASK_PREPARE_PROCESSING)
        ZELVAR_SIM_NAME(PLUGIN_TASK_STOP_PROCESSING)
        ZELVAR_SIM_NAME(PLUGIN_SOFTWARE_CHANNEL_CREATE)
        ZELVAR_SIM_NAME(PLUGIN_SOFTWARE_CHANNEL_QUERY_ACTION)
        ZELVAR_SIM_NAME(PLUGIN_SOFTWARE_CHANNEL_HAS_INSTANCES)
#undef ZELVAR_SIM_NAME
    default: {
        char text[16];
        std::snprintf(text, sizeof text, "0x%X", id);
        return text;
    }
    }
}

} // namespace zelvar_sim
