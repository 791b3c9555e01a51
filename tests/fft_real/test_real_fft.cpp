// The real transform against FFTW's r2c and a direct long double DFT, its
// round trips, and the factory's choice of variant.
#include "fft_reference.h"

#include <cxxabi.h>

#include <cmath>
#include <memory>
#include <stdexcept>
#include <string>
#include <typeinfo>

namespace fft_test {
namespace {

class RealTransform : public testing::TestWithParam<unsigned> {
protected:
    ZFFT::RealFFTPtr make(int n) const { return ZFFT::create_real_fft(n, GetParam()); }
};

// What every forward spectrum must be, whatever its values: exact zeros for
// the imaginary parts of the two real bins, an exact mirror.
void expect_full_spectrum(const cvector& y, long n)
{
    ASSERT_EQ(y[0].im, 0.0);
    ASSERT_FALSE(std::signbit(y[0].im));
    if (n >= 2) {
        ASSERT_EQ(y[n / 2].im, 0.0);
    }
    for (long k = 1; k < n / 2; ++k) {
        ASSERT_EQ(y[n - k].re, y[k].re) << "k=" << k;
        ASSERT_EQ(y[n - k].im, -y[k].im) << "k=" << k;
    }
}

TEST_P(RealTransform, ForwardMatchesFftwAndDirectSum)
{
    std::vector<int> sizes{1, 2, 6, 10, 12, 14, 30, 98, 100, 1000, 2000, 2 * 3 * 5 * 7 * 11, 65538, 40000};
    for (int n = 4; n <= (1 << 20); n *= 2) {
        sizes.push_back(n);
    }
    for (int n : sizes) {
        SCOPED_TRACE("n=" + std::to_string(n));
        const std::vector<double> x = random_reals(n, 1000u + static_cast<unsigned>(n));
        const std::vector<double> x_copy = x;
        ZFFT::RealFFTPtr fft = make(n);
        cvector y(static_cast<std::size_t>(n), complex_t{7.0, 7.0});
        fft->forward_raw(x.data(), y.data());
        ASSERT_TRUE(same_bits(x, x_copy)) << "input changed";
        expect_full_spectrum(y, n);
        const cvector want = fftw_real_dft(x);
        EXPECT_TRUE(close(y, want, tolerance(n))) << "against FFTW";
        if (n <= 2000) {
            EXPECT_TRUE(close(y, naive_real_dft(x), tolerance(n))) << "against the direct sum";
        }

        // The scaled forms are the same spectrum times 1/N and 1/sqrt(N); one
        // sample is never scaled.
        const double by_n = n > 1 ? 1.0 / n : 1.0, by_sqrt_n = n > 1 ? 1.0 / std::sqrt(double(n)) : 1.0;
        for (const auto& [op, factor] : {std::pair{&ZFFT::RealFFT::forward, by_n},
                                         {&ZFFT::RealFFT::forward_norm, by_n},
                                         {&ZFFT::RealFFT::forward_unitary, by_sqrt_n}}) {
            ((*fft).*op)(x.data(), y.data());
            expect_full_spectrum(y, n);
            EXPECT_TRUE(close(y, scaled(want, factor), tolerance(n)));
        }
    }
}

TEST_P(RealTransform, PairsOfForwardAndInverseGiveBackTheInput)
{
    using R = ZFFT::RealFFT;
    const struct {
        const char* name;
        void (R::*forward)(const double*, complex_t*);
        void (R::*inverse)(complex_t*, double*);
    } pairs[] = {
        {"forward/inverse", &R::forward, &R::inverse},
        {"forward_norm/inverse_raw", &R::forward_norm, &R::inverse_raw},
        {"forward_raw/inverse_norm", &R::forward_raw, &R::inverse_norm},
        {"forward_unitary/inverse_unitary", &R::forward_unitary, &R::inverse_unitary},
    };
    for (int n : {1, 4, 6, 8, 14, 30, 64, 100, 256, 1000, 4096, 16384, 32768, 65536, 262144}) {
        ZFFT::RealFFTPtr fft = make(n);
        const std::vector<double> x = random_reals(n, 77u + static_cast<unsigned>(n));
        for (const auto& pair : pairs) {
            SCOPED_TRACE(std::string(pair.name) + " n=" + std::to_string(n));
            cvector y(static_cast<std::size_t>(n));
            ((*fft).*pair.forward)(x.data(), y.data());
            // The inverse reads only the half spectrum: spoil the rest.
            for (int k = n / 2 + 1; k < n; ++k) {
                y[k] = {1e300, -1e300};
            }
            std::vector<double> back(static_cast<std::size_t>(n), 5.0);
            ((*fft).*pair.inverse)(y.data(), back.data());
            EXPECT_LT(relative_rms(back.data(), x), tolerance(n));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(, RealTransform, testing::ValuesIn(supported_selectors()),
                         [](const testing::TestParamInfo<unsigned>& info) { return selector_name(info.param); });

std::string type_name(const ZFFT::RealFFT& fft)
{
    int status = 0;
    std::unique_ptr<char, decltype(&std::free)> name(
        abi::__cxa_demangle(typeid(fft).name(), nullptr, nullptr, &status), &std::free);
    return name ? name.get() : "";
}

// A selector names its variant; what the processor cannot run is refused.
TEST(RealTransformFactory, SelectorPicksTheVariantOrRefuses)
{
    const char* const types[] = {"", "ZFFT_SSE2::RFFT", "ZFFT_AVX::RFFT", "ZFFT_AVX2::RFFT"};
    for (unsigned selector : {1u, 2u, 3u, 4u, 6u, 0xFFFFFFFFu}) {
        SCOPED_TRACE("selector " + std::to_string(selector));
        if (ZFFT::selector_supported(selector)) {
            ZFFT::RealFFTPtr fft = ZFFT::create_real_fft(64, selector);
            ASSERT_TRUE(fft);
            EXPECT_EQ(type_name(*fft), types[selector]);
        } else {
            try {
                ZFFT::create_real_fft(64, selector);
                ADD_FAILURE() << "no exception";
            } catch (const std::domain_error& e) {
                EXPECT_STREQ(e.what(), "No supported CPU featureset found.");
            }
        }
    }
    ZFFT::destroy_real_fft(nullptr);
}

// Left to choose, the factory gives the best variant this processor runs:
// the same type and, at sizes where the variants round differently, the
// same bits.
TEST(RealTransformFactory, ChoiceIsTheBestVariantThatRunsHere)
{
    ASSERT_TRUE(ZFFT::selector_supported(0));
    unsigned best = 3;
    while (!ZFFT::selector_supported(best)) {
        --best;
    }
    for (int n : {64, 1000, 65536}) {
        ZFFT::RealFFTPtr chosen = ZFFT::create_real_fft(n, 0);
        ZFFT::RealFFTPtr named = ZFFT::create_real_fft(n, best);
        EXPECT_EQ(type_name(*chosen), type_name(*named));
        const std::vector<double> x = random_reals(n, 17);
        cvector a(static_cast<std::size_t>(n)), b(static_cast<std::size_t>(n));
        chosen->forward_raw(x.data(), a.data());
        named->forward_raw(x.data(), b.data());
        EXPECT_TRUE(same_bits(a, b)) << "n=" << n;
    }
}

TEST(RealTransformFactory, SetupAgainReplacesTheSize)
{
    ZFFT::RealFFTPtr fft = ZFFT::create_real_fft(16, 0);
    for (int n : {1000, 8, 65536, 6}) {
        fft->setup(n);
        const std::vector<double> x = random_reals(n, 5);
        cvector y(static_cast<std::size_t>(n));
        fft->forward_raw(x.data(), y.data());
        EXPECT_TRUE(close(y, fftw_real_dft(x), tolerance(n))) << "n=" << n;
    }
    // Sizes below 1 make transforms that touch nothing.
    for (int n : {0, -4}) {
        fft->setup(n);
        complex_t y{3, 4};
        double x = 1.5;
        fft->forward_raw(&x, &y);
        fft->inverse(&y, &x);
        EXPECT_EQ(y.re, 3);
        EXPECT_EQ(x, 1.5);
    }
}

} // namespace
} // namespace fft_test
