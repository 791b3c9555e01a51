// Access to every complex transform class of every processor variant, for
// tests and benchmarks that must run one class directly rather than through
// the plan that picks a class by size.
#pragma once

#include "zfft_complex.h"

#include <memory>
#include <string>

namespace ZFFT {

enum class Variant : unsigned { SSE2 = 1, AVX = 2, AVX2 = 3 };

enum class Algorithm {
    DIF4,        // ZFFT_AVXDIF4::FFT0
    DIT4,        // ZFFT_AVXDIT4::FFT0
    DIF8,        // ZFFT_AVXDIF8::FFT0
    DIT8,        // ZFFT_AVXDIT8::FFT0
    DIF16,       // ZFFT_AVXDIF16::FFT0
    SixStep,     // ZFFT_SixStep::FFT0
    MixedRadix,  // ZFFT_MixedRadix::FFT0
    Planned,     // whatever FFTHandle's plan picks for the size
};

const char* variant_name(Variant v);     // "SSE2", "AVX", "AVX2"
const char* algorithm_name(Algorithm a); // "DIF4", ... "Planned"

// True when this processor can run the variant's code: selector_supported
// of the variant's selector.
bool variant_supported(Variant v);

// A complex transform of one class of one variant: the eight operations of
// the variant's FFT_IF, with x as data and result and y as work space, both
// N values. Made by create_complex_fft; owns the variant's object.
class ComplexFFT {
public:
    virtual ~ComplexFFT();
    virtual int size() const = 0;
    virtual void forward(complex_t* x, complex_t* y) = 0;
    virtual void forward_raw(complex_t* x, complex_t* y) = 0;
    virtual void forward_unitary(complex_t* x, complex_t* y) = 0;
    virtual void forward_norm(complex_t* x, complex_t* y) = 0;
    virtual void inverse(complex_t* x, complex_t* y) = 0;
    virtual void inverse_raw(complex_t* x, complex_t* y) = 0;
    virtual void inverse_unitary(complex_t* x, complex_t* y) = 0;
    virtual void inverse_norm(complex_t* x, complex_t* y) = 0;

protected:
    ComplexFFT();
};

// A transform of n complex points of class `a` in variant `v`, set up the way
// FFTHandle sets up that class (setup_log2 for the power-of-two classes,
// setup for the mixed-radix one). Null when the variant is not supported by
// this processor, or when the class cannot serve n (a power-of-two class and
// an n that is not a power of two, or above 2^24).
std::unique_ptr<ComplexFFT> create_complex_fft(Variant v, Algorithm a, int n);

// The full name of the class that FFTHandle's plan makes for n complex
// points in variant `v` (for instance "ZFFT_AVX::ZFFT_MixedRadix::FFT0"), or
// an empty text when it makes none or the variant is not supported.
std::string planned_class_name(Variant v, int n);

} // namespace ZFFT
