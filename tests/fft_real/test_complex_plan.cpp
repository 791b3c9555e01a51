// The mixed-radix class against the direct sum and FFTW, and the class that
// the plan gives every size.
#include "fft_reference.h"

#include <gtest/gtest.h>

#include <cmath>
#include <omp.h>
#include <string>

namespace {

using ZFFT::Algorithm;
using ZFFT::complex_t;
using namespace fft_test;

class MixedRadix : public ::testing::TestWithParam<ZFFT::Variant> {};

TEST_P(MixedRadix, MatchesDirectSumInAllScalings)
{
    for (int n : {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 15, 16, 21, 25, 27, 49, 64, 77, 121, 125, 210, 243,
                  1000, 1024, 2310}) {
        SCOPED_TRACE("n=" + std::to_string(n));
        auto fft = ZFFT::create_complex_fft(GetParam(), Algorithm::MixedRadix, n);
        ASSERT_TRUE(fft);
        const std::vector<complex_t> x = random_complex(n, 31u * static_cast<unsigned>(n));
        const std::vector<complex_t> fwd = naive_dft(x, -1);
        const std::vector<complex_t> inv = naive_dft(x, +1);
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
            {"forward_norm", &ZFFT::ComplexFFT::forward_norm, fwd, by_n},
            {"forward_unitary", &ZFFT::ComplexFFT::forward_unitary, fwd, by_sqrt_n},
            {"inverse", &ZFFT::ComplexFFT::inverse, inv, 1.0},
            {"inverse_raw", &ZFFT::ComplexFFT::inverse_raw, inv, 1.0},
            {"inverse_unitary", &ZFFT::ComplexFFT::inverse_unitary, inv, by_sqrt_n},
            {"inverse_norm", &ZFFT::ComplexFFT::inverse_norm, inv, by_n},
        };
        for (const auto& op : ops) {
            SCOPED_TRACE(op.name);
            std::vector<complex_t> data = x;
            std::vector<complex_t> work(x.size(), complex_t{1e300, 1e300});
            ((*fft).*op.op)(data.data(), work.data());
            std::vector<complex_t> want = op.want;
            for (complex_t& v : want) {
                v = {v.re * op.factor, v.im * op.factor};
            }
            EXPECT_LT(relative_rms(data.data(), want), tolerance(n))
                << "got (" << data[n - 1].re << "," << data[n - 1].im << ") want (" << want[n - 1].re << ","
                << want[n - 1].im << ") at the last bin";
        }
    }
}

// Sizes from 32768 run in one parallel region: they must match FFTW and
// give the same bits on 1, 2 and 3 threads.
TEST_P(MixedRadix, ParallelSizesMatchFftwOnAnyThreadCount)
{
    for (int n : {40000, 59049, 32768 * 3, 7 * 7 * 7 * 7 * 17}) {
        SCOPED_TRACE("n=" + std::to_string(n));
        auto fft = ZFFT::create_complex_fft(GetParam(), Algorithm::MixedRadix, n);
        const std::vector<complex_t> x = random_complex(n, 4u);
        std::vector<complex_t> first;
        for (int threads : {1, 2, 3}) {
            omp_set_num_threads(threads);
            std::vector<complex_t> data = x;
            std::vector<complex_t> work(x.size());
            fft->forward_raw(data.data(), work.data());
            if (first.empty()) {
                first = data;
                EXPECT_LT(relative_rms(data.data(), fftw_dft(x, -1)), tolerance(n));
            } else {
                EXPECT_TRUE(same_bits(first.data(), data.data(), first.size() * sizeof(complex_t)))
                    << threads << " threads";
            }
            fft->inverse_norm(data.data(), work.data());
            EXPECT_LT(relative_rms(data.data(), x), tolerance(n));
        }
        omp_set_num_threads(omp_get_num_procs());
    }
}

INSTANTIATE_TEST_SUITE_P(, MixedRadix, ::testing::ValuesIn(supported_variants()),
                         [](const ::testing::TestParamInfo<ZFFT::Variant>& info) {
                             return std::string(ZFFT::variant_name(info.param));
                         });

class Plan : public ::testing::TestWithParam<ZFFT::Variant> {};

TEST_P(Plan, EachSizeGetsTheClassOfTheTable)
{
    const std::string variant = ZFFT::variant_name(GetParam());
    const char* const by_log[] = {
        "",           "AVXDIT4", "AVXDIF4", "AVXDIT8", "AVXDIF4", "AVXDIT8", "AVXDIF8", "AVXDIF16", "AVXDIF8",
        "AVXDIF8",    "AVXDIF4", "AVXDIF16", "AVXDIT8", "AVXDIF8", "AVXDIT8", "AVXDIT8", "SixStep",  "AVXDIT8",
        "SixStep",    "SixStep", "SixStep",  "SixStep", "SixStep", "SixStep", "SixStep",
    };
    for (int log_n = 0; log_n <= 24; ++log_n) {
        const std::string want = log_n == 0 ? "" : "ZFFT_" + variant + "::ZFFT_" + by_log[log_n] + "::FFT0";
        EXPECT_EQ(ZFFT::planned_class_name(GetParam(), 1 << log_n), want) << "log_N " << log_n;
    }
    const std::string mixed = "ZFFT_" + variant + "::ZFFT_MixedRadix::FFT0";
    for (int n : {0, 3, 6, 12, 100, 1000, 3 << 12}) {
        EXPECT_EQ(ZFFT::planned_class_name(GetParam(), n), mixed) << "n " << n;
    }
}

INSTANTIATE_TEST_SUITE_P(, Plan, ::testing::ValuesIn(supported_variants()),
                         [](const ::testing::TestParamInfo<ZFFT::Variant>& info) {
                             return std::string(ZFFT::variant_name(info.param));
                         });

} // namespace
