// The Stockham classes under test, each in every variant, named the way
// failures read: "AVX2_DIF8".
#pragma once

#include "fft_reference.h"

#include <string>
#include <vector>

namespace fft_test {

struct ClassCase {
    ZFFT::Variant variant;
    ZFFT::Algorithm algorithm;
};

inline std::vector<ClassCase> stockham_cases()
{
    std::vector<ClassCase> cases;
    for (auto v : {ZFFT::Variant::AVX2, ZFFT::Variant::AVX, ZFFT::Variant::SSE2}) {
        for (auto a : {ZFFT::Algorithm::DIF4, ZFFT::Algorithm::DIT4, ZFFT::Algorithm::DIF8, ZFFT::Algorithm::DIT8,
                       ZFFT::Algorithm::DIF16}) {
            cases.push_back({v, a});
        }
    }
    return cases;
}

inline std::string case_name(const testing::TestParamInfo<ClassCase>& info)
{
    return std::string(ZFFT::variant_name(info.param.variant)) + "_" + ZFFT::algorithm_name(info.param.algorithm);
}

// The transform of one case and size, or a skip when the processor lacks
// the variant.
#define FFT_TEST_MAKE_OR_SKIP(fft, c, n)                                                 \
    if (!ZFFT::variant_supported((c).variant)) {                                          \
        GTEST_SKIP() << "processor lacks " << ZFFT::variant_name((c).variant);            \
    }                                                                                     \
    auto fft = ZFFT::create_complex_fft((c).variant, (c).algorithm, (n));                 \
    ASSERT_NE(fft, nullptr)

} // namespace fft_test
