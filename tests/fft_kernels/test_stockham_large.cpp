// The largest sizes of every Stockham class: slow, so labelled apart.
#include "fft_kernels_cases.h"

namespace fft_test {
namespace {

class StockhamLarge : public testing::TestWithParam<ClassCase> {};

// The best variant this processor runs: the one the plan would pick.
ZFFT::Variant best_variant()
{
    for (auto v : {ZFFT::Variant::AVX2, ZFFT::Variant::AVX}) {
        if (ZFFT::variant_supported(v)) {
            return v;
        }
    }
    return ZFFT::Variant::SSE2;
}

// Every operation up to 2^20; above, the raw forward transform, the inverse
// and one round trip. The sizes above 2^20 run in the best variant only:
// the variants are one source in other instruction sets, which the sizes up
// to 2^20 already exercise in each, and the largest sizes cost most of the
// suite's time.
TEST_P(StockhamLarge, From2To17To2To24)
{
    const int largest = GetParam().variant == best_variant() ? 24 : 20;
    for (int log_n = 17; log_n <= largest && !HasFailure(); ++log_n) {
        FFT_TEST_MAKE_OR_SKIP(fft, GetParam(), 1 << log_n);
        expect_all_operations(*fft, fftw_reference(log_n), log_n > 20);
    }
}

INSTANTIATE_TEST_SUITE_P(, StockhamLarge, testing::ValuesIn(stockham_cases()), case_name);

} // namespace
} // namespace fft_test
