#include "zfft/zfft_real_fft.h"
#include "zfft/zfft_variants.h"
#include "zfft_variant_access.h"

namespace ZFFT {

ComplexFFT::ComplexFFT() = default;
ComplexFFT::~ComplexFFT() = default;

const char* variant_name(Variant v)
{
    switch (v) {
    case Variant::SSE2:
        return "SSE2";
    case Variant::AVX:
        return "AVX";
    case Variant::AVX2:
        return "AVX2";
    }
    return "?";
}

const char* algorithm_name(Algorithm a)
{
    switch (a) {
    case Algorithm::DIF4:
        return "DIF4";
    case Algorithm::DIT4:
        return "DIT4";
    case Algorithm::DIF8:
        return "DIF8";
    case Algorithm::DIT8:
        return "DIT8";
    case Algorithm::DIF16:
        return "DIF16";
    case Algorithm::SixStep:
        return "SixStep";
    case Algorithm::MixedRadix:
        return "MixedRadix";
    case Algorithm::Planned:
        return "Planned";
    }
    return "?";
}

bool variant_supported(Variant v)
{
    return selector_supported(static_cast<unsigned>(v));
}

std::unique_ptr<ComplexFFT> create_complex_fft(Variant v, Algorithm a, int n)
{
    if (!variant_supported(v)) {
        return nullptr;
    }
    switch (v) {
    case Variant::SSE2:
        return std::unique_ptr<ComplexFFT>(ZFFT_SSE2::make_complex_fft(a, n));
    case Variant::AVX:
        return std::unique_ptr<ComplexFFT>(ZFFT_AVX::make_complex_fft(a, n));
    case Variant::AVX2:
        return std::unique_ptr<ComplexFFT>(ZFFT_AVX2::make_complex_fft(a, n));
    }
    return nullptr;
}

} // namespace ZFFT
