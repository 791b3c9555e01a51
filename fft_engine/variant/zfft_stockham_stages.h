// The stages of the Stockham power-of-two classes. A stage (n, s) sees the
// data as s interleaved sequences of length n, sample j of sequence q at
// index q + s j; it splits each into r sequences of length m = n / r. Every
// kernel is specialised on n and s, so all of its indices are constants.
//
// Decimation in frequency reads in[q + s (p + k m)], runs the butterfly,
// multiplies output k by w_k and writes out[q + s (r p + k)]. Decimation in
// time is its transpose: it reads in[q + s (r p + k)], multiplies input k by
// w_k, runs the butterfly and writes out[q + s (p + k m)]. w_k is the table's
// twiddle of angle index s p raised to the k-th power, conjugated for the
// inverse direction.
//
// Every loop over the r values of one butterfly is unrolled by pragma: left
// to itself at -O2, GCC keeps these short loops and with them the arrays of
// vectors on the stack, which doubles the instructions of a transform. The
// same holds for the small loops of the six-step and mixed-radix kernels.
//
// Kernels of the parallel form contain orphaned worksharing loops: they are
// called inside one parallel region that covers a whole chain, and the
// implicit barrier at the end of each loop orders one stage before the next.
#pragma once

#include "zfft_butterflies.h"

#include <cstddef>
#include <type_traits>

