#include "sim_double_recording.h"

#include <cstring>

namespace zelvar_sim {
namespace {

template <typename T>
void widen(std::uint64_t count, unsigned char* in_place)
{
    // From the last sample down, so that no narrow sample is overwritten
    // before it is read.
    for (std::uint64_t i = count; i-- > 0;) {
        T narrow;
        std::memcpy(&narrow, in_place + i * sizeof(T), sizeof(T));
        const double wide = static_cast<double>(narrow);
        std::memcpy(in_place + i * sizeof(double), &wide, sizeof(double));
    }
}

} // namespace

DoubleRecording::DoubleRecording(std::shared_ptr<const Recording> samples)
    : m_samples(std::move(samples))
{
}

bool DoubleRecording::read(std::uint64_t first, std::uint64_t count, unsigned char* out) const
{
    if (!m_samples->read(first, count, out)) {
        return false;
    }
    switch (m_samples->encoding()) {
    case SampleEncoding::float64:
        break;
    case SampleEncoding::float32:
        widen<float>(count, out);
        break;
    case SampleEncoding::int16:
        widen<std::int16_t>(count, out);
        break;
    case SampleEncoding::int32:
        widen<std::int32_t>(count, out);
        break;
    }
    return true;
}

std::shared_ptr<const Recording> asDoubles(std::shared_ptr<const Recording> recording)
{
    if (recording->encoding() == SampleEncoding::float64) {
        return recording;
    }
    return std::make_shared<DoubleRecording>(std::move(recording));
}

} // namespace zelvar_sim
