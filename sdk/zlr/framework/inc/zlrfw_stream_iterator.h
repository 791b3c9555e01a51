// A forward cursor over the samples of one channel, through all blocks of a
// processing step in tick order and through the gaps between them, without
// copying a byte of sample data. Lives for one processing step.
#pragma once

#include "zlrapi_timebase.h"
#include "zlrfw_sample_position.h"

#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

namespace zlr::framework {

class StreamIterator;

// Told when an iterator has walked through its last range; it decides what
// the iterator does next. Nothing installs one at present.
class IfStreamIteratorListener {
public:
    virtual void onEndOfRanges(StreamIterator& iterator) = 0;

protected:
    ~IfStreamIteratorListener() = default;
};

class StreamIterator {
public:
    // Empties the ranges; the iterator is invalid afterwards.
    void clear();

    // Inserts a range in tick order (equal ticks: the newest first) and
    // rewinds to the first range.
    void addRange(const SamplePosition& begin, const SamplePosition& end);

    // Stores the flag and rewinds to the first range, moving past a gap
    // when gaps are skipped.
    void setSkipGaps(bool skip_gaps);

    bool valid() const { return m_range_index >= 0; }

    // The sample at the current position; a quiet NaN inside a gap.
    template <typename T = double>
    T value() const
    {
        if (!m_current.m_data) {
            return std::numeric_limits<T>::quiet_NaN();
        }
        T sample;
        std::memcpy(&sample, m_current.m_data, sizeof sample);
        return sample;
    }

    std::uint64_t timestamp() const { return m_current.tick(); }

    // One sample on; at the end of a range, on to the next.
    StreamIterator& operator++();

    // On to the next range (past gaps when they are skipped); invalid after
    // the last one unless a listener decides otherwise.
    void nextRange();

    // Samples of all ranges that hold data.
    std::uint64_t getTotalSampleCount() const;

    void setListener(IfStreamIteratorListener* listener) { m_listener = listener; }

    const std::vector<SampleRange>& ranges() const { return m_ranges; }

private:
    void rewind();

    std::vector<SampleRange> m_ranges;
    std::int32_t m_range_index = -1;
    SamplePosition m_current;
    IfStreamIteratorListener* m_listener = nullptr;
    [[maybe_unused]] bool m_reserved_flag = false;
    bool m_skip_gaps = true;
    Timebase m_timebase;
};

} // namespace zlr::framework
