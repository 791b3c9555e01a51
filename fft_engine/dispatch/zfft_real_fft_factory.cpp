#include "zfft/zfft_real_fft.h"
#include "zfft_variant_access.h"

#include <memory>
#include <stdexcept>

namespace ZFFT {
namespace {

[[noreturn]] void refuse()
{
    throw std::domain_error("No supported CPU featureset found.");
}

} // namespace

RealFFT::RealFFT() = default;
RealFFT::~RealFFT() = default;

bool selector_supported(unsigned selector)
{
    const cpu_features& f = get_cpu_features();
    switch (selector) {
    case 0:
        return f.has_avx2 || f.has_avx || f.has_sse2;
    case 1:
        return f.has_sse2;
    case 2:
        return f.has_avx;
    case 3:
        return f.has_avx2;
    default:
        return false;
    }
}

// The first class that the processor has and the selector allows wins. A
// selector the processor cannot honour does not fall back to a lower class:
// 3 without AVX2 fails all three tests.
RealFFTPtr create_real_fft(int N, unsigned selector)
{
    if ((selector == 0 || selector == 3) && selector_supported(3)) {
        return RealFFTPtr(ZFFT_AVX2::make_real_fft(N));
    }
    if ((selector & ~2u) == 0 && selector_supported(2)) {
        return RealFFTPtr(ZFFT_AVX::make_real_fft(N));
    }
    if (selector <= 1 && selector_supported(1)) {
        return RealFFTPtr(ZFFT_SSE2::make_real_fft(N));
    }
    refuse();
}

// Kept in the factory's shape, so that the two stay one pair: every branch
// deletes through the virtual destructor.
void destroy_real_fft(RealFFT* p)
{
    const cpu_features& f = get_cpu_features();
    if (f.has_avx2) {
        delete p;
    } else if (f.has_avx) {
        delete p;
    } else if (f.has_sse2) {
        delete p;
    } else {
        refuse();
    }
}

} // namespace ZFFT
