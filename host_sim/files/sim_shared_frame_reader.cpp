#include "sim_shared_frame_reader.h"

#include "sim_file_error.h"

#include <immintrin.h>

#include <algorithm>
#include <cstring>

namespace zelvar_sim {
namespace {

// Every `frame_bytes`-th sample of type From from `from` on, `count` of
// them, converted to To and packed to `out`; answers the end of what was
// written. The types are fixed at compile time, so that the copy is a plain
// load, convert and store.
template <typename From, typename To>
unsigned char* pickChannel(const unsigned char* from, std::size_t frame_bytes,
                           std::uint64_t count, unsigned char* out)
{
    for (std::uint64_t i = 0; i < count; ++i) {
        From value;
        std::memcpy(&value, from, sizeof value);
        const To converted = static_cast<To>(value);
        std::memcpy(out, &converted, sizeof converted);
        out += sizeof converted;
        from += frame_bytes;
    }
    return out;
}

// The mono and stereo loops again with AVX2, eight frames at a time, on the
// processors that have it; answers the frames done, the rest is left over.
__attribute__((target("avx2"))) std::uint64_t
pickInt16AsDoublesAvx2(const unsigned char* frames, std::size_t channel, std::size_t frame_bytes,
                       std::uint64_t count, unsigned char*& out)
{
    if (frame_bytes != 2 && frame_bytes != 4) {
        return 0;
    }
    std::uint64_t done = 0;
    for (; done + 8 <= count; done += 8) {
        __m256i eight;
        if (frame_bytes == 4) {
            const __m256i v =
                _mm256_loadu_si256(reinterpret_cast<const __m256i*>(frames + done * 4));
            eight = channel == 0 ? _mm256_srai_epi32(_mm256_slli_epi32(v, 16), 16)
                                 : _mm256_srai_epi32(v, 16);
        } else {
            eight = _mm256_cvtepi16_epi32(
                _mm_loadu_si128(reinterpret_cast<const __m128i*>(frames + done * 2)));
        }
        _mm256_storeu_pd(reinterpret_cast<double*>(out),
                         _mm256_cvtepi32_pd(_mm256_castsi256_si128(eight)));
        _mm256_storeu_pd(reinterpret_cast<double*>(out + 32),
                         _mm256_cvtepi32_pd(_mm256_extracti128_si256(eight, 1)));
        out += 64;
    }
    return done;
}

// 16-bit samples of one channel widened to doubles: the sound files people
// record most, so mono and stereo go four and eight at a time with SSE2,
// which every x86-64 processor has; other layouts one by one. Vectors are
// loaded from whole frames only, never past the last one.
unsigned char* pickInt16AsDoubles(const unsigned char* frames, std::size_t channel,
                                  std::size_t frame_bytes, std::uint64_t count,
                                  unsigned char* out)
{
    static const bool avx2 = __builtin_cpu_supports("avx2");
    if (avx2) {
        const std::uint64_t wide = pickInt16AsDoublesAvx2(frames, channel, frame_bytes, count, out);
        frames += wide * frame_bytes;
        count -= wide;
    }
    std::uint64_t done = 0;
    const auto store = [&out](__m128i four) {
        _mm_storeu_pd(reinterpret_cast<double*>(out), _mm_cvtepi32_pd(four));
        _mm_storeu_pd(reinterpret_cast<double*>(out + 16),
                      _mm_cvtepi32_pd(_mm_shuffle_epi32(four, _MM_SHUFFLE(1, 0, 3, 2))));
        out += 32;
    };
    if (frame_bytes == 4) {
        for (; done + 4 <= count; done += 4) {
            const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(frames + done * 4));
            // Each 32-bit lane is one frame; the channel's half, sign-extended.
            store(channel == 0 ? _mm_srai_epi32(_mm_slli_epi32(v, 16), 16) : _mm_srai_epi32(v, 16));
        }
    } else if (frame_bytes == 2) {
        for (; done + 8 <= count; done += 8) {
            const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(frames + done * 2));
            store(_mm_srai_epi32(_mm_unpacklo_epi16(v, v), 16));
            store(_mm_srai_epi32(_mm_unpackhi_epi16(v, v), 16));
        }
    }
    return pickChannel<std::int16_t, double>(frames + done * frame_bytes + channel * 2,
                                             frame_bytes, count - done, out);
}

} // namespace

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

template <typename Pick>
bool SharedFrameReader::walkFrames(std::size_t channel, std::uint64_t first, std::uint64_t count,
                                   Pick pick)
{
    std::lock_guard lock(m_mutex);
    const std::uint64_t frames = m_source->frames();
    if (channel >= m_source->channels() || first > frames || count > frames - first) {
        return false;
    }
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
        pick(buffer + (first - m_buffered_first) * m_frame_bytes, available);
        first += available;
        count -= available;
    }
    return true;
}

bool SharedFrameReader::copyChannel(std::size_t channel, std::uint64_t first,
                                    std::uint64_t count, unsigned char* out)
{
    const std::size_t width = sampleBytes(m_source->encoding());
    const std::size_t frame_bytes = m_frame_bytes;
    return walkFrames(channel, first, count, [&](const unsigned char* frame, std::uint64_t frames) {
        const unsigned char* from = frame + channel * width;
        switch (width) {
        case 2:
            out = pickChannel<std::uint16_t, std::uint16_t>(from, frame_bytes, frames, out);
            break;
        case 4:
            out = pickChannel<std::uint32_t, std::uint32_t>(from, frame_bytes, frames, out);
            break;
        default:
            out = pickChannel<std::uint64_t, std::uint64_t>(from, frame_bytes, frames, out);
            break;
        }
    });
}

bool SharedFrameReader::copyChannelAsDoubles(std::size_t channel, std::uint64_t first,
                                             std::uint64_t count, unsigned char* out)
{
    const SampleEncoding encoding = m_source->encoding();
    const std::size_t from_channel = channel * sampleBytes(encoding);
    const std::size_t frame_bytes = m_frame_bytes;
    return walkFrames(channel, first, count, [&](const unsigned char* frame, std::uint64_t frames) {
        const unsigned char* from = frame + from_channel;
        switch (encoding) {
        case SampleEncoding::int16:
            out = pickInt16AsDoubles(frame, channel, frame_bytes, frames, out);
            break;
        case SampleEncoding::int32:
            out = pickChannel<std::int32_t, double>(from, frame_bytes, frames, out);
            break;
        case SampleEncoding::float32:
            out = pickChannel<float, double>(from, frame_bytes, frames, out);
            break;
        case SampleEncoding::float64:
            out = pickChannel<double, double>(from, frame_bytes, frames, out);
            break;
        }
    });
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
