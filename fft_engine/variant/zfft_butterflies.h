// The small DFTs that every stage is built from, written once for any vector
// form (cvec1, cvec2, cvec4) and both directions. Outputs are before any
// twiddle; the forward direction has the kernel exp(-2 pi i jk / r).
#pragma once

#include "zfft_cvec.h"

namespace ZFFT_VARIANT {
namespace {

enum class Direction { forward, inverse };

// out0 = a + b, out1 = a - b.
template <class V>
inline void butterfly2(V a, V b, V& out0, V& out1)
{
    out0 = a + b;
    out1 = a - b;
}

// The radix-4 butterfly: x[0..3] in, y[0..3] out.
template <Direction D, class V>
inline void butterfly4(const V (&x)[4], V (&y)[4])
{
    const V apc = x[0] + x[2];
    const V amc = x[0] - x[2];
    const V bpd = x[1] + x[3];
    const V jbmd = mul_j(x[1] - x[3]);
    y[0] = apc + bpd;
    y[2] = apc - bpd;
    if constexpr (D == Direction::forward) {
        y[1] = amc - jbmd;
        y[3] = amc + jbmd;
    } else {
        y[1] = amc + jbmd;
        y[3] = amc - jbmd;
    }
}

// The radix-8 butterfly: x[0..7] in, y[0..7] out.
template <Direction D, class V>
inline void butterfly8(const V (&x)[8], V (&y)[8])
{
    const V a04 = x[0] + x[4];
    const V s04 = x[0] - x[4];
    const V a26 = x[2] + x[6];
    const V js26 = mul_j(x[2] - x[6]);
    const V a15 = x[1] + x[5];
    const V s15 = x[1] - x[5];
    const V a37 = x[3] + x[7];
    const V js37 = mul_j(x[3] - x[7]);
    const V g = mul_j(a15 - a37);

    y[0] = a04 + a26 + a15 + a37;
    y[4] = (a04 + a26) - (a15 + a37);
    if constexpr (D == Direction::forward) {
        const V u = s04 - js26;
        const V v = s04 + js26;
        const V e = mul_w8(s15 - js37);
        const V f = mul_v8(s15 + js37);
        y[1] = u + e;
        y[2] = a04 - a26 - g;
        y[3] = v - f;
        y[5] = u - e;
        y[6] = a04 - a26 + g;
        y[7] = v + f;
    } else {
        const V u = s04 + js26;
        const V v = s04 - js26;
        const V e = mul_v8(s15 + js37);
        const V f = mul_w8(s15 - js37);
        y[1] = u + e;
        y[2] = a04 - a26 + g;
        y[3] = v - f;
        y[5] = u - e;
        y[6] = a04 - a26 - g;
        y[7] = v + f;
    }
}

// A twiddle of the table, conjugated for the inverse direction.
template <Direction D, class V>
inline V twiddle(V w)
{
    if constexpr (D == Direction::forward) {
        return w;
    } else {
        return conj(w);
    }
}

} // namespace
} // namespace ZFFT_VARIANT
