// The peak search, vectorised the way the variant's registers allow. Bins are
// taken in blocks: one pass finds each block's largest power and keeps the
// first block that beats all earlier ones; a second pass, inside that block
// only, finds the first bin of exactly that power. Every power is rounded as
// re * re + im * im in both passes, so the answer is the plain scan's, ties
// and NaN included.
#include "zfft_strongest_bin.h"

#include <immintrin.h>

namespace ZFFT_VARIANT {
namespace {

constexpr std::uint64_t BLOCK = 64;

double power(const complex_t& v)
{
    return v.re * v.re + v.im * v.im;
}

// p when it exceeds m, else m: a NaN p never replaces m.
double larger(double p, double m)
{
    return p > m ? p : m;
}

#if ZFFT_VARIANT_WIDE
// Four bins to a register. Their powers come out in the lane order of the
// in-lane unpacks: bins 0, 2, 1, 3.
using powers_t = __m256d;
constexpr std::uint64_t LANES = 4;

[[gnu::always_inline]] inline powers_t powers_of(const complex_t* X)
{
    const __m256d a = _mm256_loadu_pd(&X[0].re);
    const __m256d b = _mm256_loadu_pd(&X[2].re);
    const __m256d sa = _mm256_mul_pd(a, a);
    const __m256d sb = _mm256_mul_pd(b, b);
    return _mm256_add_pd(_mm256_unpacklo_pd(sa, sb), _mm256_unpackhi_pd(sa, sb));
}

[[gnu::always_inline]] inline powers_t zero_powers() { return _mm256_setzero_pd(); }

// The maximum instruction answers its second operand when the first is NaN.
[[gnu::always_inline]] inline powers_t larger(powers_t p, powers_t m) { return _mm256_max_pd(p, m); }

// Over powers that are never NaN, so the order of the comparisons is free.
[[gnu::always_inline]] inline double largest_lane(powers_t m)
{
    const __m128d half = _mm_max_pd(_mm256_castpd256_pd128(m), _mm256_extractf128_pd(m, 1));
    return _mm_cvtsd_f64(_mm_max_sd(half, _mm_unpackhi_pd(half, half)));
}

// Bit b set when bin b of the four holds power p.
[[gnu::always_inline]] inline unsigned bins_of_power(powers_t powers, double p)
{
    const unsigned lanes = static_cast<unsigned>(
        _mm256_movemask_pd(_mm256_cmp_pd(powers, _mm256_set1_pd(p), _CMP_EQ_OQ)));
    return (lanes & 9u) | ((lanes & 2u) << 1) | ((lanes & 4u) >> 1);
}
#else
// Two bins to a register, in order.
using powers_t = __m128d;
constexpr std::uint64_t LANES = 2;

[[gnu::always_inline]] inline powers_t powers_of(const complex_t* X)
{
    const __m128d a = _mm_loadu_pd(&X[0].re);
    const __m128d b = _mm_loadu_pd(&X[1].re);
    const __m128d sa = _mm_mul_pd(a, a);
    const __m128d sb = _mm_mul_pd(b, b);
    return _mm_add_pd(_mm_unpacklo_pd(sa, sb), _mm_unpackhi_pd(sa, sb));
}

[[gnu::always_inline]] inline powers_t zero_powers() { return _mm_setzero_pd(); }

[[gnu::always_inline]] inline powers_t larger(powers_t p, powers_t m) { return _mm_max_pd(p, m); }

[[gnu::always_inline]] inline double largest_lane(powers_t m)
{
    return _mm_cvtsd_f64(_mm_max_sd(m, _mm_unpackhi_pd(m, m)));
}

[[gnu::always_inline]] inline unsigned bins_of_power(powers_t powers, double p)
{
    return static_cast<unsigned>(_mm_movemask_pd(_mm_cmpeq_pd(powers, _mm_set1_pd(p))));
}
#endif

// The largest power of X[j .. end), never below 0.0 and never NaN. Two
// running maxima, so that no step waits on the one before it.
double largest_power(const complex_t* X, std::uint64_t j, std::uint64_t end)
{
    powers_t even = zero_powers();
    powers_t odd = zero_powers();
    for (; j + 2 * LANES <= end; j += 2 * LANES) {
        even = larger(powers_of(X + j), even);
        odd = larger(powers_of(X + j + LANES), odd);
    }
    for (; j + LANES <= end; j += LANES) {
        even = larger(powers_of(X + j), even);
    }
    double m = largest_lane(larger(odd, even));
    for (; j < end; ++j) {
        m = larger(power(X[j]), m);
    }
    return m;
}

// The first bin of X[j .. end) whose power is p; p is one of them.
std::uint64_t first_of_power(const complex_t* X, std::uint64_t j, std::uint64_t end, double p)
{
    for (; j + LANES <= end; j += LANES) {
        if (const unsigned bins = bins_of_power(powers_of(X + j), p)) {
            return j + static_cast<std::uint64_t>(__builtin_ctz(bins));
        }
    }
    while (j < end && power(X[j]) != p) {
        ++j;
    }
    return j;
}

std::uint64_t block_end(std::uint64_t j, std::uint64_t limit)
{
    return limit - j < BLOCK ? limit : j + BLOCK;
}

} // namespace

std::uint64_t strongest_bin(const complex_t* X, std::uint64_t limit)
{
    double best = 0.0;
    std::uint64_t best_block = 0;
    for (std::uint64_t j = 1; j < limit; j += BLOCK) {
        const double block_best = largest_power(X, j, block_end(j, limit));
        if (block_best > best) {
            best = block_best;
            best_block = j;
        }
    }
    if (best_block == 0) {
        return 1;
    }
    return first_of_power(X, best_block, block_end(best_block, limit), best);
}

} // namespace ZFFT_VARIANT
