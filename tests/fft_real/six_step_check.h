// Runs one size of the six-step class in every scaling against FFTW, and,
// when asked, on 1, 2 and 3 threads, which must agree bit for bit.
#pragma once

#include "fft_reference.h"

#include <gtest/gtest.h>

#include <cmath>
#include <omp.h>
#include <string>

namespace fft_test {

using ZFFT::Algorithm;

inline void check_six_step(ZFFT::Variant v, int log_n, bool vary_threads, bool all_scalings = true)
{
    const int n = 1 << log_n;
    SCOPED_TRACE("log_N " + std::to_string(log_n));
    auto fft = ZFFT::create_complex_fft(v, Algorithm::SixStep, n);
    ASSERT_TRUE(fft);
    const std::vector<complex_t> x = random_complex(n, 900u + static_cast<unsigned>(log_n));
    const std::vector<complex_t> fwd = fftw_dft(x, -1);
    const std::vector<complex_t> inv = fftw_dft(x, +1);
    const double by_n = 1.0 / n;
    const double by_sqrt_n = std::sqrt(1.0 / n);
    const struct {
        const char* name;
        void (ZFFT::ComplexFFT::*op)(complex_t*, complex_t*);
        const std::vector<complex_t>& want;
        double factor;
    } ops[] = {
        {"forward_raw", &ZFFT::ComplexFFT::forward_raw, fwd, 1.0},
        {"forward", &ZFFT::ComplexFFT::forward, fwd, by_n},
        {"forward_unitary", &ZFFT::ComplexFFT::forward_unitary, fwd, by_sqrt_n},
        {"inverse", &ZFFT::ComplexFFT::inverse, inv, 1.0},
        {"inverse_unitary", &ZFFT::ComplexFFT::inverse_unitary, inv, by_sqrt_n},
        {"inverse_norm", &ZFFT::ComplexFFT::inverse_norm, inv, by_n},
    };
    std::vector<complex_t> want(x.size());
    std::vector<complex_t> data(x.size());
    std::vector<complex_t> first(x.size());
    std::vector<complex_t> work(x.size());
    for (const auto& op : ops) {
        if (!all_scalings && op.factor != 1.0) {
            continue;
        }
        SCOPED_TRACE(op.name);
        for (std::size_t i = 0; i < x.size(); ++i) {
            want[i] = {op.want[i].re * op.factor, op.want[i].im * op.factor};
        }
        const std::vector<int> thread_counts = vary_threads ? std::vector<int>{1, 2, 3} : std::vector<int>{0};
        for (int threads : thread_counts) {
            if (threads > 0) {
                omp_set_num_threads(threads);
            }
            data = x;
            ((*fft).*op.op)(data.data(), work.data());
            if (threads <= 1) {
                first = data;
                const double err = relative_rms(data.data(), want);
                EXPECT_LT(err, tolerance(n)) << "got (" << data[1].re << "," << data[1].im << ") want ("
                                             << want[1].re << "," << want[1].im << ") at bin 1";
            } else {
                EXPECT_TRUE(same_bits(first.data(), data.data(), first.size() * sizeof(complex_t)))
                    << threads << " threads";
            }
        }
    }
    omp_set_num_threads(omp_get_num_procs());
}

} // namespace fft_test
