// Independent references for the complex transforms under test: a direct
// DFT in long double, FFTW, and the comparisons that report the first
// differing values side by side.
#pragma once

#include "zfft/zfft_complex.h"

#include <cstdint>
#include <string>
#include <vector>

namespace fft_test {

using ZFFT::complex_t;
using cvector = std::vector<complex_t>;

double nan_value();

// Uniform values in [-1, 1), the same for the same seed.
cvector random_signal(std::size_t n, std::uint64_t seed);

// sum_j x[j] exp(sign 2 pi i j k / n), accumulated in long double.
cvector naive_dft(const cvector& x, int sign);

// FFTW's unscaled transform, sign -1 (forward) or +1 (inverse).
cvector fftw_dft(const cvector& x, int sign);

// sqrt(sum |a - b|^2 / sum |b|^2), or the plain RMS of a when b is all zero.
double relative_rms_error(const cvector& actual, const cvector& expected);

// Every entry times c.
cvector scaled(cvector x, double c);

// Empty when the two agree to `tolerance` in relative RMS error; otherwise a
// report with the error and the first entries that differ, side by side.
std::string compare(const cvector& actual, const cvector& expected, double tolerance);

// Empty when the two are equal bit for bit; otherwise the first difference.
std::string compare_bits(const cvector& actual, const cvector& expected);

// The tolerance of a transform of 2^log_n points in relative RMS error.
inline double tolerance(int log_n)
{
    return 1e-15 * log_n;
}

// Random input of 2^log_n points and FFTW's unscaled transforms of it in both
// directions, made once per process and shared by all classes.
struct Reference {
    cvector x;
    cvector forward;  // kernel exp(-2 pi i jk / N)
    cvector backward; // kernel exp(+2 pi i jk / N)
};
const Reference& reference(int log_n);

// x through op of fft, with y full of NaN: the content of the work space on
// entry must not matter.
template <class Fft, class Op>
cvector run(Fft& fft, Op op, cvector x)
{
    cvector y(x.size(), complex_t{nan_value(), nan_value()});
    (fft.*op)(x.data(), y.data());
    return x;
}

} // namespace fft_test
