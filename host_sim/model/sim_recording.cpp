#include "sim_recording.h"

#include <algorithm>
#include <cstring>

namespace zelvar_sim {

std::size_t sampleBytes(SampleEncoding encoding)
{
    switch (encoding) {
    case SampleEncoding::float64:
        return 8;
    case SampleEncoding::float32:
    case SampleEncoding::int32:
        return 4;
    case SampleEncoding::int16:
        return 2;
    }
    return 0;
}

const char* encodingName(SampleEncoding encoding)
{
    switch (encoding) {
    case SampleEncoding::float64:
        return "double";
    case SampleEncoding::float32:
        return "float";
    case SampleEncoding::int16:
        return "int16";
    case SampleEncoding::int32:
        return "int32";
    }
    return "unknown";
}

namespace {

template <typename T>
void widen(std::uint64_t count, const unsigned char* narrow, unsigned char* wide)
{
    for (std::uint64_t i = 0; i < count; ++i) {
        T value;
        std::memcpy(&value, narrow + i * sizeof(T), sizeof(T));
        const double widened = static_cast<double>(value);
        std::memcpy(wide + i * sizeof(double), &widened, sizeof(double));
    }
}

} // namespace

void widenToDoubles(SampleEncoding encoding, std::uint64_t count, const unsigned char* narrow,
                    unsigned char* wide)
{
    switch (encoding) {
    case SampleEncoding::float64:
        std::memcpy(wide, narrow, count * sizeof(double));
        break;
    case SampleEncoding::float32:
        widen<float>(count, narrow, wide);
        break;
    case SampleEncoding::int16:
        widen<std::int16_t>(count, narrow, wide);
        break;
    case SampleEncoding::int32:
        widen<std::int32_t>(count, narrow, wide);
        break;
    }
}

bool Recording::readAsDoubles(std::uint64_t first, std::uint64_t count, unsigned char* out) const
{
    const SampleEncoding stored = encoding();
    if (stored == SampleEncoding::float64) {
        return read(first, count, out);
    }
    // The narrow samples land beside the output, in one buffer per thread
    // kept from call to call.
    thread_local std::vector<unsigned char> narrow;
    narrow.resize(count * sampleBytes(stored));
    if (!read(first, count, narrow.data())) {
        return false;
    }
    widenToDoubles(stored, count, narrow.data(), out);
    return true;
}

std::vector<SampleSpan> clipSpans(const std::vector<SampleSpan>& spans, SampleSpan window)
{
    std::vector<SampleSpan> clipped;
    clipSpans(spans, window, clipped);
    return clipped;
}

void clipSpans(const std::vector<SampleSpan>& spans, SampleSpan window,
               std::vector<SampleSpan>& clipped)
{
    clipped.clear();
    for (const SampleSpan& span : spans) {
        const std::uint64_t begin = std::max(span.begin, window.begin);
        const std::uint64_t end = std::min(span.end, window.end);
        if (begin < end) {
            clipped.push_back({begin, end});
        }
    }
}

MemoryRecording::MemoryRecording(SampleEncoding encoding, std::vector<unsigned char> bytes,
                                 std::vector<SampleSpan> gaps)
    : m_encoding(encoding), m_bytes(std::move(bytes)),
      m_length(m_bytes.size() / sampleBytes(encoding))
{
    std::sort(gaps.begin(), gaps.end(),
              [](const SampleSpan& a, const SampleSpan& b) { return a.begin < b.begin; });
    std::uint64_t cursor = 0;
    for (const SampleSpan& gap : gaps) {
        const std::uint64_t gap_begin = std::min(gap.begin, m_length);
        if (gap_begin > cursor) {
            m_spans.push_back({cursor, gap_begin});
        }
        cursor = std::max(cursor, std::min(gap.end, m_length));
    }
    if (m_length > cursor) {
        m_spans.push_back({cursor, m_length});
    }
}

bool MemoryRecording::read(std::uint64_t first, std::uint64_t count, unsigned char* out) const
{
    if (count == 0) {
        return true;
    }
    const auto inside = std::find_if(m_spans.begin(), m_spans.end(), [&](const SampleSpan& span) {
        return span.begin <= first && first < span.end;
    });
    if (inside == m_spans.end() || count > inside->end - first) {
        return false;
    }
    const std::size_t width = sampleBytes(m_encoding);
    std::copy_n(m_bytes.begin() + static_cast<std::ptrdiff_t>(first * width), count * width, out);
    return true;
}

} // namespace zelvar_sim
