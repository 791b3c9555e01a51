// The real transform against FFTW's r2c and a direct long double DFT, its
// round trips, its literal small cases, and the factory's choice of variant.
#include "fft_reference.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cxxabi.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <typeinfo>

namespace {

using ZFFT::complex_t;
using namespace fft_test;

std::string type_name(const ZFFT::RealFFT& fft)
{
    int status = 0;
    std::unique_ptr<char, decltype(&std::free)> name(
        abi::__cxa_demangle(typeid(fft).name(), nullptr, nullptr, &status), &std::free);
    return name ? name.get() : "";
}

class RealTransform : public ::testing::TestWithParam<unsigned> {
protected:
    ZFFT::RealFFTPtr make(int n) const { return ZFFT::create_real_fft(n, GetParam()); }
};

// Checks what every forward spectrum must be, whatever its values: exact
// zeros for the imaginary parts of the two real bins, an exact mirror.
void expect_full_spectrum(const std::vector<complex_t>& y, long n)
{
    ASSERT_EQ(y[0].im, 0.0);
    ASSERT_FALSE(std::signbit(y[0].im));
    if (n >= 2) {
        ASSERT_EQ(y[n / 2].im, 0.0) << "n=" << n;
    }
    for (long k = 1; k < n / 2; ++k) {
        ASSERT_EQ(y[n - k].re, y[k].re) << "n=" << n << " k=" << k;
        ASSERT_EQ(y[n - k].im, -y[k].im) << "n=" << n << " k=" << k;
    }
}

std::vector<int> checked_sizes()
{
    std::vector<int> sizes{1, 2, 6, 10, 12, 14, 30, 98, 100, 1000, 2000, 2 * 3 * 5 * 7 * 11, 65538, 40000};
    for (int n = 4; n <= (1 << 20); n *= 2) {
        sizes.push_back(n);
    }
    return sizes;
}

TEST_P(RealTransform, ForwardMatchesFftwAndDirectSum)
{
    for (int n : checked_sizes()) {
        SCOPED_TRACE("n=" + std::to_string(n));
        const std::vector<double> x = random_reals(n, 1000u + static_cast<unsigned>(n));
        const std::vector<double> x_copy = x;
        ZFFT::RealFFTPtr fft = make(n);
        std::vector<complex_t> y(static_cast<std::size_t>(n), complex_t{7.0, 7.0});
        fft->forward_raw(x.data(), y.data());

        ASSERT_TRUE(same_bits(x.data(), x_copy.data(), x.size() * sizeof(double))) << "input changed";
        expect_full_spectrum(y, n);
        const std::vector<complex_t> want = fftw_real_dft(x);
        const double err = relative_rms(y.data(), want);
        EXPECT_LT(err, tolerance(n)) << "against FFTW, y[1]=(" << y[1 % n].re << "," << y[1 % n].im
                                     << ") want (" << want[1 % n].re << "," << want[1 % n].im << ")";
        if (n <= 2000) {
            EXPECT_LT(relative_rms(y.data(), naive_real_dft(x)), tolerance(n)) << "against direct sum";
        }

        // The scaled forms are the same spectrum times 1/N and 1/sqrt(N).
        std::vector<complex_t> scaled(y.size());
        std::vector<complex_t> want_scaled(y.size());
        const struct {
            void (ZFFT::RealFFT::*op)(const double*, complex_t*);
            double factor;
        } forms[] = {{&ZFFT::RealFFT::forward, 1.0 / n},
                     {&ZFFT::RealFFT::forward_norm, 1.0 / n},
                     {&ZFFT::RealFFT::forward_unitary, 1.0 / std::sqrt(static_cast<double>(n))}};
        for (const auto& form : forms) {
            ((*fft).*form.op)(x.data(), scaled.data());
            if (n > 1) {
                for (std::size_t i = 0; i < y.size(); ++i) {
                    want_scaled[i] = {want[i].re * form.factor, want[i].im * form.factor};
                }
            } else {
                want_scaled = want; // one sample is never scaled
            }
            expect_full_spectrum(scaled, n);
            EXPECT_LT(relative_rms(scaled.data(), want_scaled), tolerance(n));
        }
    }
}

TEST_P(RealTransform, PairsOfForwardAndInverseGiveBackTheInput)
{
    using Forward = void (ZFFT::RealFFT::*)(const double*, complex_t*);
    using Inverse = void (ZFFT::RealFFT::*)(complex_t*, double*);
    const struct {
        const char* name;
        Forward forward;
        Inverse inverse;
    } pairs[] = {
        {"forward/inverse", &ZFFT::RealFFT::forward, &ZFFT::RealFFT::inverse},
        {"forward_norm/inverse_raw", &ZFFT::RealFFT::forward_norm, &ZFFT::RealFFT::inverse_raw},
        {"forward_raw/inverse_norm", &ZFFT::RealFFT::forward_raw, &ZFFT::RealFFT::inverse_norm},
        {"forward_unitary/inverse_unitary", &ZFFT::RealFFT::forward_unitary, &ZFFT::RealFFT::inverse_unitary},
    };
    for (int n : {1, 4, 6, 8, 14, 30, 64, 100, 256, 1000, 4096, 16384, 32768, 65536, 262144}) {
        ZFFT::RealFFTPtr fft = make(n);
        const std::vector<double> x = random_reals(n, 77u + static_cast<unsigned>(n));
        for (const auto& pair : pairs) {
            SCOPED_TRACE(std::string(pair.name) + " n=" + std::to_string(n));
            std::vector<complex_t> y(static_cast<std::size_t>(n));
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

TEST_P(RealTransform, SmallSizesGiveTheirExactSpectra)
{
    const struct {
        std::vector<double> x;
        std::vector<complex_t> y;
    } cases[] = {
        {{2.5}, {{2.5, 0}}},
        {{1, 1, 1, 1}, {{4, 0}, {0, 0}, {0, 0}, {0, 0}}},
        {{1, -1, 1, -1}, {{0, 0}, {0, 0}, {4, 0}, {0, 0}}},
        {{1, 0, 0, 0}, {{1, 0}, {1, 0}, {1, 0}, {1, 0}}},
        {{0, 1, 0, 0}, {{1, 0}, {0, -1}, {-1, 0}, {0, 1}}},
        {{3, 5}, {{8, 0}, {-2, 0}}},
    };
    for (const auto& c : cases) {
        const int n = static_cast<int>(c.x.size());
        SCOPED_TRACE("n=" + std::to_string(n));
        ZFFT::RealFFTPtr fft = make(n);
        std::vector<complex_t> y(c.x.size(), complex_t{9, 9});
        fft->forward_raw(c.x.data(), y.data());
        for (int k = 0; k < n; ++k) {
            EXPECT_EQ(y[k].re, c.y[k].re) << "k=" << k;
            EXPECT_EQ(y[k].im, c.y[k].im) << "k=" << k;
        }
    }
}

TEST_P(RealTransform, ImpulseAndConstantAtLargeSizes)
{
    // An impulse has a flat spectrum, a constant all its energy in bin 0:
    // checks every size of the plan up to 2^20 against a closed form.
    for (int n = 8; n <= (1 << 20); n *= 2) {
        SCOPED_TRACE("n=" + std::to_string(n));
        ZFFT::RealFFTPtr fft = make(n);
        std::vector<double> x(static_cast<std::size_t>(n), 0.0);
        x[0] = 1.0;
        std::vector<complex_t> y(static_cast<std::size_t>(n));
        fft->forward_raw(x.data(), y.data());
        double worst = 0;
        for (const complex_t& v : y) {
            worst = std::max(worst, std::hypot(v.re - 1.0, v.im));
        }
        EXPECT_LT(worst, 1e-15 * std::log2(n));

        std::fill(x.begin(), x.end(), 0.5);
        fft->forward(x.data(), y.data());
        EXPECT_EQ(y[0].re, 0.5);
        worst = 0;
        for (int k = 1; k < n; ++k) {
            worst = std::max(worst, std::hypot(y[k].re, y[k].im));
        }
        EXPECT_LT(worst, 1e-15 * std::log2(n));
    }
}

INSTANTIATE_TEST_SUITE_P(, RealTransform, ::testing::ValuesIn(supported_selectors()),
                         [](const ::testing::TestParamInfo<unsigned>& info) { return selector_name(info.param); });

TEST(RealTransformFactory, SelectorPicksTheVariantOrRefuses)
{
    const ZFFT::cpu_features& f = ZFFT::get_cpu_features();
    const struct {
        unsigned selector;
        bool available;
        const char* type;
    } rows[] = {
        {0, true, f.has_avx2 ? "ZFFT_AVX2::RFFT" : f.has_avx ? "ZFFT_AVX::RFFT" : "ZFFT_SSE2::RFFT"},
        {1, static_cast<bool>(f.has_sse2), "ZFFT_SSE2::RFFT"},
        {2, static_cast<bool>(f.has_avx), "ZFFT_AVX::RFFT"},
        {3, static_cast<bool>(f.has_avx2), "ZFFT_AVX2::RFFT"},
        {4, false, ""},
        {6, false, ""},
        {0xFFFFFFFFu, false, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE("selector " + std::to_string(row.selector));
        if (row.available) {
            ZFFT::RealFFTPtr fft = ZFFT::create_real_fft(64, row.selector);
            ASSERT_TRUE(fft);
            EXPECT_EQ(type_name(*fft), row.type);
        } else {
            try {
                ZFFT::create_real_fft(64, row.selector);
                ADD_FAILURE() << "no exception";
            } catch (const std::domain_error& e) {
                EXPECT_STREQ(e.what(), "No supported CPU featureset found.");
            }
        }
    }
    ZFFT::destroy_real_fft(nullptr);
}

TEST(RealTransformFactory, SetupAgainReplacesTheSize)
{
    ZFFT::RealFFTPtr fft = ZFFT::create_real_fft(16, 0);
    for (int n : {1000, 8, 65536, 6}) {
        fft->setup(n);
        const std::vector<double> x = random_reals(n, 5);
        std::vector<complex_t> y(static_cast<std::size_t>(n));
        fft->forward_raw(x.data(), y.data());
        EXPECT_LT(relative_rms(y.data(), fftw_real_dft(x)), tolerance(n)) << "n=" << n;
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
