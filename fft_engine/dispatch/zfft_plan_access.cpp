#include "zfft/zfft_variants.h"
#include "zfft_variant_access.h"

namespace ZFFT {

std::string planned_class_name(Variant v, int n)
{
    if (!variant_supported(v)) {
        return {};
    }
    const char* name = nullptr;
    switch (v) {
    case Variant::SSE2:
        name = ZFFT_SSE2::planned_class_name(n);
        break;
    case Variant::AVX:
        name = ZFFT_AVX::planned_class_name(n);
        break;
    case Variant::AVX2:
        name = ZFFT_AVX2::planned_class_name(n);
        break;
    }
    return name != nullptr ? std::string(name) : std::string();
}

} // namespace ZFFT
