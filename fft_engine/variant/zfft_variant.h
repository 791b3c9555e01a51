// Names the processor variant that this translation unit is compiled for.
//
// The same engine source is compiled three times, each time with one of
// ZFFT_VARIANT_AVX2, ZFFT_VARIANT_AVX or ZFFT_VARIANT_SSE2 defined and the
// matching instruction-set flags. Everything a variant compiles lives in the
// namespace ZFFT_VARIANT, so that the linker can never pick an AVX2
// instantiation of a template or inline function for the SSE2 path.
//
// No variant object may have dynamic initialisation: a namespace-scope table
// filled at load time would run the variant's instructions at dlopen, on
// every processor, before anyone asked which variant it can run. Tables are
// made in setup.
#pragma once

#include "zfft/zfft_complex.h"

#if defined(ZFFT_VARIANT_AVX2)
#if !defined(__AVX2__) || !defined(__FMA__)
#error "the AVX2 variant must be compiled with -mavx2 -mfma"
#endif
#define ZFFT_VARIANT ZFFT_AVX2
#define ZFFT_VARIANT_NAME "ZFFT_AVX2"
#define ZFFT_VARIANT_WIDE 1
#elif defined(ZFFT_VARIANT_AVX)
#if !defined(__AVX__) || defined(__AVX2__)
#error "the AVX variant must be compiled with -mavx and without -mavx2"
#endif
#define ZFFT_VARIANT ZFFT_AVX
#define ZFFT_VARIANT_NAME "ZFFT_AVX"
#define ZFFT_VARIANT_WIDE 1
#elif defined(ZFFT_VARIANT_SSE2)
#if !defined(__SSE3__) || defined(__AVX__)
#error "the SSE2 variant must be compiled with -msse3 and without -mavx"
#endif
#define ZFFT_VARIANT ZFFT_SSE2
#define ZFFT_VARIANT_NAME "ZFFT_SSE2"
#define ZFFT_VARIANT_WIDE 0
#else
#error "compile the engine's variant sources with one ZFFT_VARIANT_* macro"
#endif

namespace ZFFT_VARIANT {
using ZFFT::complex_t;
} // namespace ZFFT_VARIANT
