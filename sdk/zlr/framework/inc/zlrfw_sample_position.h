// A place in a stream of records, and a run of such places. Positions point
// straight into the host's block memory; a position in a gap has no data and
// only a tick.
#pragma once

#include <cstdint>
#include <cstring>

namespace zlr::framework {

struct SamplePosition {
    // The current record; null inside a gap.
    const unsigned char* m_data = nullptr;
    // The record's fixed size in bytes.
    std::uint64_t m_stride = 0;
    // The current record's tick; null for synchronous data and gaps.
    const unsigned char* m_timestamp_pointer = nullptr;
    // With a null timestamp pointer the running tick, else that pointer's step in bytes.
    std::uint64_t m_timestamp = 0;
    // The current record's 32-bit payload size; null unless sizes vary.
    const unsigned char* m_sample_size_pointer = nullptr;
    // With a null size pointer the payload added at each step, else that pointer's step.
    std::uint64_t m_sample_size = 0;

    SamplePosition() = default;

    static SamplePosition synchronous(const unsigned char* data, std::uint64_t stride,
                                      std::uint64_t tick)
    {
        SamplePosition p;
        p.m_data = data;
        p.m_stride = stride;
        p.m_timestamp = tick;
        return p;
    }

    static SamplePosition timestamped(const unsigned char* data, std::uint64_t stride,
                                      const unsigned char* timestamp, std::uint64_t timestamp_step)
    {
        SamplePosition p;
        p.m_data = data;
        p.m_stride = stride;
        p.m_timestamp_pointer = timestamp;
        p.m_timestamp = timestamp_step;
        return p;
    }

    static SamplePosition variable(const unsigned char* data, std::uint64_t stride,
                                   const unsigned char* timestamp, std::uint64_t timestamp_step,
                                   const unsigned char* sample_size, std::uint64_t size_step)
    {
        SamplePosition p = timestamped(data, stride, timestamp, timestamp_step);
        p.m_sample_size_pointer = sample_size;
        p.m_sample_size = size_step;
        return p;
    }

    static SamplePosition gap(std::uint64_t tick)
    {
        SamplePosition p;
        p.m_timestamp = tick;
        return p;
    }

    bool hasData() const { return m_data != nullptr; }

    // The tick of this position, read from the record where it carries one.
    std::uint64_t tick() const
    {
        if (!m_timestamp_pointer) {
            return m_timestamp;
        }
        std::uint64_t value;
        std::memcpy(&value, m_timestamp_pointer, sizeof value);
        return value;
    }

    // Moves one record on: the payload of a variable record lies between it
    // and the next one.
    void step()
    {
        std::uint64_t payload = m_sample_size;
        if (m_sample_size_pointer) {
            std::uint32_t size;
            std::memcpy(&size, m_sample_size_pointer, sizeof size);
            payload = size;
        }
        if (m_data) {
            m_data += m_stride + payload;
        }
        if (m_timestamp_pointer) {
            m_timestamp_pointer += m_timestamp + payload;
        } else {
            m_timestamp += 1;
        }
        if (m_sample_size_pointer) {
            m_sample_size_pointer += m_sample_size + payload;
        }
    }

    // Two positions with data are the same record; otherwise ticks decide.
    bool operator==(const SamplePosition& other) const
    {
        if (m_data && other.m_data) {
            return m_data == other.m_data;
        }
        return tick() == other.tick();
    }
};

// From begin up to end, where end is one step behind the last record.
struct SampleRange {
    SamplePosition begin;
    SamplePosition end;
};

// The first sample at or after time t (seconds) at `rate` samples per second,
// with a tolerance of one representable step against rounding noise: an
// exact k / rate gives k, anything between gives the next sample.
std::uint64_t timeToSampleIndex(double t, double rate);

} // namespace zlr::framework
