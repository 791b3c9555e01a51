// The host's master clock, as plug-ins read it from "#Zelvar",
// "MasterTimebaseValue"; and the analysis mode flag beside it, in which the
// clock does not run.
#pragma once

#include "sim_host.h"
#include "zlrapi_timestamp.h"

#include <cstdint>

namespace zelvar_sim {

class MasterClock {
public:
    // Starts at tick 0 and publishes itself.
    explicit MasterClock(SimHost& host, double frequency = 1e6);

    void setTicks(std::uint64_t ticks);
    void advance(std::uint64_t ticks) { setTicks(m_now.ticks + ticks); }
    zlr::Timestamp now() const { return m_now; }
    double frequency() const { return m_now.frequency; }
    double seconds() const { return static_cast<double>(m_now.ticks) / m_now.frequency; }

    // The first tick at or after `seconds`, and the last at or before.
    std::uint64_t ticksAtOrAfter(double seconds) const;
    std::uint64_t ticksAtOrBefore(double seconds) const;

    void setAnalysisMode(bool active);

private:
    void publish();

    SimHost& m_host;
    zlr::Timestamp m_now;
};

} // namespace zelvar_sim
