// The complex transform interface of one variant. x holds the data and
// receives the result; y is work space of the same size, whose content on
// entry does not matter and on return is undefined. No operation checks its
// pointers or allocates.
#pragma once

#include "zfft_variant.h"

namespace ZFFT_VARIANT {

class FFT_IF {
public:
    virtual ~FFT_IF() = default;
    virtual void setup(int n) = 0;
    virtual void setup_log2(int log_N) = 0;
    // Scaled by 1/N.
    virtual void forward(complex_t* x, complex_t* y) = 0;
    // Unscaled.
    virtual void forward_raw(complex_t* x, complex_t* y) = 0;
    // Scaled by 1/sqrt(N).
    virtual void forward_unitary(complex_t* x, complex_t* y) = 0;
    // Scaled by 1/N; calls forward.
    virtual void forward_norm(complex_t* x, complex_t* y) { forward(x, y); }
    // Unscaled.
    virtual void inverse(complex_t* x, complex_t* y) = 0;
    // Unscaled; calls inverse.
    virtual void inverse_raw(complex_t* x, complex_t* y) { inverse(x, y); }
    // Scaled by 1/sqrt(N).
    virtual void inverse_unitary(complex_t* x, complex_t* y) = 0;
    // Scaled by 1/N.
    virtual void inverse_norm(complex_t* x, complex_t* y) = 0;

    // forward_raw of the N values at in, which are only read and may be x
    // itself; the result stands in x. The real transform hands its samples
    // over this way, so that a first pass that reads in directly saves it a
    // copy.
    virtual void forward_raw_from(const complex_t* in, complex_t* x, complex_t* y) = 0;

    // The class's full name, "ZFFT_AVX2::ZFFT_AVXDIF8::FFT0" and so on.
    virtual const char* name() const = 0;
};

} // namespace ZFFT_VARIANT
