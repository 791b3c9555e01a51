#include "sim_tasks.h"

#include "sim_data_set_readers.h"
#include "zlrbase_messages.h"

#include <algorithm>
#include <ostream>

namespace zelvar_sim {
namespace {

void printIds(std::ostream& out, const std::vector<std::uint64_t>& ids)
{
    for (std::size_t i = 0; i < ids.size(); ++i) {
        out << (i ? ", " : "") << ids[i];
    }
}

} // namespace

TaskRegistry::TaskRegistry(SimHost& host, std::shared_ptr<const InputChannels> inputs,
                           OutputCheck output_exists)
    : m_host(host), m_inputs(std::move(inputs)), m_output_exists(std::move(output_exists))
{
}

const RegisteredTask* TaskRegistry::find(std::uint64_t key) const
{
    for (const RegisteredTask& task : m_tasks) {
        if (task.key == key) {
            return &task;
        }
    }
    return nullptr;
}

bool TaskRegistry::handleMessage(const MessageRecord& message, zlr::IfValue**,
                                 std::uint64_t& answer)
{
    switch (message.id) {
    case zlr::HOST_ADD_TASK:
        answer = add(message);
        return true;
    case zlr::HOST_REMOVE_TASK:
        answer = remove(message);
        return true;
    default:
        return false;
    }
}

std::uint64_t TaskRegistry::add(const MessageRecord& message)
{
    zlr::AcquisitionTaskAddTelegram telegram;
    if (message.value_type != zlr::VALUE_TYPE_XML || !readAcquisitionTaskAdd(message.text, telegram)) {
        m_host.recordFault(message.id, "the task telegram does not read", message.text);
        return zlr::RESULT_BAD_ARGUMENT;
    }
    const std::uint64_t key = telegram.m_acquisition_task_key;
    if (find(key)) {
        m_host.recordFault(message.id, "task " + std::to_string(key) + " is registered already",
                           message.text);
        return zlr::RESULT_FAILED;
    }
    for (std::uint64_t input : telegram.m_input_channels) {
        if (!m_inputs->find(input)) {
            m_host.recordFault(message.id,
                               "task " + std::to_string(key) + " reads input channel " +
                                   std::to_string(input) + ", which the host does not have",
                               message.text);
            return zlr::RESULT_FAILED;
        }
    }
    for (std::uint64_t output : telegram.m_output_channels) {
        if (m_output_exists && !m_output_exists(output)) {
            m_host.recordFault(message.id,
                               "task " + std::to_string(key) + " writes output channel " +
                                   std::to_string(output) + ", which the host does not have",
                               message.text);
            return zlr::RESULT_FAILED;
        }
    }
    m_tasks.push_back(RegisteredTask{key, telegram.m_input_channels, telegram.m_output_channels,
                                     telegram.m_block_duration});
    return zlr::RESULT_OK;
}

std::uint64_t TaskRegistry::remove(const MessageRecord& message)
{
    const auto found = std::find_if(m_tasks.begin(), m_tasks.end(),
                                    [&](const RegisteredTask& task) { return task.key == message.key; });
    if (found == m_tasks.end()) {
        m_host.recordFault(message.id,
                           "task " + std::to_string(message.key) + " is not registered", "");
        return zlr::RESULT_FAILED;
    }
    m_tasks.erase(found);
    return zlr::RESULT_OK;
}

void TaskRegistry::describe(std::ostream& out) const
{
    out << "tasks: " << m_tasks.size() << "\n";
    for (const RegisteredTask& task : m_tasks) {
        out << "  " << task.key << ": inputs ";
        printIds(out, task.input_channels);
        out << "; outputs ";
        printIds(out, task.output_channels);
        out << "\n";
    }
}

} // namespace zelvar_sim
