#include "sim_shared_frame_reader.h"

#include "sim_file_error.h"

#include <algorithm>
#include <cstring>

namespace zelvar_sim {

SharedFrameReader::SharedFrameReader(std::unique_ptr<FrameSource> source,
                                     ReadAheadOptions options)
    : m_source(std::move(source)),
      m_frame_bytes(std::max<std::size_t>(1, m_source->channels()) *
                    sampleBytes(m_source->encoding())),
      m_capacity(std::max<std::uint64_t>(1, options.bytes / m_frame_bytes)),
      m_buffer((m_capacity * m_frame_bytes + sizeof(double) - 1) / sizeof(double))
{
}

void SharedFrameReader::fill(std::uint64_t first)
{
    m_buffered_count = 0;
    const std::uint64_t count = std::min(m_capacity, m_source->frames() - first);
    m_source->readFrames(first, count, reinterpret_cast<unsigned char*>(m_buffer.data()));
    m_buffered_first = first;
    m_buffered_count = count;
}

bool SharedFrameReader::copyChannel(std::size_t channel, std::uint64_t first,
                                    std::uint64_t count, unsigned char* out)
{
    std::lock_guard lock(m_mutex);
    const std::uint64_t frames = m_source->frames();
    if (channel >= m_source->channels() || first > frames || count > frames - first) {
        return false;
    }
    const std::size_t width = sampleBytes(m_source->encoding());
    const auto* buffer = reinterpret_cast<const unsigned char*>(m_buffer.data());
    while (count > 0) {
        if (first < m_buffered_first || first >= m_buffered_first + m_buffered_count) {
            try {
                fill(first);
            } catch (const FileError& error) {
                if (m_fault.empty()) {
                    m_fault = error.what();
                }
                return false;
            }
        }
        const std::uint64_t available =
            std::min(count, m_buffered_first + m_buffered_count - first);
        const unsigned char* frame = buffer + (first - m_buffered_first) * m_frame_bytes;
        for (std::uint64_t i = 0; i < available; ++i) {
            std::memcpy(out, frame + channel * width, width);
            out += width;
            frame += m_frame_bytes;
        }
        first += available;
        count -= available;
    }
    return true;
}

std::string SharedFrameReader::fault() const
{
    std::lock_guard lock(m_mutex);
    return m_fault;
}

std::size_t SharedFrameReader::memoryBytes() const
{
    std::lock_guard lock(m_mutex);
    return m_buffer.size() * sizeof(double) + m_source->memoryBytes();
}

} // namespace zelvar_sim
