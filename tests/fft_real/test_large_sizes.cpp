// The largest sizes, labelled slow: the six-step class up to 2^24 points,
// the real transform at 2^21 and 2^22 samples, the mixed-radix class at the
// plan's first size past the power-of-two classes.
#include "six_step_check.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using ZFFT::Algorithm;
using ZFFT::complex_t;
using namespace fft_test;

class SixStepLarge : public ::testing::TestWithParam<ZFFT::Variant> {};

// Every variant up to 2^21, on 1, 2 and 3 threads up to 2^20; the three
// largest sizes in the best variant only, unscaled both ways, to keep the
// run short.
TEST_P(SixStepLarge, MatchesFftwFrom2To19To2To24)
{
    const int last = GetParam() == supported_variants().back() ? 24 : 21;
    for (int log_n = 19; log_n <= last; ++log_n) {
        check_six_step(GetParam(), log_n, log_n <= 20, log_n <= 20);
    }
}

INSTANTIATE_TEST_SUITE_P(, SixStepLarge, ::testing::ValuesIn(supported_variants()),
                         [](const ::testing::TestParamInfo<ZFFT::Variant>& info) {
                             return std::string(ZFFT::variant_name(info.param));
                         });

TEST(LargeSizes, RealTransformAt2To21And2To22)
{
    for (unsigned selector : supported_selectors()) {
        for (int n : {1 << 21, 1 << 22}) {
            SCOPED_TRACE(selector_name(selector) + " n=" + std::to_string(n));
            ZFFT::RealFFTPtr fft = ZFFT::create_real_fft(n, selector);
            const std::vector<double> x = random_reals(n, 21u);
            std::vector<complex_t> y(static_cast<std::size_t>(n));
            fft->forward_raw(x.data(), y.data());
            EXPECT_LT(relative_rms(y.data(), fftw_real_dft(x)), tolerance(n));
            std::vector<double> back(x.size());
            fft->inverse_norm(y.data(), back.data());
            EXPECT_LT(relative_rms(back.data(), x), tolerance(n));
        }
    }
}

// 2^25 points: eight radix-8 stages and a final 2-point stage, with a table
// of 2^25 + 1 entries.
TEST(LargeSizes, MixedRadixAt2To25)
{
    const int n = 1 << 25;
    const ZFFT::Variant v = supported_variants().back();
    EXPECT_EQ(ZFFT::planned_class_name(v, n), std::string("ZFFT_") + ZFFT::variant_name(v) + "::ZFFT_MixedRadix::FFT0");
    auto fft = ZFFT::create_complex_fft(v, Algorithm::MixedRadix, n);
    const std::vector<complex_t> x = random_complex(n, 25u);
    std::vector<complex_t> data = x;
    std::vector<complex_t> work(x.size());
    fft->forward_raw(data.data(), work.data());
    EXPECT_LT(relative_rms(data.data(), fftw_dft(x, -1)), tolerance(n));
}

} // namespace
