// Exclusive owner of the complex transform that the plan gives a size.
#pragma once

#include "zfft_fft_if.h"

namespace ZFFT_VARIANT {

class FFTHandle {
public:
    FFTHandle() = default;
    FFTHandle(const FFTHandle&) = delete;
    FFTHandle& operator=(const FFTHandle&) = delete;
    ~FFTHandle() { reset(); }

    // Drops the old object and makes the class that the plan table gives
    // n, set up for n points. A size of 1 needs no object: the handle stays
    // empty. On an exception the handle is left empty.
    void setup(int n);

    // The transform, or null when the handle is empty.
    FFT_IF* get() const { return m_fft; }
    int size() const { return N; }
    // floor(log2 N) for a power of two, else -1.
    int log2_size() const { return log_N; }

    // Hands the object over to the caller, leaving the handle empty.
    FFT_IF* release();

private:
    void reset();

    FFT_IF* m_fft = nullptr;
    int N = 0;
    int log_N = -1;
};

} // namespace ZFFT_VARIANT
