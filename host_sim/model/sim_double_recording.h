// A recording's samples as doubles, value for value: every type the host
// stores (int16, int32, float) is held exactly by a double. The host hands
// out every channel this way, since plug-ins ask for scaled data.
#pragma once

#include "sim_recording.h"

#include <memory>

namespace zelvar_sim {

class DoubleRecording final : public Recording {
public:
    explicit DoubleRecording(std::shared_ptr<const Recording> samples);

    SampleEncoding encoding() const override { return SampleEncoding::float64; }
    std::uint64_t length() const override { return m_samples->length(); }
    std::vector<SampleSpan> dataSpans() const override { return m_samples->dataSpans(); }
    bool read(std::uint64_t first, std::uint64_t count, unsigned char* out) const override;

private:
    std::shared_ptr<const Recording> m_samples;
};

// `recording` itself when it is already double, else its DoubleRecording.
std::shared_ptr<const Recording> asDoubles(std::shared_ptr<const Recording> recording);

} // namespace zelvar_sim
