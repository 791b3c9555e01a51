// Every operation of every Stockham class, in every variant and at every
// size, against FFTW and (for small sizes) a direct DFT in long double.
#include "fft_kernels_cases.h"
#include "fft_reference.h"
#include "stockham_operations.h"

#include <cmath>

namespace fft_test {
namespace {

class StockhamAccuracy : public StockhamOperations {};

TEST_P(StockhamAccuracy, EveryOperationUpTo2To16)
{
    for (int log_n = 1; log_n <= 16 && !HasFailure(); ++log_n) {
        check_all_operations(log_n);
    }
}

// The long double DFT checks the small sizes independently of FFTW.
TEST_P(StockhamAccuracy, AgreesWithDirectDft)
{
    const ClassCase& c = GetParam();
    for (int log_n = 1; log_n <= 10; ++log_n) {
        const int n = 1 << log_n;
        FFT_TEST_MAKE_OR_SKIP(fft, c, n);
        const cvector x = random_signal(n, 7 * log_n);
        const std::string fwd =
            compare(run(*fft, &ZFFT::ComplexFFT::forward_raw, x), naive_dft(x, -1), tolerance(log_n));
        EXPECT_TRUE(fwd.empty()) << "forward_raw at N = " << n << ": " << fwd;
        const std::string inv =
            compare(run(*fft, &ZFFT::ComplexFFT::inverse, x), naive_dft(x, +1), tolerance(log_n));
        EXPECT_TRUE(inv.empty()) << "inverse at N = " << n << ": " << inv;
    }
}

INSTANTIATE_TEST_SUITE_P(Stockham, StockhamAccuracy, testing::ValuesIn(stockham_cases()), case_name);

} // namespace
} // namespace fft_test
