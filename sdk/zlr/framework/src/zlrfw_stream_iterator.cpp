#include "zlrfw_stream_iterator.h"

#include "zlrbase_assert.h"

namespace zlr::framework {
namespace {

// Records from begin to end; a gap, a range running backwards or one whose
// ends disagree on the stride counts none.
std::uint64_t distance(const SamplePosition& begin, const SamplePosition& end)
{
    if (!end.m_data || !begin.m_data || end.m_data < begin.m_data) {
        return 0;
    }
    if (begin.m_stride != end.m_stride) {
        return 0;
    }
    if (!begin.m_sample_size_pointer) {
        return begin.m_stride ? static_cast<std::uint64_t>(end.m_data - begin.m_data) / begin.m_stride
                              : 0;
    }
    // Variable records must be walked. The walk stops where it would pass the
    // end, so sizes that do not add up show as a wrong count rather than a
    // read beyond the block.
    std::uint64_t count = 0;
    SamplePosition walker = begin;
    while (walker.m_data < end.m_data) {
        walker.step();
        ++count;
    }
    return count;
}

} // namespace

void StreamIterator::clear()
{
    m_ranges.clear();
    m_range_index = -1;
    m_current = SamplePosition();
}

void StreamIterator::rewind()
{
    m_range_index = 0;
    m_current = m_ranges.front().begin;
    if (m_skip_gaps && !m_current.hasData()) {
        nextRange();
    }
}

void StreamIterator::addRange(const SamplePosition& begin, const SamplePosition& end)
{
    // Blocks usually come in rising order, so the search from the back ends
    // at once.
    const std::uint64_t tick = begin.tick();
    auto where = m_ranges.end();
    while (where != m_ranges.begin() && std::prev(where)->begin.tick() >= tick) {
        --where;
    }
    m_ranges.insert(where, SampleRange{begin, end});
    rewind();
}

void StreamIterator::setSkipGaps(bool skip_gaps)
{
    m_skip_gaps = skip_gaps;
    if (!m_ranges.empty()) {
        rewind();
    }
}

StreamIterator& StreamIterator::stepInvalid()
{
    ZLR_ASSERT(valid());
    return *this;
}

std::uint64_t StreamIterator::plainRunLength(std::uint64_t value_bytes) const
{
    if (m_range_index < 0 || m_range_index >= static_cast<std::int32_t>(m_ranges.size()) ||
        m_current.m_timestamp_pointer || m_current.m_sample_size_pointer) {
        return 0;
    }
    const SamplePosition& end = m_ranges[static_cast<std::size_t>(m_range_index)].end;
    if (!m_current.m_data) {
        // A gap steps its tick alone, and meets its end by tick.
        const std::uint64_t end_tick = end.tick();
        return end_tick > m_current.m_timestamp ? end_tick - m_current.m_timestamp : 0;
    }
    // Records that ++ would step over one by one until it meets the end's
    // pointer; an end it would never meet is left to ++ as well.
    if (m_current.m_stride != value_bytes || m_current.m_sample_size != 0 || !end.m_data ||
        end.m_data <= m_current.m_data) {
        return 0;
    }
    const auto bytes = static_cast<std::uint64_t>(end.m_data - m_current.m_data);
    return bytes % value_bytes == 0 ? bytes / value_bytes : 0;
}

void StreamIterator::nextRange()
{
    while (true) {
        m_range_index += 1;
        if (m_range_index < static_cast<std::int32_t>(m_ranges.size())) {
            m_current = m_ranges[static_cast<std::size_t>(m_range_index)].begin;
        } else if (m_listener) {
            m_listener->onEndOfRanges(*this);
            // The listener decides; without a decision there is nothing left.
            if (m_range_index >= static_cast<std::int32_t>(m_ranges.size())) {
                m_range_index = -1;
            }
        } else {
            m_range_index = -1;
        }
        if (m_range_index < 0 || !m_skip_gaps || m_current.hasData()) {
            return;
        }
    }
}

std::uint64_t StreamIterator::getTotalSampleCount() const
{
    std::uint64_t total = 0;
    for (const SampleRange& range : m_ranges) {
        total += distance(range.begin, range.end);
    }
    return total;
}

} // namespace zlr::framework
