// What a check sees while it runs in its child process: the plug-in file,
// the seed, a trace that the parent keeps the last lines of, and the two
// ways to end other than passing.
#pragma once

#include "sim_log_sink.h"

#include <cstdint>
#include <random>
#include <stdexcept>
#include <string>

namespace zelvar_sim::validate {

class CheckFailed : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class CheckSkipped : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// What the person running the checks chose beyond plug-in and seed.
struct CheckOptions {
    // Seconds of data of the long run.
    double long_run_seconds = 3600.0;
};

class CheckContext {
public:
    CheckContext(std::string plugin_path, std::uint64_t seed, int trace_fd)
        : m_plugin_path(std::move(plugin_path)), m_seed(seed), m_random(seed), m_trace_fd(trace_fd)
    {
    }

    const std::string& pluginPath() const { return m_plugin_path; }
    std::uint64_t seed() const { return m_seed; }
    std::mt19937_64& random() { return m_random; }
    const CheckOptions& options() const { return m_options; }
    void setOptions(const CheckOptions& options) { m_options = options; }

    // The log records of the plug-in so far, when the child keeps them.
    void setLog(const LogSink* log) { m_log = log; }
    std::vector<LogRecord> logRecords() const { return m_log ? m_log->records() : std::vector<LogRecord>{}; }

    // One line of what the check is doing; written at once, so that it is
    // there even when the next call into the plug-in kills the process.
    void trace(const std::string& line) const;

    // Fails the check with `reason` unless `condition` holds.
    static void require(bool condition, const std::string& reason)
    {
        if (!condition) {
            throw CheckFailed(reason);
        }
    }

private:
    std::string m_plugin_path;
    std::uint64_t m_seed;
    std::mt19937_64 m_random;
    int m_trace_fd;
    CheckOptions m_options;
    const LogSink* m_log = nullptr;
};

// Writes `text` to a file descriptor whole, retrying short writes.
void writeAll(int fd, const std::string& text);

} // namespace zelvar_sim::validate
