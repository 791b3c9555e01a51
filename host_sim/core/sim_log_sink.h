// The host's side of plug-in logging: the kit sends its records to the
// process's Boost.Log core and leaves the sink to the host. Without one, Boost
// prints every record in its own bare format; with this, the simulator decides
// the severity from which records are shown and where they go, and a strict
// run keeps every record to look at afterwards.
#pragma once

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

namespace zelvar_sim {

// One record as the host kept it, copied at once, so that nothing refers to
// a module that is unloaded later.
struct LogRecord {
    std::string channel;
    unsigned severity = 0;
    std::string text;
};

class LogSink {
public:
    // Writes each record of at least `minimum_severity` as one line
    // "log <channel> <severity>: <text>" to `out`, which must outlive the
    // sink. Records below the level are dropped without being formatted.
    LogSink(std::ostream& out, unsigned minimum_severity);

    // Recording mode: keeps every record, of every severity, for records().
    struct Recording {};
    explicit LogSink(Recording);

    ~LogSink();
    LogSink(const LogSink&) = delete;
    LogSink& operator=(const LogSink&) = delete;

    // The records kept so far; always empty when not recording.
    std::vector<LogRecord> records() const;
    void clearRecords();

private:
    struct Installed;
    std::unique_ptr<Installed> m_installed;
};

} // namespace zelvar_sim
