// Independent references for the engine's transforms (a direct DFT in long
// double and FFTW), seeded inputs, the error measure, and the checks that
// every complex class shares: all eight operations against a reference, and
// the same bits whatever the number of threads.
#pragma once

#include "zfft/zfft_complex.h"
#include "zfft/zfft_real_fft.h"
#include "zfft/zfft_variants.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace fft_test {

using ZFFT::complex_t;
using cvector = std::vector<complex_t>;

// Uniform values in [-1, 1), the same for the same seed.
std::vector<double> random_reals(long n, unsigned seed);
cvector random_complex(long n, unsigned seed);

// X[k] = sum x[j] exp(sign 2 pi i jk / n), summed in long double.
cvector naive_dft(const cvector& x, int sign);
cvector naive_real_dft(const std::vector<double>& x);

// FFTW, unscaled. The real form returns all n bins, the upper half mirrored.
cvector fftw_dft(const cvector& x, int sign);
cvector fftw_real_dft(const std::vector<double>& x);

// sqrt(sum |got - want|^2 / sum |want|^2), or the plain root when want is zero.
double relative_rms(const complex_t* got, const cvector& want);
double relative_rms(const double* got, const std::vector<double>& want);

// Every entry times c.
cvector scaled(cvector x, double c);

// The engine's accuracy bound: 1e-15 log2 n, at least 1e-15.
double tolerance(long n);

// Success when got is within tol of want in relative RMS error; otherwise the
// error and the worst entry side by side.
testing::AssertionResult close(const cvector& got, const cvector& want, double tol);

template <class T>
testing::AssertionResult same_bits(const std::vector<T>& a, const std::vector<T>& b)
{
    if (a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << "not the same bits";
}

// The unscaled transforms of x both ways: kernel exp(-2 pi i jk/N), exp(+...).
struct Reference {
    cvector x, forward, backward;
};
// Random 2^log_n points through FFTW, made once per process.
const Reference& fftw_reference(int log_n);

// All eight operations with their scalings against ref, and the round trips
// forward/inverse, forward_raw/inverse_norm, forward_unitary/inverse_unitary.
// `quick` keeps forward_raw, inverse and the first round trip.
void expect_all_operations(ZFFT::ComplexFFT& fft, const Reference& ref, bool quick = false);

// Every operation gives the same bits on 1, 2 and 3 threads.
void expect_same_bits_on_any_thread_count(ZFFT::ComplexFFT& fft, const cvector& x);

// The variants and real-transform selectors this processor can run, with the
// names tests are instantiated under ("AVX2"; "Default", "SSE2", ...).
std::vector<ZFFT::Variant> supported_variants();
std::string variant_test_name(const testing::TestParamInfo<ZFFT::Variant>& info);
std::vector<unsigned> supported_selectors();
std::string selector_name(unsigned selector);

} // namespace fft_test
