// Counts the value objects a host has made and not yet destroyed, so that a
// test can see every reference handed to a plug-in come back.
#pragma once

#include <atomic>
#include <cstdint>

namespace zelvar_sim {

class ValueLedger {
public:
    void created() { ++m_created, ++m_live; }
    void destroyed() { --m_live; }

    std::int64_t live() const { return m_live.load(); }
    std::int64_t created_total() const { return m_created.load(); }

private:
    std::atomic<std::int64_t> m_live{0};
    std::atomic<std::int64_t> m_created{0};
};

} // namespace zelvar_sim
