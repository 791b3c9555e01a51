// The variant's peak search over a spectrum; see zfft/zfft_strongest_bin.h.
#pragma once

#include "zfft_variant.h"

#include <cstdint>

namespace ZFFT_VARIANT {

std::uint64_t strongest_bin(const complex_t* X, std::uint64_t limit);

} // namespace ZFFT_VARIANT
