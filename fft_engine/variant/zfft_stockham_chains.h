// Chains of Stockham stages: one fully unrolled chain per log_N, picked by a
// dispatch on log_N. Decimation in frequency runs the twiddled stages with n
// falling, (N, 1), (N/r, r), ..., and ends with the no-twiddle stage;
// decimation in time runs the same chain backwards. The stages ping-pong
// between x and y so that the last one writes x: the no-twiddle stage runs
// in place when the number of twiddled stages is even and between the
// arrays when it is odd. The factor of a scaled transform is folded into the
// no-twiddle stage, as a literal of each chain.
//
// The first stage of a chain reads `in`, which is x itself for a transform
// in place; the real transform hands its samples over this way, without a
// copy.
#pragma once

#include "zfft_stockham_fft0.h"
#include "zfft_stockham_stages.h"

#include <omp.h>

#include <utility>

namespace ZFFT_VARIANT {
namespace {

enum class Scaling { none, by_n, by_sqrt_n };

// 1/N or 1/sqrt(N) for N = 2^L, exact up to the rounding of sqrt(1/2).
template <Scaling S, int L>
constexpr double scale_factor()
{
    double c = 1.0;
    const int halvings = S == Scaling::by_n ? L : L / 2;
    for (int i = 0; i < halvings; ++i) {
        c *= 0.5;
    }
    if (S == Scaling::by_sqrt_n && L % 2 == 1) {
        c *= SQRT_HALF;
    }
    return c;
}

template <int R>
constexpr int radix_bits = R == 4 ? 2 : R == 8 ? 3 : 4;

// How log_N = b q + t splits into twiddled stages and the final one.
template <int R, int L>
struct chain_shape {
    static constexpr int b = radix_bits<R>;
    static constexpr int t = L % b;
    static constexpr int twiddled = t == 0 ? L / b - 1 : L / b;
    static constexpr int final_radix = t == 0 ? R : 1 << t;
    static constexpr int final_stride = 1 << (b * twiddled);
};

template <int R, Flow Fl, Direction D, Form F, Scaling S, int L>
inline void chain_body(const complex_t* in, complex_t* x, complex_t* y, const complex_t* W)
{
    using shape = chain_shape<R, L>;
    constexpr int K = shape::twiddled;
    constexpr int N = 1 << L;
    constexpr int b = shape::b;
    constexpr bool scaled = S != Scaling::none;
    constexpr double c = scale_factor<S, L>();
    complex_t* const buffers[2] = {x, y};

    if constexpr (Fl == Flow::dif) {
        // Stage i is (N / r^i, r^i); it reads buffers[i % 2], the first one in.
        [&]<int... I>(std::integer_sequence<int, I...>) {
            (twiddled_stage<R, Fl, D, F, (N >> (b * I)), (1 << (b * I))>(
                 I == 0 ? in : buffers[I & 1], buffers[(I + 1) & 1], W),
             ...);
        }(std::make_integer_sequence<int, K>{});
        final_stage<shape::final_radix, D, F, scaled, shape::final_stride>(K == 0 ? in : buffers[K & 1], x, c);
    } else {
        // The no-twiddle stage first, then (r^j n', r^j) with j falling; the
        // i-th twiddled stage reads buffers[(K + i) % 2] and the last writes x.
        final_stage<shape::final_radix, D, F, scaled, shape::final_stride>(in, buffers[K & 1], c);
        [&]<int... I>(std::integer_sequence<int, I...>) {
            (twiddled_stage<R, Fl, D, F, (N >> (b * (K - 1 - I))), (1 << (b * (K - 1 - I)))>(
                 buffers[(K + I) & 1], buffers[(K + I + 1) & 1], W),
             ...);
        }(std::make_integer_sequence<int, K>{});
    }
}

// The chain of one log_N; the parallel form forks once for the whole chain.
// A runtime that would make a team of one thread is not asked to: its
// worksharing loops then run whole on the calling thread, the same stages
// with the same twiddles, and the fork and the barriers cost nothing.
template <int R, Flow Fl, Direction D, Form F, Scaling S, int L>
void chain(const complex_t* in, complex_t* x, complex_t* y, const complex_t* W)
{
    if constexpr (F == Form::parallel) {
        if (omp_get_max_threads() == 1) {
            chain_body<R, Fl, D, F, S, L>(in, x, y, W);
            return;
        }
#pragma omp parallel
        chain_body<R, Fl, D, F, S, L>(in, x, y, W);
    } else {
        chain_body<R, Fl, D, F, S, L>(in, x, y, W);
    }
}

// The chain of log_N among Lfirst .. Llast; null for any other log_N.
template <int R, Flow Fl, Direction D, Form F, Scaling S, int Lfirst, int Llast>
chain_fn chain_for(int log_N)
{
    chain_fn found = nullptr;
    [&]<int... I>(std::integer_sequence<int, I...>) {
        (void)((log_N == Lfirst + I && (found = &chain<R, Fl, D, F, S, Lfirst + I>, true)) || ...);
    }(std::make_integer_sequence<int, Llast - Lfirst + 1>{});
    return found;
}

// Runs the chain of log_N among Lfirst .. Llast in place; any other log_N
// does nothing.
template <int R, Flow Fl, Direction D, Form F, Scaling S, int Lfirst, int Llast>
void run_chain(int log_N, complex_t* x, complex_t* y, const complex_t* W)
{
    if (const chain_fn c = chain_for<R, Fl, D, F, S, Lfirst, Llast>(log_N)) {
        c(x, x, y, W);
    }
}

constexpr int LOG_N_MAX = 24;

constexpr int log2_of(int n)
{
    int l = 0;
    while ((1 << l) < n) {
        ++l;
    }
    return l;
}

// The chain of one of the classes: below the class's threshold T the
// single-threaded chain on the long table, from T on the parallel chain on
// the short table; null for a log_N outside 1 to 24.
template <int R, Flow Fl, int T, Direction D, Scaling S>
chain_fn stockham_chain(int log_N)
{
    constexpr int log_T = log2_of(T);
    if (log_N < 1 || log_N > LOG_N_MAX) {
        return nullptr;
    }
    if (log_N >= log_T) {
        return chain_for<R, Fl, D, Form::parallel, S, log_T, LOG_N_MAX>(log_N);
    }
    return chain_for<R, Fl, D, Form::single, S, 1, log_T - 1>(log_N);
}

// The three scalings of one direction, in the order of chain_set.
template <int R, Flow Fl, int T, Direction D>
void pick_stockham_chains(int log_N, chain_fn (&chains)[3])
{
    chains[0] = stockham_chain<R, Fl, T, D, Scaling::none>(log_N);
    chains[1] = stockham_chain<R, Fl, T, D, Scaling::by_n>(log_N);
    chains[2] = stockham_chain<R, Fl, T, D, Scaling::by_sqrt_n>(log_N);
}

} // namespace
} // namespace ZFFT_VARIANT
