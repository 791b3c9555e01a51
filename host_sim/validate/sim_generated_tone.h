// A tone recording that computes its samples when they are read, so that a
// run over hours of data holds none of it in memory.
#pragma once

#include "sim_recording.h"

namespace zelvar_sim::validate {

class GeneratedTone final : public Recording {
public:
    // `length` samples of sin(2 pi frequency i / sample_rate), as doubles.
    GeneratedTone(std::uint64_t length, double frequency, double sample_rate);

    SampleEncoding encoding() const override { return SampleEncoding::float64; }
    std::uint64_t length() const override { return m_length; }
    std::vector<SampleSpan> dataSpans() const override;
    bool read(std::uint64_t first, std::uint64_t count, unsigned char* out) const override;

private:
    std::uint64_t m_length;
    double m_cycles_per_sample;
};

} // namespace zelvar_sim::validate
