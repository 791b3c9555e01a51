// The fallback complex transform: any size that is not a power of two, and
// every power of two above 2^24. It factors the size as it goes (radix 8,
// 4, 2, 5, 3, then any prime by a direct sum) in the Stockham scheme, so the
// result comes out in natural order without a reordering pass.
#pragma once

#include "zfft_aligned_table.h"
#include "zfft_fft_if.h"

namespace ZFFT_VARIANT {
namespace ZFFT_MixedRadix {

class FFT0 final : public FFT_IF {
public:
    FFT0() = default;
    FFT0(const FFT0&) = delete;
    FFT0& operator=(const FFT0&) = delete;

    // Builds the table of N+1 twiddles exp(-2 pi i p / N) for any n >= 1;
    // a size below 1 keeps no table and makes every transform a no-op.
    void setup(int n) override;
    void setup_log2(int log_N) override;

    void forward(complex_t* x, complex_t* y) override;
    void forward_raw(complex_t* x, complex_t* y) override;
    void forward_unitary(complex_t* x, complex_t* y) override;
    void inverse(complex_t* x, complex_t* y) override;
    void inverse_unitary(complex_t* x, complex_t* y) override;
    void inverse_norm(complex_t* x, complex_t* y) override;
    void forward_raw_from(const complex_t* in, complex_t* x, complex_t* y) override;
    const char* name() const override { return ZFFT_VARIANT_NAME "::ZFFT_MixedRadix::FFT0"; }

    int size() const { return N; }

private:
    void run(bool inverse, complex_t* x, complex_t* y) const;
    void scale(complex_t* x, double factor) const;

    int N = 0;
    aligned_table m_table;
    const complex_t* W = nullptr;
};

} // namespace ZFFT_MixedRadix
} // namespace ZFFT_VARIANT
