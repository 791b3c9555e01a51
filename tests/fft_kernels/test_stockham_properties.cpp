// Properties every transform must have, checked on random inputs with fixed
// seeds: linearity, impulses, a time shift against a phase ramp, constants,
// and results that do not depend on the number of threads.
#include "fft_kernels_cases.h"
#include "fft_reference.h"

#include <omp.h>

#include <cmath>
#include <random>

namespace fft_test {
namespace {

using Op = void (ZFFT::ComplexFFT::*)(complex_t*, complex_t*);

complex_t times(complex_t a, complex_t b)
{
    return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}

complex_t unit(long double turns)
{
    const long double a = 6.283185307179586476925286766559L * turns;
    return {static_cast<double>(std::cos(a)), static_cast<double>(std::sin(a))};
}

// Sizes on both sides of every threshold and the vector widths.
const int SELF_CHECK_LOGS[] = {1, 2, 3, 4, 5, 6, 7, 8, 10, 11, 12, 13};

class StockhamProperties : public testing::TestWithParam<ClassCase> {};

TEST_P(StockhamProperties, LinearityImpulseAndTimeShift)
{
    const ClassCase& c = GetParam();
    std::mt19937_64 engine(42);
    std::uniform_real_distribution<double> dist(-1.0, 1.0);
    for (int log_n : SELF_CHECK_LOGS) {
        const int n = 1 << log_n;
        FFT_TEST_MAKE_OR_SKIP(fft, c, n);
        const double tol = tolerance(log_n);
        const Op ops[] = {&ZFFT::ComplexFFT::forward_raw, &ZFFT::ComplexFFT::inverse};
        for (Op op : ops) {
            const int sign = op == ops[0] ? -1 : +1;

            // F(a x + b y) = a F(x) + b F(y).
            const cvector x = random_signal(n, 11 * log_n);
            const cvector y = random_signal(n, 13 * log_n);
            const complex_t a{dist(engine), dist(engine)};
            const complex_t b{dist(engine), dist(engine)};
            cvector mix(n);
            for (int j = 0; j < n; ++j) {
                const complex_t ax = times(a, x[j]), by = times(b, y[j]);
                mix[j] = {ax.re + by.re, ax.im + by.im};
            }
            const cvector fx = run(*fft, op, x), fy = run(*fft, op, y);
            cvector expected(n);
            for (int k = 0; k < n; ++k) {
                const complex_t afx = times(a, fx[k]), bfy = times(b, fy[k]);
                expected[k] = {afx.re + bfy.re, afx.im + bfy.im};
            }
            std::string diff = compare(run(*fft, op, mix), expected, tol);
            EXPECT_TRUE(diff.empty()) << "linearity, sign " << sign << ", N = " << n << ": " << diff;

            // An impulse at 0 gives exactly 1 in every bin; one at j0 the
            // ramp exp(sign 2 pi i j0 k / N).
            cvector impulse(n, complex_t{0, 0});
            impulse[0] = {1, 0};
            diff = compare_bits(run(*fft, op, impulse), cvector(n, complex_t{1, 0}));
            EXPECT_TRUE(diff.empty()) << "impulse at 0, sign " << sign << ", N = " << n << ": " << diff;
            const int j0 = std::uniform_int_distribution<int>(0, n - 1)(engine);
            impulse[0] = {0, 0};
            impulse[j0] = {1, 0};
            for (int k = 0; k < n; ++k) {
                expected[k] = unit(sign * static_cast<long double>((std::int64_t{j0} * k) % n) / n);
            }
            diff = compare(run(*fft, op, impulse), expected, tol);
            EXPECT_TRUE(diff.empty()) << "impulse at " << j0 << ", N = " << n << ": " << diff;

            // x shifted by one sample: each bin turns by exp(sign 2 pi i k / N).
            cvector shifted(n);
            for (int j = 0; j < n; ++j) {
                shifted[(j + 1) % n] = x[j];
            }
            for (int k = 0; k < n; ++k) {
                expected[k] = times(fx[k], unit(sign * static_cast<long double>(k) / n));
            }
            diff = compare(run(*fft, op, shifted), expected, tol);
            EXPECT_TRUE(diff.empty()) << "time shift, sign " << sign << ", N = " << n << ": " << diff;
        }

        // The normalised forward transform of a constant: the value at bin 0.
        const complex_t value{0.75, -0.5};
        cvector expected(n, complex_t{0, 0});
        expected[0] = value;
        const std::string diff =
            compare(run(*fft, &ZFFT::ComplexFFT::forward, cvector(n, value)), expected, tolerance(log_n));
        EXPECT_TRUE(diff.empty()) << "constant, N = " << n << ": " << diff;
    }
}

// Parallel sizes give the same bits on 1, 2 and 3 threads: the parallel
// loops only divide independent work.
TEST_P(StockhamProperties, SameBitsOnAnyNumberOfThreads)
{
    const ClassCase& c = GetParam();
    const int saved = omp_get_max_threads();
    for (int n : {c.threshold, 4 * c.threshold}) {
        FFT_TEST_MAKE_OR_SKIP(fft, c, n);
        const cvector x = random_signal(n, 77);
        for (Op op : {&ZFFT::ComplexFFT::forward, &ZFFT::ComplexFFT::inverse_unitary}) {
            omp_set_num_threads(1);
            const cvector one = run(*fft, op, x);
            for (int threads : {2, 3}) {
                omp_set_num_threads(threads);
                const std::string diff = compare_bits(run(*fft, op, x), one);
                EXPECT_TRUE(diff.empty()) << threads << " threads, N = " << n << ": " << diff;
            }
        }
    }
    omp_set_num_threads(saved);
}

INSTANTIATE_TEST_SUITE_P(Stockham, StockhamProperties, testing::ValuesIn(stockham_cases()), case_name);

} // namespace
} // namespace fft_test
