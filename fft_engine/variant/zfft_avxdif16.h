// ZFFT_AVXDIF16::FFT0: power-of-two complex transforms by radix-16 decimation in frequency,
// every size a chain of stages specialised at compile time.
#pragma once

#include "zfft_stockham_fft0.h"

namespace ZFFT_VARIANT {
namespace ZFFT_AVXDIF16 {

constexpr int RADIX = 16;
// From this size on: parallel chains on the short table.
constexpr int THRESHOLD = 4096;

class FFT0 final : public StockhamFFT0<RADIX, THRESHOLD> {
public:
    void forward(complex_t* x, complex_t* y) override;
    void forward_raw(complex_t* x, complex_t* y) override;
    void forward_unitary(complex_t* x, complex_t* y) override;
    void inverse(complex_t* x, complex_t* y) override;
    void inverse_unitary(complex_t* x, complex_t* y) override;
    void inverse_norm(complex_t* x, complex_t* y) override;
};

} // namespace ZFFT_AVXDIF16
} // namespace ZFFT_VARIANT
