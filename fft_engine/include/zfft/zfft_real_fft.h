// The door to the FFT engine: a real transform of the best processor variant.
#pragma once

#include "zfft_complex.h"

#include <cstdint>
#include <memory>

namespace ZFFT {

// What the processor offers, found once per process with CPUID and XGETBV.
struct cpu_features {
    std::uint64_t hardware_threads;
    std::uint8_t ymm_usable;
    std::uint8_t has_sse;
    std::uint8_t has_sse2;
    std::uint8_t has_sse3;
    std::uint8_t has_ssse3;
    std::uint8_t has_sse41;
    std::uint8_t has_sse42;
    std::uint8_t has_avx;
    std::uint8_t has_avx2;
    std::uint8_t has_fma;
};

// Built at the first call, under a once-only guard; safe from any thread.
const cpu_features& get_cpu_features();

// A transform of N real samples. x holds N doubles (any 8-byte alignment),
// y holds N complex values and doubles as the work space of the transform.
// The forward operations write the whole spectrum, y[N-k] = conj(y[k]).
class RealFFT {
public:
    virtual ~RealFFT();
    // Makes the object ready for n samples, dropping what it had.
    virtual void setup(int n) = 0;
    // Scaled by 1/N.
    virtual void forward(const double* x, complex_t* y) = 0;
    // Unscaled.
    virtual void forward_raw(const double* x, complex_t* y) = 0;
    // Scaled by 1/sqrt(N).
    virtual void forward_unitary(const double* x, complex_t* y) = 0;
    // Scaled by 1/N; the same as forward.
    virtual void forward_norm(const double* x, complex_t* y) = 0;
    // Unscaled. Reads y[0..N/2], destroys y, writes N doubles of x.
    virtual void inverse(complex_t* y, double* x) = 0;
    // The same as inverse.
    virtual void inverse_raw(complex_t* y, double* x) = 0;
    // Scaled by 1/sqrt(N).
    virtual void inverse_unitary(complex_t* y, double* x) = 0;
    // Scaled by 1/N.
    virtual void inverse_norm(complex_t* y, double* x) = 0;

protected:
    RealFFT();
};

// True when this processor can run the variant that `selector` asks for:
// 1 SSE2, 2 AVX, 3 AVX2, and 0 any of them. The one rule of what runs here:
// create_real_fft follows it, and so do the tests. AVX2 is taken to bring
// FMA along, and SSE2 to bring SSE3's add-subtract.
bool selector_supported(unsigned selector);

// Releases what create_real_fft made.
void destroy_real_fft(RealFFT* p);

struct RealFFTDeleter {
    void operator()(RealFFT* p) const { destroy_real_fft(p); }
};
using RealFFTPtr = std::unique_ptr<RealFFT, RealFFTDeleter>;

// A real transform set up for N samples. selector 0 lets the engine choose
// the best variant; 1 asks for SSE2, 2 for AVX, 3 for AVX2. Throws
// std::domain_error("No supported CPU featureset found.") when the request
// cannot be honoured.
RealFFTPtr create_real_fft(int N, unsigned selector);

} // namespace ZFFT
