// The variant's own pieces that no class interface shows: the layout of the
// twiddle tables, and the single-threaded radix-8 chains that run on a
// caller's long table. Compiled as part of the SSE2 variant, which runs on
// every processor the engine supports.
#include "fft_reference.h"

#include "zfft_avxdif8.h"
#include "zfft_twiddles.h"
#include "zfft/zfft_variants.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

namespace fft_test {
namespace {

namespace V = ZFFT_SSE2;

// exp(-2 pi i e / N) in long double, rounded.
complex_t root(long long e, int n)
{
    const long double a = -6.283185307179586476925286766559L * (e % n) / n;
    return {static_cast<double>(std::cos(a)), static_cast<double>(std::sin(a))};
}

// The angle p theta0 is itself rounded, so an entry may be off by a few
// units in the last place of the angle.
constexpr double ENTRY_TOLERANCE = 1e-15;

// Entry p = 0 is exactly 1 (its imaginary part may be a negative zero, the
// sine of the angle -0).
bool is_one(complex_t a)
{
    return a.re == 1.0 && a.im == 0.0;
}

bool same_bits(complex_t a, complex_t b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

TEST(Twiddles, LongTableLayout)
{
    const complex_t sentinel{12345.0, -6789.0};
    for (int r : {4, 8, 16}) {
        for (int n : {r, 2 * r, 8 * r, 1024}) {
            cvector w(2 * n, sentinel);
            V::init_twiddles_long(r, n, w.data());
            const int m = n / r;
            for (int p = 0; p < m; ++p) {
                for (int k = 1; k < r; ++k) {
                    const complex_t first = w[(k - 1) * m + p];
                    const complex_t second = w[n + p * r + k];
                    EXPECT_TRUE(same_bits(first, second)) << "r " << r << " N " << n << " p " << p << " k " << k;
                    const complex_t want = root(static_cast<long long>(k) * p, n);
                    EXPECT_NEAR(first.re, want.re, ENTRY_TOLERANCE);
                    EXPECT_NEAR(first.im, want.im, ENTRY_TOLERANCE);
                }
                EXPECT_TRUE(same_bits(w[n + p * r], sentinel)) << "k = 0 is never written";
            }
            for (int k = 1; k < r; ++k) {
                EXPECT_TRUE(is_one(w[(k - 1) * m])) << "p = 0 is exactly 1";
            }
            for (int i = (r - 1) * m; i < n; ++i) {
                EXPECT_TRUE(same_bits(w[i], sentinel)) << "tail of the first half, index " << i;
            }
        }
    }
    // Below the radix nothing is written.
    cvector w(8, sentinel);
    V::init_twiddles_long(8, 4, w.data());
    V::init_twiddles_short(8, 4, w.data());
    for (const auto& v : w) {
        EXPECT_TRUE(same_bits(v, sentinel));
    }
}

TEST(Twiddles, ShortTableIncludingParallelFill)
{
    for (int r : {4, 8, 16}) {
        for (int n : {r, 8192, 65536}) {
            cvector w(n / r + 1, complex_t{7.0, 7.0});
            V::init_twiddles_short(r, n, w.data());
            EXPECT_TRUE(is_one(w[0]));
            for (int p = 0; p < n / r; ++p) {
                const complex_t want = root(p, n);
                ASSERT_NEAR(w[p].re, want.re, ENTRY_TOLERANCE) << "r " << r << " N " << n << " p " << p;
                ASSERT_NEAR(w[p].im, want.im, ENTRY_TOLERANCE) << "r " << r << " N " << n << " p " << p;
            }
            EXPECT_TRUE(same_bits(w[n / r], complex_t{7.0, 7.0})) << "one past the end";
        }
    }
}

using RowChain = void (*)(int, complex_t*, complex_t*, const complex_t*);

// The row chains of every size, all six transforms, on a long table even
// above the class's own threshold, against FFTW.
TEST(RowChains, SixTransformsOnALongTable)
{
    const struct {
        const char* name;
        RowChain chain;
        int sign;
        bool by_n;
        bool by_sqrt_n;
    } chains[] = {
        {"forward", V::ZFFT_AVXDIF8::forward_single, -1, true, false},
        {"forward_raw", V::ZFFT_AVXDIF8::forward_raw_single, -1, false, false},
        {"forward_unitary", V::ZFFT_AVXDIF8::forward_unitary_single, -1, false, true},
        {"inverse", V::ZFFT_AVXDIF8::inverse_single, +1, false, false},
        {"inverse_unitary", V::ZFFT_AVXDIF8::inverse_unitary_single, +1, false, true},
        {"inverse_norm", V::ZFFT_AVXDIF8::inverse_norm_single, +1, true, false},
    };
    for (int log_n = 1; log_n <= V::ZFFT_AVXDIF8::SINGLE_CHAIN_LOG_N_MAX; ++log_n) {
        const int n = 1 << log_n;
        cvector table(2 * n);
        V::init_twiddles_long(8, n, table.data());
        const Reference& ref = reference(log_n);
        for (const auto& c : chains) {
            cvector x = ref.x;
            cvector y(n, complex_t{nan_value(), nan_value()});
            c.chain(log_n, x.data(), y.data(), table.data());
            const double factor = c.by_n ? 1.0 / n : c.by_sqrt_n ? 1.0 / std::sqrt(double(n)) : 1.0;
            const std::string diff =
                compare(x, scaled(c.sign < 0 ? ref.forward : ref.backward, factor), tolerance(log_n));
            EXPECT_TRUE(diff.empty()) << c.name << " at N = " << n << ": " << diff;
        }
    }
}

// Where the class itself runs the parallel chain on the short table, the
// single-threaded chain on the long table agrees with it to rounding.
TEST(RowChains, AgreeWithTheParallelChainsOfTheClass)
{
    for (int log_n : {11, 12}) {
        const int n = 1 << log_n;
        cvector table(2 * n);
        V::init_twiddles_long(8, n, table.data());
        auto fft = ZFFT::create_complex_fft(ZFFT::Variant::SSE2, ZFFT::Algorithm::DIF8, n);
        ASSERT_NE(fft, nullptr);
        const cvector x = random_signal(n, 5);
        cvector single = x, y(n);
        V::ZFFT_AVXDIF8::forward_raw_single(log_n, single.data(), y.data(), table.data());
        const std::string diff = compare(single, run(*fft, &ZFFT::ComplexFFT::forward_raw, x), 1e-15);
        EXPECT_TRUE(diff.empty()) << "N = " << n << ": " << diff;
    }
}

TEST(RowChains, SizesOutsideTheChainsAreLeftAlone)
{
    cvector x(16, complex_t{1, 2}), y(16, complex_t{3, 4});
    for (int log_n : {0, 13, -1}) {
        V::ZFFT_AVXDIF8::forward_raw_single(log_n, x.data(), y.data(), nullptr);
    }
    EXPECT_TRUE(compare_bits(x, cvector(16, complex_t{1, 2})).empty());
    EXPECT_TRUE(compare_bits(y, cvector(16, complex_t{3, 4})).empty());
}

} // namespace
} // namespace fft_test
