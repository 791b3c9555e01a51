// The peak search against the plainest scan there is, on random spectra
// with many ties, zeros and NaNs, and with every search limit, in every
// processor variant this machine runs.
#include "frequency_strongest_bin.h"
#include "zfft/zfft_real_fft.h"
#include "zfft/zfft_strongest_bin.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

namespace {

using ZFFT::complex_t;

std::uint64_t firstStrictPeak(const std::vector<complex_t>& X, std::uint64_t limit)
{
    double best = 0.0;
    std::uint64_t k = 1;
    for (std::uint64_t j = 1; j < limit; ++j) {
        const double p = X[j].re * X[j].re + X[j].im * X[j].im;
        if (p > best) {
            best = p;
            k = j;
        }
    }
    return k;
}

TEST(StrongestBin, AgreesWithThePlainScanOnTiesZerosAndNaN)
{
    std::mt19937_64 gen(4711);
    std::uniform_int_distribution<int> pick(0, 7);
    const double nan = std::nan("");
    for (int trial = 0; trial < 20000; ++trial) {
        const std::size_t n = 2 + static_cast<std::size_t>(trial % 700);
        std::vector<complex_t> X(n);
        for (complex_t& v : X) {
            const int a = pick(gen);
            // Few distinct values, so that equal powers are common; the
            // same power also comes from different parts (1,0) and (0,1).
            v = {static_cast<double>(a % 3), a == 7 ? nan : static_cast<double>((a / 3) % 2)};
        }
        if (trial % 5 == 0) {
            X[n / 2] = {1e300, 1e300}; // an infinite power
        }
        const std::uint64_t limit = 1 + static_cast<std::uint64_t>(gen() % n);
        const std::uint64_t expected = firstStrictPeak(X, limit);
        ASSERT_EQ(strongestBin(X.data(), limit), expected) << "n=" << n << " limit=" << limit << " trial=" << trial;
        for (unsigned selector = 1; selector <= 3; ++selector) {
            if (ZFFT::selector_supported(selector)) {
                ASSERT_EQ(ZFFT::strongest_bin(X.data(), limit, selector), expected)
                    << "selector=" << selector << " n=" << n << " limit=" << limit << " trial=" << trial;
            }
        }
    }
}

TEST(StrongestBin, NothingAboveZeroGivesBinOne)
{
    const double nan = std::nan("");
    for (std::size_t n : {2, 65, 200, 1024}) {
        EXPECT_EQ(strongestBin(std::vector<complex_t>(n, {0.0, 0.0}).data(), n), 1u) << n;
        EXPECT_EQ(strongestBin(std::vector<complex_t>(n, {nan, 0.0}).data(), n), 1u) << n;
    }
}

} // namespace
