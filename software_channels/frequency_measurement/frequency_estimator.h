// One window of equally spaced samples to one frequency in hertz: the
// strongest bin of the raw power spectrum, refined by the phase difference
// between two Hann-windowed spectra at that bin.
#pragma once

#include "zfft/zfft_real_fft.h"

#include <cstdint>
#include <vector>

namespace frequency_measurement {

class FrequencyEstimator {
public:
    // Makes the transform and the spectrum buffer for windows of
    // `window_size` samples (a power of two up to 2^20), replacing what an
    // earlier call made. Called at prepareProcessing; allocates.
    void prepare(std::uint64_t window_size);

    // Drops the transform and the buffer. Called at stopProcessing.
    void release();

    // The frequency of the strongest component of `samples`, in Hz, or a
    // quiet NaN when the window has the wrong length, holds a NaN, or is too
    // short to carry a frequency. May return values outside 0 .. rate/2;
    // the caller's range test refuses them. Allocates nothing.
    double estimateFrequency(const std::vector<double>& samples, double sample_rate, double max_frequency);

    std::uint64_t windowSize() const { return m_window_size; }
    bool prepared() const { return static_cast<bool>(m_fft); }
    // The full spectrum of the last window transformed; no meaning between
    // calls, exposed for tests.
    const std::vector<ZFFT::complex_t>& spectrum() const { return m_spectrum; }

private:
    std::uint64_t m_window_size = 0;
    ZFFT::RealFFTPtr m_fft;
    std::vector<ZFFT::complex_t> m_spectrum;
};

} // namespace frequency_measurement
