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
    int threshold; // from this size on the class runs parallel
};

inline std::vector<ClassCase> stockham_cases()
{
    const std::pair<ZFFT::Algorithm, int> classes[] = {
        {ZFFT::Algorithm::DIF4, 8192}, {ZFFT::Algorithm::DIT4, 8192}, {ZFFT::Algorithm::DIF8, 2048},
        {ZFFT::Algorithm::DIT8, 8192}, {ZFFT::Algorithm::DIF16, 4096}};
    std::vector<ClassCase> cases;
    for (auto v : {ZFFT::Variant::AVX2, ZFFT::Variant::AVX, ZFFT::Variant::SSE2}) {
        for (const auto& [a, t] : classes) {
            cases.push_back({v, a, t});
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
