// The makers that each variant exports, declared once outside the variants.
#pragma once

#include "zfft/zfft_real_fft.h"
#include "zfft/zfft_variants.h"

#include <cstdint>

namespace ZFFT_AVX2 {
ZFFT::ComplexFFT* make_complex_fft(ZFFT::Algorithm a, int n);
ZFFT::RealFFT* make_real_fft(int n);
const char* planned_class_name(int n);
std::uint64_t strongest_bin(const ZFFT::complex_t* X, std::uint64_t limit);
}
namespace ZFFT_AVX {
ZFFT::ComplexFFT* make_complex_fft(ZFFT::Algorithm a, int n);
ZFFT::RealFFT* make_real_fft(int n);
const char* planned_class_name(int n);
std::uint64_t strongest_bin(const ZFFT::complex_t* X, std::uint64_t limit);
}
namespace ZFFT_SSE2 {
ZFFT::ComplexFFT* make_complex_fft(ZFFT::Algorithm a, int n);
ZFFT::RealFFT* make_real_fft(int n);
const char* planned_class_name(int n);
std::uint64_t strongest_bin(const ZFFT::complex_t* X, std::uint64_t limit);
}
