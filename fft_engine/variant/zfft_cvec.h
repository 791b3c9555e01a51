// Vector forms of complex numbers: one (cvec1), two (cvec2) or four (cvec4)
// consecutive complex_t values, with the lane-wise operations that every
// kernel is written in. The AVX variants hold two complex numbers in one
// 256-bit register, the SSE2 variant one in a 128-bit register.
//
// Loads and stores are always the unaligned forms: callers' arrays need only
// be aligned as doubles.
#pragma once

#include "zfft_variant.h"

#include <immintrin.h>
#include <type_traits>

namespace ZFFT_VARIANT {
namespace {

constexpr double SQRT_HALF = 0.7071067811865476;
constexpr double COS_PI_8 = 0.9238795325112867;
constexpr double SIN_PI_8 = 0.3826834323650898;
constexpr double TWO_PI = 6.283185307179586;

// ---------------------------------------------------------------- cvec1 ----

struct cvec1 {
    __m128d v;

    static cvec1 load(const complex_t* p) { return {_mm_loadu_pd(&p->re)}; }
    static cvec1 broadcast(const complex_t& c) { return load(&c); }
    void store(complex_t* p) const { _mm_storeu_pd(&p->re, v); }
};

inline cvec1 operator+(cvec1 a, cvec1 b) { return {_mm_add_pd(a.v, b.v)}; }
inline cvec1 operator-(cvec1 a, cvec1 b) { return {_mm_sub_pd(a.v, b.v)}; }

// (a, b) -> (-b, a): multiplication by +i.
inline cvec1 mul_j(cvec1 a)
{
    const __m128d swapped = _mm_shuffle_pd(a.v, a.v, 1);
    return {_mm_xor_pd(swapped, _mm_set_pd(0.0, -0.0))};
}

inline cvec1 conj(cvec1 a) { return {_mm_xor_pd(a.v, _mm_set_pd(-0.0, 0.0))}; }

// (a, b) -> sqrt(1/2) (a + b, b - a): multiplication by sqrt(1/2) (1 - i).
inline cvec1 mul_w8(cvec1 a)
{
    const __m128d swapped = _mm_shuffle_pd(a.v, a.v, 1);
    const __m128d flipped = _mm_xor_pd(swapped, _mm_set_pd(-0.0, 0.0));
    return {_mm_mul_pd(_mm_add_pd(flipped, a.v), _mm_set1_pd(SQRT_HALF))};
}

// (a, b) -> sqrt(1/2) (a - b, a + b): multiplication by sqrt(1/2) (1 + i).
inline cvec1 mul_v8(cvec1 a)
{
    const __m128d swapped = _mm_shuffle_pd(a.v, a.v, 1);
    return {_mm_mul_pd(_mm_addsub_pd(a.v, swapped), _mm_set1_pd(SQRT_HALF))};
}

// Complex product w z: real parts of w duplicated (A), imaginary parts
// duplicated (B), z with swapped halves (Z); then A z -/+ B Z.
inline cvec1 mul(cvec1 w, cvec1 z)
{
    const __m128d re = _mm_movedup_pd(w.v);
    const __m128d im = _mm_unpackhi_pd(w.v, w.v);
    const __m128d z_swapped = _mm_shuffle_pd(z.v, z.v, 1);
    const __m128d cross = _mm_mul_pd(im, z_swapped);
#if defined(ZFFT_VARIANT_AVX2)
    return {_mm_fmaddsub_pd(re, z.v, cross)};
#else
    return {_mm_addsub_pd(_mm_mul_pd(re, z.v), cross)};
#endif
}

inline cvec1 scale(cvec1 a, double c) { return {_mm_mul_pd(a.v, _mm_set1_pd(c))}; }

#if ZFFT_VARIANT_WIDE
// ---------------------------------------------------------- cvec2 (AVX) ----

struct cvec2 {
    __m256d v;

