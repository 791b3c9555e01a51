// Makers of the variant's transform objects. Only plain pointers leave here,
// so that the code outside the variants never touches a variant's types.
#pragma once

#include "zfft/zfft_variants.h"
#include "zfft_fft_if.h"

namespace ZFFT_VARIANT {

// A fresh, not yet set up FFT0 of class `a`; null for Algorithm::Planned or a
// class this build does not have.
FFT_IF* make_fft0(ZFFT::Algorithm a);

// A transform of n complex points of the class that the plan gives n, set up
// the way FFTHandle does it; null when the plan makes no object (n = 1).
FFT_IF* make_planned_fft0(int n);

// An adapter to the ComplexFFT interface, set up for n points; null when the
// class cannot serve n.
ZFFT::ComplexFFT* make_complex_fft(ZFFT::Algorithm a, int n);

} // namespace ZFFT_VARIANT
