#include "sim_master_clock.h"

#include "sim_data_set_writers.h"
#include "zlrapi_utils.h"

#include <cmath>

namespace zelvar_sim {

MasterClock::MasterClock(SimHost& host, double frequency) : m_host(host)
{
    m_now.frequency = frequency;
    publish();
}

void MasterClock::setTicks(std::uint64_t ticks)
{
    m_now.ticks = ticks;
    publish();
}

std::uint64_t MasterClock::ticksAtOrAfter(double seconds) const
{
    if (!(seconds > 0.0)) {
        return 0;
    }
    return static_cast<std::uint64_t>(std::ceil(seconds * m_now.frequency));
}

std::uint64_t MasterClock::ticksAtOrBefore(double seconds) const
{
    if (!(seconds > 0.0)) {
        return 0;
    }
    return static_cast<std::uint64_t>(std::floor(seconds * m_now.frequency));
}

void MasterClock::setAnalysisMode(bool active)
{
    m_host.tree().setBoolean(zlr::tree::ZELVAR, zlr::tree::ANALYSIS_MODE_ACTIVE, active);
}

void MasterClock::publish()
{
    m_host.tree().setXml(zlr::tree::ZELVAR, zlr::tree::MASTER_TIMEBASE_VALUE,
                         writeMasterTimebaseValue(m_now));
}

} // namespace zelvar_sim
