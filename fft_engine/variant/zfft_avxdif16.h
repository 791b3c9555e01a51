// ZFFT_AVXDIF16::FFT0: power-of-two complex transforms by radix-16 decimation in frequency,
// every size a chain of stages specialised at compile time.
#pragma once

#include "zfft_plan.h"
#include "zfft_stockham_fft0.h"

namespace ZFFT_VARIANT {
namespace ZFFT_AVXDIF16 {

constexpr int RADIX = 16;

class FFT0 final : public StockhamFFT0<RADIX, THRESHOLD> {
public:
    const char* name() const override { return ZFFT_VARIANT_NAME "::ZFFT_AVXDIF16::FFT0"; }

protected:
    void pick_forward_chains(int log_N, chain_fn (&chains)[3]) const override;
    void pick_inverse_chains(int log_N, chain_fn (&chains)[3]) const override;
};

} // namespace ZFFT_AVXDIF16
} // namespace ZFFT_VARIANT
