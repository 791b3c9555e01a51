// The makers that each variant exports, declared once outside the variants.
#pragma once

#include "zfft/zfft_variants.h"

namespace ZFFT_AVX2 {
ZFFT::ComplexFFT* make_complex_fft(ZFFT::Algorithm a, int n);
}
namespace ZFFT_AVX {
ZFFT::ComplexFFT* make_complex_fft(ZFFT::Algorithm a, int n);
}
namespace ZFFT_SSE2 {
ZFFT::ComplexFFT* make_complex_fft(ZFFT::Algorithm a, int n);
}
