// The host's side of plug-in logging: the kit sends its records to the
// process's Boost.Log core and leaves the sink to the host. Without one, Boost
// prints every record in its own bare format; with this, the simulator decides
// the severity from which records are shown and where they go.
#pragma once

#include <iosfwd>
#include <memory>

namespace zelvar_sim {

// Installs a sink that writes each record of at least `minimum_severity` as
// one line "log <channel> <severity>: <text>" to `out`, which must outlive the
// returned guard. Records below the level are dropped without being formatted.
class LogSink {
public:
    LogSink(std::ostream& out, unsigned minimum_severity);
    ~LogSink();
    LogSink(const LogSink&) = delete;
    LogSink& operator=(const LogSink&) = delete;

private:
    struct Installed;
    std::unique_ptr<Installed> m_installed;
};

} // namespace zelvar_sim
