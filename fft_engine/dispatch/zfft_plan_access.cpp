#include "zfft/zfft_variants.h"
#include "zfft_variant_access.h"

#include <cstdlib>
#include <cxxabi.h>
#include <memory>

namespace ZFFT {

std::string planned_class_name(Variant v, int n)
{
    if (!variant_supported(v)) {
        return {};
    }
    const char* mangled = nullptr;
    switch (v) {
    case Variant::SSE2:
        mangled = ZFFT_SSE2::planned_class_name(n);
        break;
    case Variant::AVX:
        mangled = ZFFT_AVX::planned_class_name(n);
        break;
    case Variant::AVX2:
        mangled = ZFFT_AVX2::planned_class_name(n);
        break;
    }
    if (mangled == nullptr) {
        return {};
    }
    int status = 0;
    std::unique_ptr<char, decltype(&std::free)> name(
        abi::__cxa_demangle(mangled, nullptr, nullptr, &status), &std::free);
    return status == 0 && name ? std::string(name.get()) : std::string(mangled);
}

} // namespace ZFFT
