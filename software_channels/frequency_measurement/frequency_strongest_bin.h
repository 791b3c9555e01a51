// The peak search of the estimator: the strongest bin of a spectrum by its
// power re^2 + im^2, without a square root.
#pragma once

#include "zfft/zfft_complex.h"

#include <cstdint>

// The first j in [1, limit) whose power is strictly greater than 0.0 and
// than the power of every bin before it, or 1 when there is none. So bin 0
// is never a candidate, the first of equal peaks wins, and a NaN power never
// wins. Reads X[1 .. limit-1] only; allocates nothing.
std::uint64_t strongestBin(const ZFFT::complex_t* X, std::uint64_t limit);
