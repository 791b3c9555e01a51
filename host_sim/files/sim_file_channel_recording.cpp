#include "sim_file_channel_recording.h"

#include <algorithm>

namespace zelvar_sim {

FileChannelRecording::FileChannelRecording(std::shared_ptr<SharedFrameReader> reader,
                                           std::size_t channel, std::vector<SampleSpan> spans)
    : m_reader(std::move(reader)), m_channel(channel), m_spans(std::move(spans))
{
}

bool FileChannelRecording::holds(std::uint64_t first, std::uint64_t count) const
{
    const auto after = std::upper_bound(
        m_spans.begin(), m_spans.end(), first,
        [](std::uint64_t index, const SampleSpan& span) { return index < span.begin; });
    if (after == m_spans.begin()) {
        return false;
    }
    const SampleSpan& span = *(after - 1);
    return first < span.end && count <= span.end - first;
}

bool FileChannelRecording::read(std::uint64_t first, std::uint64_t count,
                                unsigned char* out) const
{
    if (count == 0) {
        return true;
    }
    return holds(first, count) && m_reader->copyChannel(m_channel, first, count, out);
}

bool FileChannelRecording::readAsDoubles(std::uint64_t first, std::uint64_t count,
                                         unsigned char* out) const
{
    if (count == 0) {
        return true;
    }
    return holds(first, count) && m_reader->copyChannelAsDoubles(m_channel, first, count, out);
}

} // namespace zelvar_sim