namespace ZFFT_VARIANT {
namespace {

enum class Flow { dif, dit };

// Single-threaded chains read the long table, parallel chains the short one.
enum class Form { single, parallel };

// ------------------------------------------------------------- twiddles ----

// w_k of the short table's chains as the product of w_{k/2} and w_{k-k/2}:
// w2 = w1 w1 and w3 = w1 w2 as ever, and from w4 on a tree instead of a
// chain, so that w7 waits on three products, not six.
[[gnu::always_inline]] inline cvec1 power_product(const cvec1* powers, int k)
{
    return mul(powers[k / 2], powers[k - k / 2]);
}

[[gnu::always_inline]] inline split_twiddle<cvec2> power_product(const split_twiddle<cvec2>* powers, int k)
{
    return times(powers[k / 2], powers[k - k / 2]);
}

// The twiddles w_1 .. w_{r-1} of angle index s p, the same for all q and
// broadcast over the lanes of V, in split form: they serve every group of q.
template <int R, int N, int s, Direction D, Form F, class V>
[[gnu::always_inline]] inline void broadcast_twiddles(const complex_t* W, int p, split_twiddle<V> (&w)[R])
{
    if constexpr (F == Form::single) {
        const complex_t* powers = W + N + s * p * R;
        #pragma GCC unroll 16
        for (int k = 1; k < R; ++k) {
            w[k] = twiddle<D>(split_broadcast<V>(powers[k]));
        }
    } else {
        const complex_t& first = W[s * p];
        cvec1 powers[R];
        powers[1] = cvec1::load(&first);
        w[1] = twiddle<D>(split_broadcast<V>(first));
        #pragma GCC unroll 16
        for (int k = 2; k < R; ++k) {
            powers[k] = power_product(powers, k);
            complex_t c;
            powers[k].store(&c);
            w[k] = twiddle<D>(split_broadcast<V>(c));
        }
    }
}

// v[k] times w_k of the parallel chains' stride-1 stage, for k from 1 and
// the two neighbouring angle indices p and p + 1, one in each lane: w_1
// from the short table, the higher powers by products in split form, which
// rounds each lane as mul does.
template <int R, Direction D>
[[gnu::always_inline]] inline void times_pair_powers(const complex_t* W, int p, cvec2 (&v)[R])
{
    split_twiddle<cvec2> powers[R];
    powers[1] = split(cvec2::load(W + p));
    v[1] = mul(twiddle<D>(powers[1]), v[1]);
    #pragma GCC unroll 16
    for (int k = 2; k < R; ++k) {
        powers[k] = power_product(powers, k);
        v[k] = mul(twiddle<D>(powers[k]), v[k]);
    }
}

// ------------------------------------------------- twiddled stage bodies ----

// The twiddle w_k of the stride-1 stage for the neighbouring angle indices p
// and p + 1 of the long table, loaded where it is used. Made all at once,
// the fifteen of radix 16 take thirty registers in split form and push the
// butterfly's values out to the stack; one at a time they take two.
template <int R, int N, Direction D>
[[gnu::always_inline]] inline cvec2 times_pair_twiddle(const complex_t* W, int p, int k, cvec2 z)
{
    constexpr int m = N / R;
    return mul(twiddle<D>(cvec2::load(W + (k - 1) * m + p)), z);
}

// Decimation in frequency, stride 1: two neighbouring p per step. Output k
// of p and of p + 1 are R entries apart, so pairs of outputs are regrouped
// by a lane exchange before they are stored.
template <int R, int n, Direction D, Form F>
[[gnu::always_inline]] inline void dif_pair(const complex_t* in, complex_t* out, const complex_t* W, int p)
{
    constexpr int m = n / R;
    const complex_t* source = in + p;
    complex_t* target = out + std::ptrdiff_t{R} * p;
    cvec2 a[R], b[R];
    #pragma GCC unroll 16
    for (int k = 0; k < R; ++k) {
        a[k] = cvec2::load(source + k * m);
    }
    radix_butterfly<R, D>(a, b);
    if constexpr (F == Form::single) {
        // Each pair of outputs is twiddled and stored before the next.
        #pragma GCC unroll 16
        for (int k = 0; k < R; k += 2) {
            const cvec2 even = k == 0 ? b[0] : times_pair_twiddle<R, n, D>(W, p, k, b[k]);
            const cvec2 odd = times_pair_twiddle<R, n, D>(W, p, k + 1, b[k + 1]);
            interleave_lo(even, odd).store(target + k);
            interleave_hi(even, odd).store(target + R + k);
        }
    } else {
        times_pair_powers<R, D>(W, p, b);
        #pragma GCC unroll 16
        for (int k = 0; k < R; k += 2) {
            interleave_lo(b[k], b[k + 1]).store(target + k);
            interleave_hi(b[k], b[k + 1]).store(target + R + k);
        }
    }
}

// Decimation in time, stride 1: the mirror of dif_pair.
template <int R, int n, Direction D, Form F>
[[gnu::always_inline]] inline void dit_pair(const complex_t* in, complex_t* out, const complex_t* W, int p)
{
    constexpr int m = n / R;
    const complex_t* source = in + std::ptrdiff_t{R} * p;
    complex_t* target = out + p;
    cvec2 a[R], b[R];
    #pragma GCC unroll 16
    for (int k = 0; k < R; k += 2) {
        const cvec2 first = cvec2::load(source + k);
        const cvec2 second = cvec2::load(source + R + k);
        a[k] = interleave_lo(first, second);
        a[k + 1] = interleave_hi(first, second);
    }
    if constexpr (F == Form::single) {
        #pragma GCC unroll 16
        for (int k = 1; k < R; ++k) {
            a[k] = times_pair_twiddle<R, n, D>(W, p, k, a[k]);
        }
    } else {
        times_pair_powers<R, D>(W, p, a);
    }
    radix_butterfly<R, D>(a, b);
    #pragma GCC unroll 16
    for (int k = 0; k < R; ++k) {
        b[k].store(target + k * m);
    }
}

// Decimation in frequency at stride s >= 4: a group of neighbouring q.
template <int R, int n, int s, Direction D, class V>
[[gnu::always_inline]] inline void dif_group(const complex_t* in, complex_t* out, const split_twiddle<V> (&w)[R], int p,
                                              int q)
{
    constexpr int m = n / R;
    const complex_t* source = in + q + std::ptrdiff_t{s} * p;
    complex_t* target = out + q + std::ptrdiff_t{s} * R * p;
    V a[R], b[R];
    #pragma GCC unroll 16
    for (int k = 0; k < R; ++k) {
        a[k] = V::load(source + s * k * m);
    }
    radix_butterfly<R, D>(a, b);
    b[0].store(target);
    #pragma GCC unroll 16
    for (int k = 1; k < R; ++k) {
        mul(w[k], b[k]).store(target + s * k);
    }
}

template <int R, int n, int s, Direction D, class V>
[[gnu::always_inline]] inline void dit_group(const complex_t* in, complex_t* out, const split_twiddle<V> (&w)[R], int p,
                                              int q)
{
    constexpr int m = n / R;
    const complex_t* source = in + q + std::ptrdiff_t{s} * R * p;
    complex_t* target = out + q + std::ptrdiff_t{s} * p;
    V a[R], b[R];
    a[0] = V::load(source);
    #pragma GCC unroll 16
    for (int k = 1; k < R; ++k) {
        a[k] = mul(w[k], V::load(source + s * k));
    }
    radix_butterfly<R, D>(a, b);
    #pragma GCC unroll 16
    for (int k = 0; k < R; ++k) {
        b[k].store(target + s * k * m);
    }
}

// The vector over q of the strided stages: four q, but two in radix 8 and
// 16, whose eight or sixteen inputs would not fit the registers four wide.
template <int R>
using strided_vector = std::conditional_t<R >= 8, cvec2, cvec4>;

template <int R>
constexpr int strided_width = R >= 8 ? 2 : 4;

// --------------------------------------------------------- twiddled stage ----

// One twiddled stage (n, s) of radix R, reading in and writing out.
template <int R, Flow L, Direction D, Form F, int n, int s>
[[gnu::noinline]] void twiddled_stage(const complex_t* in, complex_t* out, const complex_t* W)
{
    constexpr int N = n * s;
    constexpr int m = n / R;
    static_assert(m >= 2 && (s == 1 || s >= 4), "a twiddled stage has m >= 2");

    if constexpr (s == 1) {
        const auto body = [=](int p) __attribute__((always_inline)) {
            if constexpr (L == Flow::dif) {
                dif_pair<R, n, D, F>(in, out, W, p);
            } else {
                dit_pair<R, n, D, F>(in, out, W, p);
            }
        };
        if constexpr (F == Form::single) {
            for (int p = 0; p < m; p += 2) {
                body(p);
            }
        } else {
#pragma omp for schedule(static)
            for (int p = 0; p < m; p += 2) {
                body(p);
            }
        }
    } else {
        using V = strided_vector<R>;
        constexpr int width = strided_width<R>;
        constexpr int groups_per_p = s / width;
        const auto body = [=](const split_twiddle<V> (&w)[R], int p, int q) __attribute__((always_inline)) {
            if constexpr (L == Flow::dif) {
                dif_group<R, n, s, D>(in, out, w, p, q);
            } else {
                dit_group<R, n, s, D>(in, out, w, p, q);
            }
        };
        if constexpr (F == Form::single) {
            for (int p = 0; p < m; ++p) {
                split_twiddle<V> w[R];
                broadcast_twiddles<R, N, s, D, F>(W, p, w);
                for (int q = 0; q < s; q += width) {
                    body(w, p, q);
                }
            }
        } else {
            // One index per group of q; p and q follow from it by shifts,
            // since groups_per_p is a power of two. A thread's share of
            // indices is contiguous, so its twiddles change only with p.
            split_twiddle<V> w[R]{};
            int twiddles_of = -1;
#pragma omp for schedule(static)
            for (int g = 0; g < m * groups_per_p; ++g) {
                const int p = g / groups_per_p;
                const int q = (g % groups_per_p) * width;
                if (p != twiddles_of) {
                    broadcast_twiddles<R, N, s, D, F>(W, p, w);
                    twiddles_of = p;
                }
                body(w, p, q);
            }
        }
    }
}

// ------------------------------------------------------- no-twiddle stage ----

template <int R, Direction D, bool Scaled, class V>
[[gnu::always_inline]] inline void final_group(const complex_t* in, complex_t* out, int stride, int q, double c)
{
    V a[R], b[R];
    #pragma GCC unroll 16
    for (int k = 0; k < R; ++k) {
        a[k] = V::load(in + q + stride * k);
        if constexpr (Scaled) {
            a[k] = scale(a[k], c);
        }
    }
    radix_butterfly<R, D>(a, b);
    #pragma GCC unroll 16
    for (int k = 0; k < R; ++k) {
        b[k].store(out + q + stride * k);
    }
}

// The stage without twiddles, r points at stride s: each q's r values are
// read from and written to the positions q + s k, so in may equal out. The
// scaled transforms multiply its inputs by c.
template <int R, Direction D, Form F, bool Scaled, int s>
[[gnu::noinline]] void final_stage(const complex_t* in, complex_t* out, double c)
{
    if constexpr (s == 1) {
        if constexpr (F == Form::single) {
            final_group<R, D, Scaled, cvec1>(in, out, 1, 0, c);
        } else {
#pragma omp single
            final_group<R, D, Scaled, cvec1>(in, out, 1, 0, c);
        }
    } else {
        if constexpr (F == Form::single) {
            for (int q = 0; q < s; q += 2) {
                final_group<R, D, Scaled, cvec2>(in, out, s, q, c);
            }
        } else {
#pragma omp for schedule(static)
            for (int q = 0; q < s; q += 2) {
                final_group<R, D, Scaled, cvec2>(in, out, s, q, c);
            }
        }
    }
}

} // namespace
} // namespace ZFFT_VARIANT
