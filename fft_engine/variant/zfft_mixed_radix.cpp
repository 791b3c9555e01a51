#include "zfft_mixed_radix.h"

#include "zfft_butterflies.h"
#include "zfft_plan.h"
#include "zfft_work_share.h"

#include <cmath>
#include <cstring>
#include <type_traits>
#include <utility>

namespace ZFFT_VARIANT {
namespace ZFFT_MixedRadix {
namespace {

template <Direction D>
inline cvec1 table_entry(const complex_t* W, long index)
{
    return twiddle<D>(cvec1::load(W + index));
}

// w[k] = w1^k for k = 1 .. R-1, by complex products; w[0] is not used.
template <int R>
inline void powers(cvec1 w1, cvec1 (&w)[R])
{
    w[0] = w1;
    w[1] = w1;
    #pragma GCC unroll 16
    for (int k = 2; k < R; ++k) {
        w[k] = mul(w1, w[k - 1]);
    }
}

template <class V>
inline V spread(cvec1 w)
{
    if constexpr (std::is_same_v<V, cvec1>) {
        return w;
    } else {
        return cvec2::combine(w, w);
    }
}

template <int R, Direction D, class V>
inline void butterfly(const V (&a)[R], V (&b)[R])
{
    if constexpr (R == 2) {
        butterfly2(a[0], a[1], b[0], b[1]);
    } else if constexpr (R == 4) {
        butterfly4<D>(a, b);
    } else {
        butterfly8<D>(a, b);
    }
}

// One butterfly of a radix 2, 4 or 8 stage: the R inputs of group (p, q),
// output k multiplied by w[k]. Without twiddles (Final) the outputs go back
// to the positions of the inputs, which is what lets a final stage run in
// place.
template <int R, Direction D, bool Final, class V>
inline void pow2_group(const complex_t* in, complex_t* out, long m, long s, long p, long q,
                       const V (&w)[R])
{
    V a[R];
    V b[R];
    #pragma GCC unroll 16
    for (int k = 0; k < R; ++k) {
        a[k] = V::load(in + q + s * (p + k * m));
    }
    butterfly<R, D>(a, b);
    b[0].store(out + q + s * R * p);
    #pragma GCC unroll 16
    for (int k = 1; k < R; ++k) {
        const V v = Final ? b[k] : mul(w[k], b[k]);
        v.store(out + q + s * (R * p + k));
    }
}

// A radix 2, 4 or 8 stage of m groups at stride s. These radices come
// first in the factoring, so s is 1 or even: two neighbouring q share one
// vector when s > 1.
template <int R, Direction D, bool Final>
void pow2_stage(const complex_t* in, complex_t* out, const complex_t* W, long m, long s)
{
    if (s == 1) {
        if constexpr (Final) {
            // The whole transform is one R-point butterfly.
#pragma omp single
            {
                const cvec1 unused[R] = {};
                pow2_group<R, D, true>(in, out, 1, 1, 0, 0, unused);
            }
            return;
        } else {
            const work_share share = my_share(m);
            for (long p = share.begin; p < share.end; ++p) {
                cvec1 w[R];
                powers(table_entry<D>(W, p), w);
                pow2_group<R, D, false>(in, out, m, 1, p, 0, w);
            }
        }
    } else {
        const long pairs = s / 2;
        const work_share share = my_share(m * pairs);
        long p = share.begin / pairs;
        long qq = share.begin % pairs;
        for (long i = share.begin; i < share.end; ++p, qq = 0) {
            cvec2 w[R] = {};
            if constexpr (!Final) {
                cvec1 w1[R];
                powers(table_entry<D>(W, s * p), w1);
                #pragma GCC unroll 16
                for (int k = 1; k < R; ++k) {
                    w[k] = spread<cvec2>(w1[k]);
                }
            }
            for (; qq < pairs && i < share.end; ++qq, ++i) {
                pow2_group<R, D, Final>(in, out, m, s, p, 2 * qq, w);
            }
        }
    }
#pragma omp barrier
}

// Radix 3: the constants c3 = exp(-2 pi i / 3) and its square come from the
// table, so the stage reads them once at its beginning.
template <Direction D, bool Final>
void radix3_stage(const complex_t* in, complex_t* out, const complex_t* W, long N, long m, long s)
{
    const cvec1 c3 = table_entry<D>(W, N / 3);
    const cvec1 c3s = mul(c3, c3);
    const work_share share = my_share(m * s);
    long p = share.begin / s;
    long q = share.begin % s;
    for (long i = share.begin; i < share.end; ++p, q = 0) {
        cvec1 w[3] = {};
        if constexpr (!Final) {
            powers(table_entry<D>(W, s * p), w);
        }
        for (; q < s && i < share.end; ++q, ++i) {
            const cvec1 a = cvec1::load(in + q + s * p);
            const cvec1 b = cvec1::load(in + q + s * (p + m));
            const cvec1 c = cvec1::load(in + q + s * (p + 2 * m));
            const cvec1 y0 = a + b + c;
            const cvec1 y1 = mul(c3, b) + a + mul(c3s, c);
            const cvec1 y2 = mul(c3s, b) + a + mul(c3, c);
            y0.store(out + q + s * (3 * p));
            (Final ? y1 : mul(w[1], y1)).store(out + q + s * (3 * p + 1));
            (Final ? y2 : mul(w[2], y2)).store(out + q + s * (3 * p + 2));
        }
    }
#pragma omp barrier
}

// Radix 5: the 5-point sum with the powers of c5 = exp(-2 pi i / 5), taken
// from the table and raised by complex products.
template <Direction D, bool Final>
void radix5_stage(const complex_t* in, complex_t* out, const complex_t* W, long N, long m, long s)
{
    cvec1 c[5];
    powers(table_entry<D>(W, N / 5), c);
    const work_share share = my_share(m * s);
    long p = share.begin / s;
    long q = share.begin % s;
    for (long i = share.begin; i < share.end; ++p, q = 0) {
        cvec1 w[5] = {};
        if constexpr (!Final) {
            powers(table_entry<D>(W, s * p), w);
        }
        for (; q < s && i < share.end; ++q, ++i) {
            cvec1 a[5];
            #pragma GCC unroll 16
            for (int k = 0; k < 5; ++k) {
                a[k] = cvec1::load(in + q + s * (p + k * m));
            }
            const cvec1 y0 = a[0] + a[1] + a[2] + a[3] + a[4];
            y0.store(out + q + s * (5 * p));
            #pragma GCC unroll 16
            for (int k = 1; k < 5; ++k) {
                cvec1 sum = a[0];
                #pragma GCC unroll 16
                for (int j = 1; j < 5; ++j) {
                    sum = sum + mul(c[(j * k) % 5], a[j]);
                }
                (Final ? sum : mul(w[k], sum)).store(out + q + s * (5 * p + k));
            }
        }
    }
#pragma omp barrier
}

// The direct sum for a prime factor d (or the last factor when n is prime),
// of order d squared for every group.
template <Direction D>
void generic_stage(const complex_t* in, complex_t* out, const complex_t* W, long d, long m, long s)
{
    const long ms = m * s;
    const work_share share = my_share(m * s);
    long p = share.begin / s;
    long q = share.begin % s;
    for (long i = share.begin; i < share.end; ++p, q = 0) {
        for (; q < s && i < share.end; ++q, ++i) {
            for (long j = 0; j < d; ++j) {
                long jk = 0; // (j k) mod d, kept as a running sum
                cvec1 sum = mul(table_entry<D>(W, 0), cvec1::load(in + q + s * p));
                for (long k = 1; k < d; ++k) {
                    jk += j;
                    if (jk >= d) {
                        jk -= d;
                    }
                    sum = sum + mul(table_entry<D>(W, jk * ms), cvec1::load(in + q + s * (p + k * m)));
                }
                mul(table_entry<D>(W, j * s * p), sum).store(out + q + s * (d * p + j));
            }
        }
    }
#pragma omp barrier
}

template <Direction D>
void generic_final(const complex_t* in, complex_t* out, const complex_t* W, long d, long s)
{
    const work_share share = my_share(s);
    for (long q = share.begin; q < share.end; ++q) {
        for (long j = 0; j < d; ++j) {
            long jk = 0;
            cvec1 sum = mul(table_entry<D>(W, 0), cvec1::load(in + q));
            for (long k = 1; k < d; ++k) {
                jk += j;
                if (jk >= d) {
                    jk -= d;
                }
                sum = sum + mul(table_entry<D>(W, jk * s), cvec1::load(in + q + s * k));
            }
            sum.store(out + q + s * j);
        }
    }
#pragma omp barrier
}

void copy_all(const complex_t* from, complex_t* to, long count)
{
    const work_share share = my_share(count);
    for (long i = share.begin; i < share.end; ++i) {
        to[i] = from[i];
    }
#pragma omp barrier
}

// The driver. Every thread of a parallel region runs it alike, stepping
// through the same factorisation; the stages share their loops out and end
// with a barrier. Outside a region the one caller does all the work.
template <Direction D>
void drive(complex_t* x, complex_t* y, const complex_t* W, long N)
{
    long n = N;
    long s = 1;
    long d = 7;
    bool eo = false;
    complex_t* in = x;
    complex_t* out = y;
    if (n * s < 2) {
        return;
    }
    for (;;) {
        // A final stage leaves the result in x: from y into x after an odd
        // number of stages, in place in x after an even number.
        complex_t* final_out = eo ? out : in;
        long r = 0;
        if (n % 8 == 0) {
            if (n == 8) {
                pow2_stage<8, D, true>(in, final_out, W, 1, s);
                return;
            }
            pow2_stage<8, D, false>(in, out, W, n / 8, s);
            r = 8;
        } else if (n % 4 == 0) {
            if (n == 4) {
                pow2_stage<4, D, true>(in, final_out, W, 1, s);
                return;
            }
            pow2_stage<4, D, false>(in, out, W, n / 4, s);
            r = 4;
        } else if (n % 2 == 0) {
            if (n == 2) {
                pow2_stage<2, D, true>(in, final_out, W, 1, s);
                return;
            }
            pow2_stage<2, D, false>(in, out, W, n / 2, s);
            r = 2;
        } else if (n % 5 == 0) {
            if (n == 5) {
                radix5_stage<D, true>(in, final_out, W, N, 1, s);
                return;
            }
            radix5_stage<D, false>(in, out, W, N, n / 5, s);
            r = 5;
        } else if (n % 3 == 0) {
            if (n == 3) {
                radix3_stage<D, true>(in, final_out, W, N, 1, s);
                return;
            }
            radix3_stage<D, false>(in, out, W, N, n / 3, s);
            r = 3;
        } else {
            // Least divisor from 7 upward; it stays where it is for the
            // next search, since no smaller factor can be left.
            while (n % d != 0) {
                if (d * d > n) {
                    d = n;
                } else {
                    d += 2;
                }
            }
            if (d == n) {
                generic_final<D>(in, out, W, d, s);
                if (!eo) {
                    copy_all(out, x, n * s);
                }
                return;
            }
            generic_stage<D>(in, out, W, d, n / d, s);
            r = d;
        }
        n /= r;
        s *= r;
        eo = !eo;
        std::swap(in, out);
        if (n * s < 2) {
            return;
        }
    }
}

} // namespace

void FFT0::setup(int n)
{
    N = n;
    W = nullptr;
    m_table.release();
    if (n < 1) {
        return;
    }
    const double theta = TWO_PI / N;
    complex_t* table = m_table.resize(static_cast<std::size_t>(N) + 1);
    const long count = static_cast<long>(N) + 1;
#pragma omp parallel for schedule(static) if (N >= PARALLEL_FROM)
    for (long p = 0; p < count; ++p) {
        const double angle = static_cast<double>(p) * theta;
        table[p] = {std::cos(angle), -std::sin(angle)};
    }
    W = table;
}

void FFT0::setup_log2(int log_N)
{
    setup(log_N >= 0 && log_N < 31 ? 1 << log_N : 0);
}

void FFT0::run(bool inverse, complex_t* x, complex_t* y) const
{
    if (N < 2) {
        return;
    }
    const complex_t* table = W;
    const long n = N;
    if (n >= PARALLEL_FROM) {
#pragma omp parallel
        {
            if (inverse) {
                drive<Direction::inverse>(x, y, table, n);
            } else {
                drive<Direction::forward>(x, y, table, n);
            }
        }
    } else if (inverse) {
        drive<Direction::inverse>(x, y, table, n);
    } else {
        drive<Direction::forward>(x, y, table, n);
    }
}

void FFT0::scale(complex_t* x, double factor) const
{
    const long n = N;
    if (n >= PARALLEL_FROM) {
#pragma omp parallel for schedule(static)
        for (long i = 0; i < n; ++i) {
            ZFFT_VARIANT::scale(cvec1::load(x + i), factor).store(x + i);
        }
    } else {
        for (long i = 0; i < n; ++i) {
            ZFFT_VARIANT::scale(cvec1::load(x + i), factor).store(x + i);
        }
    }
}

void FFT0::forward(complex_t* x, complex_t* y)
{
    run(false, x, y);
    scale(x, 1.0 / static_cast<double>(N));
}

void FFT0::forward_raw(complex_t* x, complex_t* y)
{
    run(false, x, y);
}

// The factorisation starts with whichever radix divides N, so the input is
// copied into place first.
void FFT0::forward_raw_from(const complex_t* in, complex_t* x, complex_t* y)
{
    if (in != x && N > 0) {
        std::memcpy(static_cast<void*>(x), in, static_cast<std::size_t>(N) * sizeof(complex_t));
    }
    run(false, x, y);
}

void FFT0::forward_unitary(complex_t* x, complex_t* y)
{
    run(false, x, y);
    scale(x, std::sqrt(1.0 / static_cast<double>(N)));
}

void FFT0::inverse(complex_t* x, complex_t* y)
{
    run(true, x, y);
}

void FFT0::inverse_unitary(complex_t* x, complex_t* y)
{
    run(true, x, y);
    scale(x, std::sqrt(1.0 / static_cast<double>(N)));
}

void FFT0::inverse_norm(complex_t* x, complex_t* y)
{
    run(true, x, y);
    scale(x, 1.0 / static_cast<double>(N));
}

} // namespace ZFFT_MixedRadix
} // namespace ZFFT_VARIANT
