// The samples behind one input channel of the simulated host: a timeline of
// sample indices from 0 up to length(), with spans that hold samples and
// gaps between them. A recording hands out sample ranges on demand, so that
// a long one never needs to lie in memory whole.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace zelvar_sim {

// How one sample value is stored: little-endian, no padding.
enum class SampleEncoding { float64, float32, int16, int32 };

std::size_t sampleBytes(SampleEncoding encoding);
const char* encodingName(SampleEncoding encoding);

template <typename T>
constexpr SampleEncoding encodingOf()
{
    static_assert(std::is_same_v<T, double> || std::is_same_v<T, float> ||
                      std::is_same_v<T, std::int16_t> || std::is_same_v<T, std::int32_t>,
                  "the host stores double, float, int16 and int32 samples");
    if constexpr (std::is_same_v<T, double>) {
        return SampleEncoding::float64;
    } else if constexpr (std::is_same_v<T, float>) {
        return SampleEncoding::float32;
    } else if constexpr (std::is_same_v<T, std::int16_t>) {
        return SampleEncoding::int16;
    } else {
        return SampleEncoding::int32;
    }
}

// Sample indices from begin up to, not including, end.
struct SampleSpan {
    std::uint64_t begin = 0;
    std::uint64_t end = 0;

    bool operator==(const SampleSpan&) const = default;
};

// The spans of `spans` that lie within `window`, cut to it.
std::vector<SampleSpan> clipSpans(const std::vector<SampleSpan>& spans, SampleSpan window);
// The same into `clipped`, emptied first, for a caller that cuts many windows
// and keeps its room.
void clipSpans(const std::vector<SampleSpan>& spans, SampleSpan window,
               std::vector<SampleSpan>& clipped);

class Recording {
public:
    virtual ~Recording() = default;

    virtual SampleEncoding encoding() const = 0;

    // One behind the last sample index of the timeline.
    virtual std::uint64_t length() const = 0;

    // The spans that hold samples: ascending, disjoint, not empty, within
    // [0, length()). Every index outside them is a gap.
    virtual std::vector<SampleSpan> dataSpans() const = 0;

    // Copies the samples from `first` on, `count` of them, to `out` in the
    // recording's encoding (sampleBytes() each). False, with nothing
    // promised of `out`, when the range leaves the timeline or touches a gap.
    virtual bool read(std::uint64_t first, std::uint64_t count, unsigned char* out) const = 0;

    // The same samples widened to doubles, value for value (every encoding
    // the host stores is held exactly by a double), 8 bytes each. A
    // recording that can widen as it copies overrides it, to spare a pass.
    virtual bool readAsDoubles(std::uint64_t first, std::uint64_t count,
                               unsigned char* out) const;
};

// `count` samples of `encoding` at `narrow` to doubles at `wide`; the two
// do not overlap.
void widenToDoubles(SampleEncoding encoding, std::uint64_t count, const unsigned char* narrow,
                    unsigned char* wide);

// A recording held in memory: one value for every index of the timeline,
// and the gaps whose values are never handed out.
class MemoryRecording final : public Recording {
public:
    // `bytes` holds length * sampleBytes(encoding) bytes. Gaps may overlap
    // and stick out of the timeline; they are merged and cut.
    MemoryRecording(SampleEncoding encoding, std::vector<unsigned char> bytes,
                    std::vector<SampleSpan> gaps = {});

    template <typename T>
    static std::shared_ptr<MemoryRecording> of(const std::vector<T>& samples,
                                               std::vector<SampleSpan> gaps = {})
    {
        std::vector<unsigned char> bytes(samples.size() * sizeof(T));
        if (!bytes.empty()) {
            std::memcpy(bytes.data(), samples.data(), bytes.size());
        }
        return std::make_shared<MemoryRecording>(encodingOf<T>(), std::move(bytes),
                                                 std::move(gaps));
    }

    SampleEncoding encoding() const override { return m_encoding; }
    std::uint64_t length() const override { return m_length; }
    std::vector<SampleSpan> dataSpans() const override { return m_spans; }
    bool read(std::uint64_t first, std::uint64_t count, unsigned char* out) const override;

private:
    SampleEncoding m_encoding;
    std::vector<unsigned char> m_bytes;
    std::uint64_t m_length;
    std::vector<SampleSpan> m_spans;
};

} // namespace zelvar_sim
