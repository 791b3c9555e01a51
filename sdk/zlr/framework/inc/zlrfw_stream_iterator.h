// A forward cursor over the samples of one channel, through all blocks of a
// processing step in tick order and through the gaps between them, without
// copying a byte of sample data. Lives for one processing step.
#pragma once

#include "zlrapi_timebase.h"
#include "zlrfw_sample_position.h"

#include <algorithm>
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

    // One sample on; at the end of a range, on to the next. Inline, since
    // the processing loops step every sample through here.
    StreamIterator& operator++()
    {
        if (m_range_index < 0 || m_range_index >= static_cast<std::int32_t>(m_ranges.size())) {
            return stepInvalid();
        }
        m_current.step();
        if (m_current == m_ranges[static_cast<std::size_t>(m_range_index)].end) {
            nextRange();
        }
        return *this;
    }

    // Appends the values of the next `count` samples to `out`, as that many
    // value() and ++ would, and answers how many it appended: fewer when
    // the iterator runs out first. Runs of plain records of exactly one T
    // each, and gaps, go over in one piece.
    template <typename T = double>
    std::uint64_t appendValues(std::vector<T>& out, std::uint64_t count)
    {
        std::uint64_t appended = 0;
        while (appended < count && valid()) {
            const std::uint64_t run = plainRunLength(sizeof(T));
            if (run == 0) {
                out.push_back(value<T>());
                ++*this;
                ++appended;
                continue;
            }
            const std::uint64_t taken = std::min(run, count - appended);
            if (m_current.m_data) {
                const auto* first = reinterpret_cast<const T*>(m_current.m_data);
                if (reinterpret_cast<std::uintptr_t>(first) % alignof(T) == 0) {
                    out.insert(out.end(), first, first + taken);
                } else {
                    const std::size_t size = out.size();
                    out.resize(size + taken);
                    std::memcpy(out.data() + size, first, taken * sizeof(T));
                }
                m_current.m_data += taken * sizeof(T);
            } else {
                out.insert(out.end(), taken, std::numeric_limits<T>::quiet_NaN());
            }
            m_current.m_timestamp += taken;
            appended += taken;
            if (m_current == m_ranges[static_cast<std::size_t>(m_range_index)].end) {
                nextRange();
            }
        }
        return appended;
    }

    // On to the next range (past gaps when they are skipped); invalid after
    // the last one unless a listener decides otherwise.
    void nextRange();

    // Samples of all ranges that hold data.
    std::uint64_t getTotalSampleCount() const;

    void setListener(IfStreamIteratorListener* listener) { m_listener = listener; }

    const std::vector<SampleRange>& ranges() const { return m_ranges; }

private:
    void rewind();
    // ++ on an iterator that is not valid: reported, and nothing moves.
    StreamIterator& stepInvalid();
    // Samples from the current position to the end of its range when the
    // range is a plain run that ++ would walk one tick and `value_bytes`
    // at a time (synchronous records of that size, or a gap), else 0.
    std::uint64_t plainRunLength(std::uint64_t value_bytes) const;

    std::vector<SampleRange> m_ranges;
    std::int32_t m_range_index = -1;
    SamplePosition m_current;
    IfStreamIteratorListener* m_listener = nullptr;
    [[maybe_unused]] bool m_reserved_flag = false;
    bool m_skip_gaps = true;
    Timebase m_timebase;
};

} // namespace zlr::framework
