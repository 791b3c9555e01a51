// Twiddle tables of the power-of-two classes. Every entry is computed
// directly with one cosine and one sine: no recurrence and no octant folding,
// so that each entry is as accurate as the library's functions make it. The
// tables always hold the forward twiddles exp(-2 pi i k / N); the inverse
// kernels conjugate them as they load.
#pragma once

#include "zfft_variant.h"

namespace ZFFT_VARIANT {

// Table of the parallel chains, N/r entries: W[p] = exp(i p theta0) with
// theta0 = -2 pi / N. A stage at stride s reads w1 = W[s p] and forms the
// higher powers by complex products. Does nothing when N < r.
void init_twiddles_short(int r, int N, complex_t* W);

// Table of the single-threaded chains, 2N entries. With m = N/r, the power k
// (1..r-1) of angle index p (0..m-1) is stored twice: at W[(k-1) m + p], one
// run per k for the stride-1 stage that loads neighbouring p together, and at
// W[N + p r + k], all powers of one p side by side for the strided stages.
// The other entries are neither written nor read. Does nothing when N < r.
void init_twiddles_long(int r, int N, complex_t* W);

} // namespace ZFFT_VARIANT
