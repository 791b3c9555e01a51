// ZFFT_AVXDIF8::FFT0: power-of-two complex transforms by radix-8 decimation in frequency,
// every size a chain of stages specialised at compile time.
#pragma once

#include "zfft_plan.h"
#include "zfft_stockham_fft0.h"

namespace ZFFT_VARIANT {
namespace ZFFT_AVXDIF8 {

constexpr int RADIX = 8;

class FFT0 final : public StockhamFFT0<RADIX, THRESHOLD> {
public:
    const char* name() const override { return ZFFT_VARIANT_NAME "::ZFFT_AVXDIF8::FFT0"; }

protected:
    void pick_forward_chains(int log_N, chain_fn (&chains)[3]) const override;
    void pick_inverse_chains(int log_N, chain_fn (&chains)[3]) const override;
};

// The single-threaded chains on their own, for callers that keep their own
// table: the rows of the six-step transform run them for log_N 1 to 12, also
// above this class's threshold. W must be the long table made by
// init_twiddles_long(8, 1 << log_N, W) (it may be null for log_N up to 3).
// x holds the data and receives the result, y is work space; both hold
// 2^log_N values. A log_N outside 1 to 12 does nothing.
constexpr int SINGLE_CHAIN_LOG_N_MAX = 12;
void forward_single(int log_N, complex_t* x, complex_t* y, const complex_t* W);         // 1/N
void forward_raw_single(int log_N, complex_t* x, complex_t* y, const complex_t* W);     // none
void forward_unitary_single(int log_N, complex_t* x, complex_t* y, const complex_t* W); // 1/sqrt(N)
void inverse_single(int log_N, complex_t* x, complex_t* y, const complex_t* W);         // none
void inverse_unitary_single(int log_N, complex_t* x, complex_t* y, const complex_t* W); // 1/sqrt(N)
void inverse_norm_single(int log_N, complex_t* x, complex_t* y, const complex_t* W);    // 1/N

} // namespace ZFFT_AVXDIF8
} // namespace ZFFT_VARIANT
