// The six-step class against FFTW, in all scalings, and bit-identical on
// 1, 2 and 3 threads.
#include "six_step_check.h"

#include <gtest/gtest.h>

#include <cmath>
#include <omp.h>
#include <string>

namespace {

using ZFFT::Algorithm;
using ZFFT::complex_t;
using namespace fft_test;

class SixStep : public ::testing::TestWithParam<ZFFT::Variant> {};

// Every size the class holds: the direct chains up to 32 points, the even
// and odd matrix forms above, single-threaded and parallel.
TEST_P(SixStep, MatchesFftwAtEverySizeUpTo2To18)
{
    for (int log_n = 1; log_n <= 18; ++log_n) {
        check_six_step(GetParam(), log_n, log_n >= 13);
    }
}

INSTANTIATE_TEST_SUITE_P(, SixStep, ::testing::ValuesIn(supported_variants()),
                         [](const ::testing::TestParamInfo<ZFFT::Variant>& info) {
                             return std::string(ZFFT::variant_name(info.param));
                         });

} // namespace
