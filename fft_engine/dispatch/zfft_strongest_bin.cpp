#include "zfft/zfft_strongest_bin.h"
#include "zfft_variant_access.h"

#include <stdexcept>

namespace ZFFT {
namespace {

using search_fn = std::uint64_t (*)(const complex_t*, std::uint64_t);

// The variant that `selector` asks for, by the rule of create_real_fft.
search_fn search_for(unsigned selector)
{
    if ((selector == 0 || selector == 3) && selector_supported(3)) {
        return ZFFT_AVX2::strongest_bin;
    }
    if ((selector & ~2u) == 0 && selector_supported(2)) {
        return ZFFT_AVX::strongest_bin;
    }
    if (selector <= 1 && selector_supported(1)) {
        return ZFFT_SSE2::strongest_bin;
    }
    throw std::domain_error("No supported CPU featureset found.");
}

} // namespace

std::uint64_t strongest_bin(const complex_t* X, std::uint64_t limit, unsigned selector)
{
    if (selector == 0) {
        // Chosen once: the search runs once per window.
        static const search_fn best = search_for(0);
        return best(X, limit);
    }
    return search_for(selector)(X, limit);
}

} // namespace ZFFT
