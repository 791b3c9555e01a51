#include "sim_generated_tone.h"

#include <cmath>
#include <cstring>
#include <numbers>

namespace zelvar_sim::validate {

GeneratedTone::GeneratedTone(std::uint64_t length, double frequency, double sample_rate)
    : m_length(length), m_cycles_per_sample(frequency / sample_rate)
{
}

std::vector<SampleSpan> GeneratedTone::dataSpans() const
{
    if (m_length == 0) {
        return {};
    }
    return {{0, m_length}};
}

bool GeneratedTone::read(std::uint64_t first, std::uint64_t count, unsigned char* out) const
{
    if (first > m_length || count > m_length - first) {
        return false;
    }
    for (std::uint64_t i = 0; i < count; ++i) {
        // The phase is cut to one cycle before the sine, so that an hour in
        // reads as cleanly as the first second.
        const double cycles = m_cycles_per_sample * static_cast<double>(first + i);
        const double value = std::sin(2.0 * std::numbers::pi * (cycles - std::floor(cycles)));
        std::memcpy(out + i * sizeof(double), &value, sizeof(double));
    }
    return true;
}

} // namespace zelvar_sim::validate
