// The mixed-radix and six-step classes against the direct sum and FFTW, and
// the class that the plan gives every size.
#include "fft_reference.h"

#include <set>
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

// Whatever class the plan gives a power of two, it is one of the variant's
// own and its transform is right; one point gets none, and every size that
// is no power of two the mixed-radix class.
TEST_P(Plan, EverySizeGetsAClassOfItsVariantThatTransformsIt)
{
    const std::string prefix = std::string("ZFFT_") + ZFFT::variant_name(GetParam()) + "::ZFFT_";
    const std::set<std::string> classes = {"AVXDIF4", "AVXDIT4", "AVXDIF8", "AVXDIT8", "AVXDIF16", "SixStep"};
    EXPECT_EQ(ZFFT::planned_class_name(GetParam(), 1), "");
    for (int log_n = 1; log_n <= 24; ++log_n) {
        const std::string name = ZFFT::planned_class_name(GetParam(), 1 << log_n);
        ASSERT_GT(name.size(), prefix.size() + 6) << "log_N " << log_n << ": " << name;
        EXPECT_EQ(name.substr(0, prefix.size()), prefix) << name;
        EXPECT_TRUE(classes.count(name.substr(prefix.size(), name.size() - prefix.size() - 6)) == 1) << name;
        EXPECT_EQ(name.substr(name.size() - 6), "::FFT0") << name;
        if (log_n <= 18) {
            auto fft = ZFFT::create_complex_fft(GetParam(), Algorithm::Planned, 1 << log_n);
            ASSERT_TRUE(fft);
            expect_all_operations(*fft, fftw_reference(log_n), true);
        }
    }
    for (int n : {0, 3, 6, 12, 100, 1000, 3 << 12}) {
        EXPECT_EQ(ZFFT::planned_class_name(GetParam(), n), prefix + "MixedRadix::FFT0") << n;
    }
}

INSTANTIATE_TEST_SUITE_P(, Plan, testing::ValuesIn(supported_variants()), variant_test_name);

} // namespace
} // namespace fft_test
