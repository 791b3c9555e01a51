// The strongest bin of a spectrum by its power re^2 + im^2, without a square
// root, in the processor variant that create_real_fft would pick.
#pragma once

#include "zfft_complex.h"

#include <cstdint>

namespace ZFFT {

// The first j in [1, limit) whose power is strictly greater than 0.0 and than
// the power of every bin before it, or 1 when there is none. So bin 0 is never
// a candidate, the first of equal peaks wins, and a NaN power never wins.
// Reads X[1 .. limit-1] only; allocates nothing. Every variant gives the same
// answer, since each power is re * re + im * im, rounded the same way.
//
// selector as for create_real_fft: 0 the best variant, 1 SSE2, 2 AVX, 3 AVX2;
// throws std::domain_error("No supported CPU featureset found.") when the
// request cannot be honoured.
std::uint64_t strongest_bin(const complex_t* X, std::uint64_t limit, unsigned selector = 0);

} // namespace ZFFT
