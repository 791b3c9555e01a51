// Independent references for the engine's transforms: a direct DFT in long
// double and FFTW, plus the error measure and seeded inputs of the tests.
#pragma once

#include "zfft/zfft_complex.h"
#include "zfft/zfft_real_fft.h"
#include "zfft/zfft_variants.h"

#include <string>
#include <vector>

namespace fft_test {

using ZFFT::complex_t;

// Direct sum X[k] = sum x[j] exp(sign 2 pi i jk / n), in long double.
std::vector<complex_t> naive_dft(const std::vector<complex_t>& x, int sign);
std::vector<complex_t> naive_real_dft(const std::vector<double>& x);

// FFTW, unscaled. The real form returns all n bins, the upper half mirrored.
std::vector<complex_t> fftw_dft(const std::vector<complex_t>& x, int sign);
std::vector<complex_t> fftw_real_dft(const std::vector<double>& x);

// sqrt(sum |got - want|^2 / sum |want|^2); 0 when both are all zero.
double relative_rms(const complex_t* got, const std::vector<complex_t>& want);
double relative_rms(const double* got, const std::vector<double>& want);

// The tolerance of the engine: 1e-15 log2 n, at least 1e-15.
double tolerance(long n);

std::vector<double> random_reals(long n, unsigned seed);
std::vector<complex_t> random_complex(long n, unsigned seed);

// Bitwise equality of two arrays of doubles (NaN-safe, -0 distinct).
bool same_bits(const void* a, const void* b, std::size_t bytes);

// The real-transform selectors this processor can honour (0 always), and a
// test name for each: "Default", "SSE2", "AVX", "AVX2".
std::vector<unsigned> supported_selectors();
std::string selector_name(unsigned selector);

std::vector<ZFFT::Variant> supported_variants();

} // namespace fft_test