    static cvec2 load(const complex_t* p) { return {_mm256_loadu_pd(&p->re)}; }
    static cvec2 broadcast(const complex_t& c)
    {
        return {_mm256_broadcast_pd(reinterpret_cast<const __m128d*>(&c))};
    }
    static cvec2 combine(cvec1 lo, cvec1 hi)
    {
        return {_mm256_insertf128_pd(_mm256_castpd128_pd256(lo.v), hi.v, 1)};
    }
    void store(complex_t* p) const { _mm256_storeu_pd(&p->re, v); }
    cvec1 lo() const { return {_mm256_castpd256_pd128(v)}; }
    cvec1 hi() const { return {_mm256_extractf128_pd(v, 1)}; }
};

inline cvec2 operator+(cvec2 a, cvec2 b) { return {_mm256_add_pd(a.v, b.v)}; }
inline cvec2 operator-(cvec2 a, cvec2 b) { return {_mm256_sub_pd(a.v, b.v)}; }

inline cvec2 mul_j(cvec2 a)
{
    const __m256d swapped = _mm256_permute_pd(a.v, 0x5);
    return {_mm256_xor_pd(swapped, _mm256_set_pd(0.0, -0.0, 0.0, -0.0))};
}

inline cvec2 conj(cvec2 a) { return {_mm256_xor_pd(a.v, _mm256_set_pd(-0.0, 0.0, -0.0, 0.0))}; }

inline cvec2 mul_w8(cvec2 a)
{
    const __m256d swapped = _mm256_permute_pd(a.v, 0x5);
    const __m256d flipped = _mm256_xor_pd(swapped, _mm256_set_pd(-0.0, 0.0, -0.0, 0.0));
    return {_mm256_mul_pd(_mm256_add_pd(flipped, a.v), _mm256_set1_pd(SQRT_HALF))};
}

inline cvec2 mul_v8(cvec2 a)
{
    const __m256d swapped = _mm256_permute_pd(a.v, 0x5);
    return {_mm256_mul_pd(_mm256_addsub_pd(a.v, swapped), _mm256_set1_pd(SQRT_HALF))};
}

inline cvec2 mul(cvec2 w, cvec2 z)
{
    const __m256d re = _mm256_movedup_pd(w.v);
    const __m256d im = _mm256_permute_pd(w.v, 0xF);
    const __m256d z_swapped = _mm256_permute_pd(z.v, 0x5);
    const __m256d cross = _mm256_mul_pd(im, z_swapped);
#if defined(ZFFT_VARIANT_AVX2)
    return {_mm256_fmaddsub_pd(re, z.v, cross)};
#else
    return {_mm256_addsub_pd(_mm256_mul_pd(re, z.v), cross)};
#endif
}

inline cvec2 scale(cvec2 a, double c) { return {_mm256_mul_pd(a.v, _mm256_set1_pd(c))}; }

// Lane exchange: (a.lo, b.lo) and (a.hi, b.hi). Turns two vectors that each
// hold one value of two sequences into two vectors that each hold two
// neighbouring values of one sequence, and back.
inline cvec2 interleave_lo(cvec2 a, cvec2 b) { return {_mm256_permute2f128_pd(a.v, b.v, 0x20)}; }
inline cvec2 interleave_hi(cvec2 a, cvec2 b) { return {_mm256_permute2f128_pd(a.v, b.v, 0x31)}; }

#else
// --------------------------------------------------------- cvec2 (SSE2) ----

struct cvec2 {
    cvec1 a;
    cvec1 b;

    static cvec2 load(const complex_t* p) { return {cvec1::load(p), cvec1::load(p + 1)}; }
    static cvec2 broadcast(const complex_t& c)
    {
        const cvec1 one = cvec1::load(&c);
        return {one, one};
    }
    static cvec2 combine(cvec1 lo, cvec1 hi) { return {lo, hi}; }
    void store(complex_t* p) const
    {
        a.store(p);
        b.store(p + 1);
    }
    cvec1 lo() const { return a; }
    cvec1 hi() const { return b; }
};

inline cvec2 operator+(cvec2 x, cvec2 y) { return {x.a + y.a, x.b + y.b}; }
inline cvec2 operator-(cvec2 x, cvec2 y) { return {x.a - y.a, x.b - y.b}; }
inline cvec2 mul_j(cvec2 x) { return {mul_j(x.a), mul_j(x.b)}; }
inline cvec2 conj(cvec2 x) { return {conj(x.a), conj(x.b)}; }
inline cvec2 mul_w8(cvec2 x) { return {mul_w8(x.a), mul_w8(x.b)}; }
inline cvec2 mul_v8(cvec2 x) { return {mul_v8(x.a), mul_v8(x.b)}; }
inline cvec2 mul(cvec2 w, cvec2 z) { return {mul(w.a, z.a), mul(w.b, z.b)}; }
inline cvec2 scale(cvec2 x, double c) { return {scale(x.a, c), scale(x.b, c)}; }
inline cvec2 interleave_lo(cvec2 x, cvec2 y) { return {x.a, y.a}; }
inline cvec2 interleave_hi(cvec2 x, cvec2 y) { return {x.b, y.b}; }

#endif

// ---------------------------------------------------------------- cvec4 ----

struct cvec4 {
    cvec2 lo;
    cvec2 hi;

