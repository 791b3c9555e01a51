// The largest sizes, labelled slow: the six-step class up to 2^24 points,
// the real transform at 2^21 and 2^22 samples, the mixed-radix class at the
// plan's first size past the power-of-two classes.
#include "fft_reference.h"

#include <string>

namespace fft_test {
namespace {

class SixStepLarge : public testing::TestWithParam<ZFFT::Variant> {};

// Every variant up to 2^21, on 1, 2 and 3 threads up to 2^20; the three
// largest sizes in the best variant only, and only the quick operations, to
// keep the run short.
TEST_P(SixStepLarge, MatchesFftwFrom2To19To2To24)
{
    const int last = GetParam() == supported_variants().back() ? 24 : 21;
    for (int log_n = 19; log_n <= last; ++log_n) {
        SCOPED_TRACE("log_N " + std::to_string(log_n));
        auto fft = ZFFT::create_complex_fft(GetParam(), ZFFT::Algorithm::SixStep, 1 << log_n);
        ASSERT_TRUE(fft);
        expect_all_operations(*fft, fftw_reference(log_n), log_n > 20);
        if (log_n <= 20) {
            expect_same_bits_on_any_thread_count(*fft, fftw_reference(log_n).x);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(, SixStepLarge, testing::ValuesIn(supported_variants()), variant_test_name);

TEST(LargeSizes, RealTransformAt2To21And2To22)
{
    for (unsigned selector : supported_selectors()) {
        for (int n : {1 << 21, 1 << 22}) {
            SCOPED_TRACE(selector_name(selector) + " n=" + std::to_string(n));
            ZFFT::RealFFTPtr fft = ZFFT::create_real_fft(n, selector);
            const std::vector<double> x = random_reals(n, 21u);
            cvector y(static_cast<std::size_t>(n));
            fft->forward_raw(x.data(), y.data());
            EXPECT_TRUE(close(y, fftw_real_dft(x), tolerance(n)));
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
    auto fft = ZFFT::create_complex_fft(v, ZFFT::Algorithm::MixedRadix, n);
    ASSERT_TRUE(fft);
    cvector data = random_complex(n, 25u), work(data.size());
    const cvector want = fftw_dft(data, -1);
    fft->forward_raw(data.data(), work.data());
    EXPECT_TRUE(close(data, want, tolerance(n)));
}

} // namespace
} // namespace fft_test
