// The largest sizes of every Stockham class: slow, so run in the release
// build only.
#include "fft_kernels_cases.h"
#include "fft_reference.h"
#include "stockham_operations.h"

namespace fft_test {
namespace {

class StockhamMiddleSizes : public StockhamOperations {};

TEST_P(StockhamMiddleSizes, EveryOperation2To17To2To20)
{
    for (int log_n = 17; log_n <= 20 && !HasFailure(); ++log_n) {
        check_all_operations(log_n);
    }
}

INSTANTIATE_TEST_SUITE_P(Stockham, StockhamMiddleSizes, testing::ValuesIn(stockham_cases()), case_name);

// The largest sizes, with the raw forward transform and one round trip.
class StockhamLargeSizes : public testing::TestWithParam<ClassCase> {};

TEST_P(StockhamLargeSizes, RawForwardAndRoundTrip)
{
    const ClassCase& c = GetParam();
    for (int log_n = 21; log_n <= 24; ++log_n) {
        const int n = 1 << log_n;
        FFT_TEST_MAKE_OR_SKIP(fft, c, n);
        const Reference& ref = reference(log_n);
        const std::string fwd = compare(run(*fft, &ZFFT::ComplexFFT::forward_raw, ref.x),
                                        ref.forward, tolerance(log_n));
        EXPECT_TRUE(fwd.empty()) << "forward_raw at N = " << n << ": " << fwd;
        const cvector back = run(*fft, &ZFFT::ComplexFFT::inverse,
                                 run(*fft, &ZFFT::ComplexFFT::forward, ref.x));
        const std::string trip = compare(back, ref.x, tolerance(log_n));
        EXPECT_TRUE(trip.empty()) << "forward, inverse at N = " << n << ": " << trip;
    }
}

INSTANTIATE_TEST_SUITE_P(Stockham, StockhamLargeSizes, testing::ValuesIn(stockham_cases()), case_name);

} // namespace
} // namespace fft_test
