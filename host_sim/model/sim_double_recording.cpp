#include "sim_double_recording.h"

namespace zelvar_sim {

DoubleRecording::DoubleRecording(std::shared_ptr<const Recording> samples)
    : m_samples(std::move(samples))
{
}

bool DoubleRecording::read(std::uint64_t first, std::uint64_t count, unsigned char* out) const
{
    return m_samples->readAsDoubles(first, count, out);
}

std::shared_ptr<const Recording> asDoubles(std::shared_ptr<const Recording> recording)
{
    if (recording->encoding() == SampleEncoding::float64) {
        return recording;
    }
    return std::make_shared<DoubleRecording>(std::move(recording));
}

} // namespace zelvar_sim
