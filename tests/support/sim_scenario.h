// The fixture of every scenario test: a simulated host with its identity,
// its configuration model and its acquisition side, the built
// frequency_measurement.plugin loaded and initialised through it, the
// plug-in's assertions and the log recorded.
//
// At the end it finishes and deletes the plug-in and fails the test on an
// assertion of the plug-in or a protocol fault of the host that the test did
// not declare, on a declared one that never came, on any logged unhandled
// exception, and on a value object still alive; on failure it prints what
// the host holds.
//
//   class MyScenario : public zelvar_sim::test::SimScenario {};
//   TEST_F(MyScenario, CreatesAChannel)
//   {
//       auto created = model().createSoftwareChannel({{7, format}});
//       ...
//       expectFault(zlr::HOST_UPDATE_CONFIG, "does not know"); // when it must come
//   }
#pragma once

#include "plugin_loader.h"
#include "sim_acquisition.h"
#include "sim_assertion_hook.h"
#include "sim_host.h"
#include "sim_host_bench.h"
#include "sim_host_model.h"
#include "sim_log_sink.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace zelvar_sim::test {

class SimScenario : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // The host object itself, for a test that needs one that misbehaves.
    virtual std::unique_ptr<SimHost> makeHost() { return std::make_unique<SimHost>(); }

    SimHost& host() { return m_bench->host(); }
    HostModel& model() { return m_bench->model(); }
    Acquisition& acquisition() { return m_bench->acquisition(); }
    HostBench& bench() { return *m_bench; }
    PluginLibrary& library() { return *m_library; }
    PluginSession& session() { return *m_session; }
    const AssertionHook& assertions() const { return *m_assertions; }
    const LogSink& log() const { return *m_log; }

    // Declares what the test provokes on purpose: each event that contains
    // the text (in the expression, the reason, the log text) is allowed, and
    // at least one must come.
    void expectAssertion(const std::string& expression_part);
    void expectFault(std::uint32_t message_id, const std::string& reason_part = {});

private:
    struct Expected {
        std::uint32_t message_id = 0;
        std::string part;
        bool seen = false;
    };

    void checkStrictness();
    void printHostState();

    std::unique_ptr<LogSink> m_log;
    std::unique_ptr<HostBench> m_bench;
    std::unique_ptr<PluginLibrary> m_library;
    std::unique_ptr<AssertionHook> m_assertions;
    std::unique_ptr<PluginSession> m_session;

    std::vector<Expected> m_expected_assertions;
    std::vector<Expected> m_expected_faults;
};

// The built plug-in's path, for tests that load it on their own.
const char* frequencyMeasurementPlugin();

} // namespace zelvar_sim::test
