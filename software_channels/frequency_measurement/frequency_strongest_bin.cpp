#include "frequency_strongest_bin.h"

#include <cstring>

namespace {

using ZFFT::complex_t;

// Two doubles in the compiler's generic vector type: plain code that becomes
// SSE2 on every x86-64 processor, with no instruction set chosen at run time.
typedef double Pair __attribute__((vector_size(16)));
typedef long long PairMask __attribute__((vector_size(16)));

constexpr std::uint64_t BLOCK = 64;

double power(complex_t v)
{
    return v.re * v.re + v.im * v.im;
}

// The powers of X[j] and X[j+1], each re^2 + im^2 in the order of power(),
// so both forms give the same bits.
Pair powersOfPair(const complex_t* X, std::uint64_t j)
{
    Pair a;
    Pair b;
    std::memcpy(&a, &X[j], sizeof a);
    std::memcpy(&b, &X[j + 1], sizeof b);
    const Pair sa = a * a;
    const Pair sb = b * b;
    return __builtin_shuffle(sa, sb, PairMask{0, 2}) + __builtin_shuffle(sa, sb, PairMask{1, 3});
}

// p when it exceeds m, else m: a NaN p never replaces m.
Pair larger(Pair p, Pair m)
{
    return p > m ? p : m;
}

double larger(double p, double m)
{
    return p > m ? p : m;
}

// The largest power of the BLOCK bins from j on, never below 0.0 and never
// NaN. Two running maxima, so that no step waits on the one before it.
double largestPowerOfBlock(const complex_t* X, std::uint64_t j)
{
    Pair even{0.0, 0.0};
    Pair odd{0.0, 0.0};
    for (std::uint64_t i = j; i < j + BLOCK; i += 4) {
        even = larger(powersOfPair(X, i), even);
        odd = larger(powersOfPair(X, i + 2), odd);
    }
    const Pair both = larger(even, odd);
    return larger(both[1], both[0]);
}

} // namespace

// The search runs over whole blocks first and keeps the first block whose
// largest power beats all earlier ones; only that block is then searched for
// the position of its peak. The powers are the same bits in both passes, so
// the answer is the plain scan's, ties and NaN included.
std::uint64_t strongestBin(const complex_t* X, std::uint64_t limit)
{
    double best = 0.0;
    std::uint64_t best_block = 0;
    std::uint64_t j = 1;
    for (; j + BLOCK <= limit; j += BLOCK) {
        const double block_best = largestPowerOfBlock(X, j);
        if (block_best > best) {
            best = block_best;
            best_block = j;
        }
    }
    std::uint64_t k = 1;
    double tail_best = best;
    for (; j < limit; ++j) {
        const double p = power(X[j]);
        if (p > tail_best) {
            tail_best = p;
            k = j;
        }
    }
    if (tail_best > best || best_block == 0) {
        return k;
    }
    for (j = best_block; j < best_block + BLOCK; ++j) {
        if (power(X[j]) == best) {
            break;
        }
    }
    return j;
}
