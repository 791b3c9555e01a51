// The largest sizes of every Stockham class: slow, so labelled apart.
#include "fft_kernels_cases.h"

namespace fft_test {
namespace {

class StockhamLarge : public testing::TestWithParam<ClassCase> {};

// Every operation up to 2^20; above, the raw forward transform, the inverse
// and one round trip.
TEST_P(StockhamLarge, From2To17To2To24)
{
    for (int log_n = 17; log_n <= 24 && !HasFailure(); ++log_n) {
        FFT_TEST_MAKE_OR_SKIP(fft, GetParam(), 1 << log_n);
        expect_all_operations(*fft, fftw_reference(log_n), log_n > 20);
    }
}

INSTANTIATE_TEST_SUITE_P(, StockhamLarge, testing::ValuesIn(stockham_cases()), case_name);

} // namespace
} // namespace fft_test
