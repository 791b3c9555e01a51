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
[[gnu::always_inline]] inline void butterfly4(const V (&x)[4], V (&y)[4])
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
[[gnu::always_inline]] inline void butterfly8(const V (&x)[8], V (&y)[8])
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

// z times the constant (re + i im), formed from its two real parts.
template <class V>
[[gnu::always_inline]] inline V mul_const(V z, double re, double im)
{
    return scale(z, re) + scale(mul_j(z), im);
}

// The radix-16 butterfly: two 8-point butterflies over the even and the odd
// inputs, joined by the sixteenth roots of unity w16^k = exp(-+2 pi i k / 16).
// The roots are applied through their real parts, never read from a table.
template <Direction D, class V>
[[gnu::always_inline]] inline void butterfly16(const V (&x)[16], V (&y)[16])
{
    V even[8], odd[8];
    #pragma GCC unroll 16
    for (int k = 0; k < 8; ++k) {
        even[k] = x[2 * k];
        odd[k] = x[2 * k + 1];
    }
    V e[8], o[8];
    butterfly8<D>(even, e);
    butterfly8<D>(odd, o);

    // Imaginary parts of w16^k carry the sign of the direction.
    constexpr double sign = D == Direction::forward ? -1.0 : 1.0;
    V wo[8];
    wo[0] = o[0];
    wo[1] = mul_const(o[1], COS_PI_8, sign * SIN_PI_8);
    wo[3] = mul_const(o[3], SIN_PI_8, sign * COS_PI_8);
    wo[5] = mul_const(o[5], -SIN_PI_8, sign * COS_PI_8);
    wo[7] = mul_const(o[7], -COS_PI_8, sign * SIN_PI_8);
    // w16^2, w16^4 and w16^6 are eighth and quarter turns; the ones whose
    // product comes out negated swap the sum and the difference.
    const V t4 = mul_j(o[4]);
    if constexpr (D == Direction::forward) {
        wo[2] = mul_w8(o[2]);                // sqrt(1/2) (1 - i)
        const V t6 = mul_v8(o[6]);           // -(sqrt(1/2) (-1 - i))
        y[4] = e[4] - t4;                    // -i
        y[12] = e[4] + t4;
        y[6] = e[6] - t6;
        y[14] = e[6] + t6;
    } else {
        wo[2] = mul_v8(o[2]);                // sqrt(1/2) (1 + i)
        const V t6 = mul_w8(o[6]);           // -(sqrt(1/2) (-1 + i))
        y[4] = e[4] + t4;                    // +i
        y[12] = e[4] - t4;
        y[6] = e[6] - t6;
        y[14] = e[6] + t6;
    }
    const auto join = [&](int k) {
        y[k] = e[k] + wo[k];
        y[k + 8] = e[k] - wo[k];
    };
    join(0);
    join(1);
    join(2);
    join(3);
    join(5);
    join(7);
}

// The butterfly of radix r, r in 2, 4, 8, 16.
template <int R, Direction D, class V>
[[gnu::always_inline]] inline void radix_butterfly(const V (&x)[R], V (&y)[R])
{
    if constexpr (R == 2) {
        butterfly2(x[0], x[1], y[0], y[1]);
    } else if constexpr (R == 4) {
        butterfly4<D>(x, y);
    } else if constexpr (R == 8) {
        butterfly8<D>(x, y);
    } else {
        static_assert(R == 16, "radix 2, 4, 8 or 16");
        butterfly16<D>(x, y);
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
