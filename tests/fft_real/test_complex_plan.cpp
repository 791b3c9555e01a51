// The mixed-radix and six-step classes against the direct sum and FFTW, and
// the class that the plan gives every size.
#include "fft_reference.h"

#include <string>

namespace fft_test {
namespace {

using ZFFT::Algorithm;

class MixedRadix : public testing::TestWithParam<ZFFT::Variant> {};

TEST_P(MixedRadix, MatchesDirectSumInAllScalings)
{
    for (int n : {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 15, 16, 21, 25, 27, 49, 64, 77, 121, 125, 210, 243,
                  1000, 1024, 2310}) {
        SCOPED_TRACE("n=" + std::to_string(n));
        auto fft = ZFFT::create_complex_fft(GetParam(), Algorithm::MixedRadix, n);
        ASSERT_TRUE(fft);
        const cvector x = random_complex(n, 31u * static_cast<unsigned>(n));
        expect_all_operations(*fft, Reference{x, naive_dft(x, -1), naive_dft(x, +1)});
    }
}

// Sizes from 32768 run in one parallel region.
TEST_P(MixedRadix, ParallelSizesMatchFftwOnAnyThreadCount)
{
    for (int n : {40000, 59049, 32768 * 3, 7 * 7 * 7 * 7 * 17}) {
        SCOPED_TRACE("n=" + std::to_string(n));
        auto fft = ZFFT::create_complex_fft(GetParam(), Algorithm::MixedRadix, n);
        ASSERT_TRUE(fft);
        const cvector x = random_complex(n, 4u);
        expect_all_operations(*fft, Reference{x, fftw_dft(x, -1), fftw_dft(x, +1)}, true);
        expect_same_bits_on_any_thread_count(*fft, x);
    }
}

INSTANTIATE_TEST_SUITE_P(, MixedRadix, testing::ValuesIn(supported_variants()), variant_test_name);

class SixStep : public testing::TestWithParam<ZFFT::Variant> {};

// Every size the class holds: the direct chains up to 32 points, the even
// and odd matrix forms above, single-threaded and parallel.
TEST_P(SixStep, MatchesFftwAtEverySizeUpTo2To18)
{
    for (int log_n = 1; log_n <= 18; ++log_n) {
        SCOPED_TRACE("log_N " + std::to_string(log_n));
        auto fft = ZFFT::create_complex_fft(GetParam(), Algorithm::SixStep, 1 << log_n);
        ASSERT_TRUE(fft);
        expect_all_operations(*fft, fftw_reference(log_n));
        if (log_n >= 13) {
            expect_same_bits_on_any_thread_count(*fft, fftw_reference(log_n).x);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(, SixStep, testing::ValuesIn(supported_variants()), variant_test_name);

class Plan : public testing::TestWithParam<ZFFT::Variant> {};

TEST_P(Plan, EachSizeGetsTheClassOfTheTable)
{
    const std::string variant = ZFFT::variant_name(GetParam());
    const char* const by_log[] = {
        "",        "AVXDIT4", "AVXDIF4", "AVXDIT8", "AVXDIF4", "AVXDIT8", "AVXDIF8", "AVXDIF16", "AVXDIF8",
        "AVXDIF8", "AVXDIF4", "AVXDIF16", "AVXDIT8", "AVXDIF8", "AVXDIT8", "AVXDIT8", "SixStep",  "AVXDIT8",
        "SixStep", "SixStep", "SixStep",  "SixStep", "SixStep", "SixStep", "SixStep",
    };
    for (int log_n = 0; log_n <= 24; ++log_n) {
        const std::string want = log_n == 0 ? "" : "ZFFT_" + variant + "::ZFFT_" + by_log[log_n] + "::FFT0";
        EXPECT_EQ(ZFFT::planned_class_name(GetParam(), 1 << log_n), want) << "log_N " << log_n;
    }
    for (int n : {0, 3, 6, 12, 100, 1000, 3 << 12}) {
        EXPECT_EQ(ZFFT::planned_class_name(GetParam(), n), "ZFFT_" + variant + "::ZFFT_MixedRadix::FFT0") << n;
    }
}

INSTANTIATE_TEST_SUITE_P(, Plan, testing::ValuesIn(supported_variants()), variant_test_name);

} // namespace
} // namespace fft_test
