#include "sim_scenario.h"

#include <iostream>

namespace zelvar_sim::test {
namespace {

constexpr const char* UNHANDLED_EXCEPTION = "Unhandled exception during ";
constexpr unsigned ERROR_SEVERITY = 6;

bool isUnhandledException(const LogRecord& record)
{
    return record.severity >= ERROR_SEVERITY &&
           record.text.rfind(UNHANDLED_EXCEPTION, 0) == 0;
}

} // namespace

const char* frequencyMeasurementPlugin()
{
    return FREQUENCY_MEASUREMENT_PLUGIN;
}

void SimScenario::SetUp()
{
    m_log = std::make_unique<LogSink>(LogSink::Recording{});
    m_bench = std::make_unique<HostBench>("Zelvar", "5.6", makeHost());

    m_library = std::make_unique<PluginLibrary>(FREQUENCY_MEASUREMENT_PLUGIN);
    m_assertions = std::make_unique<AssertionHook>(*m_library);
    if (!m_assertions->observable()) {
        std::cerr << m_assertions->notice() << "\n";
    }
    m_session = std::make_unique<PluginSession>(*m_library, host());
    model().attach(*m_session);
}

void SimScenario::TearDown()
{
    if (m_bench) {
        model().detach();
    }
    if (m_session) {
        m_session->finish();
    }
    if (m_assertions && m_log && m_bench) {
        checkStrictness();
    }
    if (HasFailure() && m_bench) {
        printHostState();
    }
    m_session.reset();
    // The plug-in gets its default handler back before it leaves memory.
    m_assertions.reset();
    m_library.reset();
    if (m_bench) {
        EXPECT_EQ(host().valuesOutsideTree(), 0) << "value objects still alive";
    }
    m_bench.reset();
    m_log.reset();
}

void SimScenario::expectAssertion(const std::string& expression_part)
{
    m_expected_assertions.push_back({0, expression_part, false});
}

void SimScenario::expectFault(std::uint32_t message_id, const std::string& reason_part)
{
    m_expected_faults.push_back({message_id, reason_part, false});
}

void SimScenario::checkStrictness()
{
    auto declared = [](std::vector<Expected>& expected, std::uint32_t id,
                       const std::string& text) {
        bool allowed = false;
        for (Expected& entry : expected) {
            if ((entry.message_id == 0 || entry.message_id == id) &&
                text.find(entry.part) != std::string::npos) {
                entry.seen = allowed = true;
            }
        }
        return allowed;
    };
    for (const AssertionRecord& record : m_assertions->records()) {
        if (!declared(m_expected_assertions, 0, record.expression)) {
            ADD_FAILURE() << "assertion of the plug-in: " << record.expression
                          << (record.message.empty() ? "" : " \"" + record.message + "\"")
                          << " at " << record.path << ":" << record.line;
        }
    }
    for (const ProtocolFault& fault : host().faults()) {
        if (!declared(m_expected_faults, fault.message_id, fault.reason)) {
            ADD_FAILURE() << "protocol fault: " << messageName(fault.message_id) << ": "
                          << fault.reason << "\n  " << fault.telegram;
        }
    }
    for (const LogRecord& record : m_log->records()) {
        if (isUnhandledException(record)) {
            ADD_FAILURE() << "logged: " << record.text;
        }
    }
    auto unseen = [](const std::vector<Expected>& expected, const char* what) {
        for (const Expected& entry : expected) {
            if (!entry.seen) {
                ADD_FAILURE() << what << " declared but never seen: "
                              << (entry.message_id ? messageName(entry.message_id) + " " : "")
                              << "\"" << entry.part << "\"";
            }
        }
    };
    unseen(m_expected_assertions, "assertion");
    unseen(m_expected_faults, "protocol fault");
}

void SimScenario::printHostState()
{
    std::cout << "--- the simulated host at the end ---\n" << model().dump();
    if (m_assertions) {
        for (const AssertionRecord& record : m_assertions->records()) {
            std::cout << "assertion: " << record.expression << " at " << record.path << ":"
                      << record.line << "\n";
        }
    }
    if (m_log) {
        for (const LogRecord& record : m_log->records()) {
            if (record.severity >= 5) {
                std::cout << "log " << record.channel << " " << record.severity << ": "
                          << record.text << "\n";
            }
        }
    }
    std::cout << "messages from the plug-in:\n";
    for (const MessageRecord& message : host().messages()) {
        std::cout << "  " << messageName(message.id) << " key " << message.key << " answer "
                  << message.answer << "\n";
    }
}

} // namespace zelvar_sim::test
