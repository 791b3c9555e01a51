// The real transform of one variant: N real samples through a complex
// transform of N/2 points and a weight table that splits the half-size
// spectrum into the real one.
#pragma once

#include "zfft/zfft_real_fft.h"
#include "zfft_aligned_table.h"
#include "zfft_fft_handle.h"

namespace ZFFT_VARIANT {

class RFFT final : public ZFFT::RealFFT {
public:
    RFFT() = default;
    RFFT(const RFFT&) = delete;
    RFFT& operator=(const RFFT&) = delete;

    void setup(int n) override;
    void forward(const double* x, complex_t* y) override;
    void forward_raw(const double* x, complex_t* y) override;
    void forward_unitary(const double* x, complex_t* y) override;
    void forward_norm(const double* x, complex_t* y) override;
    void inverse(complex_t* y, double* x) override;
    void inverse_raw(complex_t* y, double* x) override;
    void inverse_unitary(complex_t* y, double* x) override;
    void inverse_norm(complex_t* y, double* x) override;

private:
    enum class Scaling { none, by_n, by_sqrt_n };
    void run_forward(const double* x, complex_t* y, Scaling scaling) const;
    void run_inverse(complex_t* y, double* x, Scaling scaling) const;
    void fill_table(int log_n);

    int N = 0;
    FFTHandle m_inner;
    aligned_table m_table;
    const complex_t* W = nullptr;
};

// A new RFFT set up for n samples, for the factory outside the variants.
// Only the base pointer leaves the variant; on an exception nothing is left.
ZFFT::RealFFT* make_real_fft(int n);

} // namespace ZFFT_VARIANT