    static cvec4 load(const complex_t* p) { return {cvec2::load(p), cvec2::load(p + 2)}; }
    static cvec4 broadcast(const complex_t& c)
    {
        const cvec2 two = cvec2::broadcast(c);
        return {two, two};
    }
    void store(complex_t* p) const
    {
        lo.store(p);
        hi.store(p + 2);
    }
};

inline cvec4 operator+(cvec4 x, cvec4 y) { return {x.lo + y.lo, x.hi + y.hi}; }
inline cvec4 operator-(cvec4 x, cvec4 y) { return {x.lo - y.lo, x.hi - y.hi}; }
inline cvec4 mul_j(cvec4 x) { return {mul_j(x.lo), mul_j(x.hi)}; }
inline cvec4 conj(cvec4 x) { return {conj(x.lo), conj(x.hi)}; }
inline cvec4 mul_w8(cvec4 x) { return {mul_w8(x.lo), mul_w8(x.hi)}; }
inline cvec4 mul_v8(cvec4 x) { return {mul_v8(x.lo), mul_v8(x.hi)}; }
inline cvec4 mul(cvec4 w, cvec4 z) { return {mul(w.lo, z.lo), mul(w.hi, z.hi)}; }
inline cvec4 scale(cvec4 x, double c) { return {scale(x.lo, c), scale(x.hi, c)}; }

// -------------------------------------------------------- split twiddles ----

// A twiddle held as the two operands that mul forms from it: its real part
// and its imaginary part, each duplicated into both halves of every complex
// lane. Made once where one twiddle serves many products, it saves mul two
// shuffles per product; the product itself, and so every bit of it, is the
// one of mul.
template <class V>
struct split_twiddle {
    V re;
    V im;
};

inline cvec1 dup_re(cvec1 w) { return {_mm_movedup_pd(w.v)}; }
inline cvec1 dup_im(cvec1 w) { return {_mm_unpackhi_pd(w.v, w.v)}; }
inline cvec1 splat1(double d) { return {_mm_set1_pd(d)}; }
inline cvec1 negated(cvec1 a) { return {_mm_xor_pd(a.v, _mm_set1_pd(-0.0))}; }

inline cvec1 mul(const split_twiddle<cvec1>& w, cvec1 z)
{
    const __m128d cross = _mm_mul_pd(w.im.v, _mm_shuffle_pd(z.v, z.v, 1));
#if defined(ZFFT_VARIANT_AVX2)
    return {_mm_fmaddsub_pd(w.re.v, z.v, cross)};
#else
    return {_mm_addsub_pd(_mm_mul_pd(w.re.v, z.v), cross)};
#endif
}

// The split form of mul(a, b), b being split too: the same products, each
// lane rounded as mul rounds it.
inline split_twiddle<cvec1> times(const split_twiddle<cvec1>& a, const split_twiddle<cvec1>& b)
{
#if defined(ZFFT_VARIANT_AVX2)
    return {{_mm_fmsub_pd(a.re.v, b.re.v, _mm_mul_pd(a.im.v, b.im.v))},
            {_mm_fmadd_pd(a.re.v, b.im.v, _mm_mul_pd(a.im.v, b.re.v))}};
#else
    return {{_mm_sub_pd(_mm_mul_pd(a.re.v, b.re.v), _mm_mul_pd(a.im.v, b.im.v))},
            {_mm_add_pd(_mm_mul_pd(a.re.v, b.im.v), _mm_mul_pd(a.im.v, b.re.v))}};
#endif
}

#if ZFFT_VARIANT_WIDE
inline cvec2 dup_re(cvec2 w) { return {_mm256_movedup_pd(w.v)}; }
inline cvec2 dup_im(cvec2 w) { return {_mm256_permute_pd(w.v, 0xF)}; }
inline cvec2 splat2(double d) { return {_mm256_set1_pd(d)}; }
inline cvec2 negated(cvec2 a) { return {_mm256_xor_pd(a.v, _mm256_set1_pd(-0.0))}; }

inline cvec2 mul(const split_twiddle<cvec2>& w, cvec2 z)
{
    const __m256d cross = _mm256_mul_pd(w.im.v, _mm256_permute_pd(z.v, 0x5));
#if defined(ZFFT_VARIANT_AVX2)
    return {_mm256_fmaddsub_pd(w.re.v, z.v, cross)};
#else
    return {_mm256_addsub_pd(_mm256_mul_pd(w.re.v, z.v), cross)};
#endif
}

inline split_twiddle<cvec2> times(const split_twiddle<cvec2>& a, const split_twiddle<cvec2>& b)
{
#if defined(ZFFT_VARIANT_AVX2)
    return {{_mm256_fmsub_pd(a.re.v, b.re.v, _mm256_mul_pd(a.im.v, b.im.v))},
            {_mm256_fmadd_pd(a.re.v, b.im.v, _mm256_mul_pd(a.im.v, b.re.v))}};
#else
    return {{_mm256_sub_pd(_mm256_mul_pd(a.re.v, b.re.v), _mm256_mul_pd(a.im.v, b.im.v))},
            {_mm256_add_pd(_mm256_mul_pd(a.re.v, b.im.v), _mm256_mul_pd(a.im.v, b.re.v))}};
#endif
}
#else
inline cvec2 dup_re(cvec2 w) { return {dup_re(w.a), dup_re(w.b)}; }
inline cvec2 dup_im(cvec2 w) { return {dup_im(w.a), dup_im(w.b)}; }
inline cvec2 splat2(double d) { return {splat1(d), splat1(d)}; }
inline cvec2 negated(cvec2 x) { return {negated(x.a), negated(x.b)}; }

inline cvec2 mul(const split_twiddle<cvec2>& w, cvec2 z)
{
    return {mul(split_twiddle<cvec1>{w.re.a, w.im.a}, z.a), mul(split_twiddle<cvec1>{w.re.b, w.im.b}, z.b)};
}

inline split_twiddle<cvec2> times(const split_twiddle<cvec2>& a, const split_twiddle<cvec2>& b)
{
    const split_twiddle<cvec1> lo = times(split_twiddle<cvec1>{a.re.a, a.im.a}, split_twiddle<cvec1>{b.re.a, b.im.a});
    const split_twiddle<cvec1> hi = times(split_twiddle<cvec1>{a.re.b, a.im.b}, split_twiddle<cvec1>{b.re.b, b.im.b});
    return {{lo.re, hi.re}, {lo.im, hi.im}};
}
#endif

inline cvec4 negated(cvec4 x) { return {negated(x.lo), negated(x.hi)}; }

inline cvec4 mul(const split_twiddle<cvec4>& w, cvec4 z)
{
    return {mul(split_twiddle<cvec2>{w.re.lo, w.im.lo}, z.lo), mul(split_twiddle<cvec2>{w.re.hi, w.im.hi}, z.hi)};
}

// Both operands of a twiddle v from its two halves, over every lane of V.
template <class V>
inline split_twiddle<V> split(V w)
{
    return {dup_re(w), dup_im(w)};
}

// The one twiddle c in every lane of V.
template <class V>
inline split_twiddle<V> split_broadcast(const complex_t& c)
{
    if constexpr (std::is_same_v<V, cvec1>) {
        return {splat1(c.re), splat1(c.im)};
    } else if constexpr (std::is_same_v<V, cvec2>) {
        return {splat2(c.re), splat2(c.im)};
    } else {
        return {{splat2(c.re), splat2(c.re)}, {splat2(c.im), splat2(c.im)}};
    }
}

// The conjugate: mul forms the same operands from conj(w) with the
// imaginary part's sign flipped.
template <class V>
inline split_twiddle<V> conj(const split_twiddle<V>& w)
{
    return {w.re, negated(w.im)};
}

} // namespace
} // namespace ZFFT_VARIANT
