// Every operation of every Stockham class, in every variant, against FFTW
// and a direct DFT in long double; randomised self-checks; and the same bits
// on any number of threads.
#include "fft_kernels_cases.h"

#include <cmath>
#include <random>

namespace fft_test {
namespace {

class Stockham : public testing::TestWithParam<ClassCase> {};

TEST_P(Stockham, EveryOperationUpTo2To16)
{
    for (int log_n = 1; log_n <= 16 && !HasFailure(); ++log_n) {
        FFT_TEST_MAKE_OR_SKIP(fft, GetParam(), 1 << log_n);
        expect_all_operations(*fft, fftw_reference(log_n));
        if (log_n <= 10) {
            // The small sizes once more against a reference independent of FFTW.
            const cvector x = random_complex(1L << log_n, 7u * log_n);
            expect_all_operations(*fft, Reference{x, naive_dft(x, -1), naive_dft(x, +1)}, true);
        }
    }
}

complex_t times(complex_t a, complex_t b)
{
    return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}

complex_t unit(long double turns)
{
    const long double a = 6.283185307179586476925286766559L * turns;
    return {static_cast<double>(std::cos(a)), static_cast<double>(std::sin(a))};
}

// Linearity, an impulse at a random place, and a time shift, on sizes on both
// sides of every threshold and vector width.
TEST_P(Stockham, LinearityImpulseAndTimeShift)
{
    using Op = void (ZFFT::ComplexFFT::*)(complex_t*, complex_t*);
    std::mt19937_64 engine(42);
    std::uniform_real_distribution<double> dist(-1.0, 1.0);
    for (int log_n : {1, 2, 3, 4, 5, 6, 7, 8, 10, 11, 12, 13}) {
        const int n = 1 << log_n;
        FFT_TEST_MAKE_OR_SKIP(fft, GetParam(), n);
        const auto apply = [&fft](Op op, cvector x) {
            cvector work(x.size());
            ((*fft).*op)(x.data(), work.data());
            return x;
        };
        for (const auto& [op, sign] : {std::pair{&ZFFT::ComplexFFT::forward_raw, -1}, {&ZFFT::ComplexFFT::inverse, +1}}) {
            SCOPED_TRACE("sign " + std::to_string(sign) + ", N = " + std::to_string(n));
            // F(a x + b y) = a F(x) + b F(y).
            const cvector x = random_complex(n, 11u * log_n), y = random_complex(n, 13u * log_n);
            const complex_t a{dist(engine), dist(engine)}, b{dist(engine), dist(engine)};
            const cvector fx = apply(op, x), fy = apply(op, y);
            cvector mix(n), expected(n);
            for (int j = 0; j < n; ++j) {
                const complex_t ax = times(a, x[j]), by = times(b, y[j]), afx = times(a, fx[j]), bfy = times(b, fy[j]);
                mix[j] = {ax.re + by.re, ax.im + by.im};
                expected[j] = {afx.re + bfy.re, afx.im + bfy.im};
            }
            EXPECT_TRUE(close(apply(op, mix), expected, tolerance(n))) << "linearity";

            // An impulse at j0 gives the ramp exp(sign 2 pi i j0 k / N).
            const int j0 = std::uniform_int_distribution<int>(0, n - 1)(engine);
            cvector impulse(n, complex_t{0, 0});
            impulse[j0] = {1, 0};
            for (int k = 0; k < n; ++k) {
                expected[k] = unit(sign * static_cast<long double>((std::int64_t{j0} * k) % n) / n);
            }
            EXPECT_TRUE(close(apply(op, impulse), expected, tolerance(n))) << "impulse at " << j0;

            // x shifted by one sample: each bin turns by exp(sign 2 pi i k / N).
            cvector shifted(n);
            for (int j = 0; j < n; ++j) {
                shifted[(j + 1) % n] = x[j];
                expected[j] = times(fx[j], unit(sign * static_cast<long double>(j) / n));
            }
            EXPECT_TRUE(close(apply(op, shifted), expected, tolerance(n))) << "time shift";
        }
    }
}

// The parallel loops only divide independent work. The sweep crosses every
// size from which a class goes parallel.
TEST_P(Stockham, SameBitsOnAnyNumberOfThreads)
{
    for (int n = 1024; n <= 32768; n *= 2) {
        FFT_TEST_MAKE_OR_SKIP(fft, GetParam(), n);
        expect_same_bits_on_any_thread_count(*fft, random_complex(n, 77));
    }
}

INSTANTIATE_TEST_SUITE_P(, Stockham, testing::ValuesIn(stockham_cases()), case_name);

} // namespace
} // namespace fft_test
