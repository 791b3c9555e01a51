#include "zfft_sixstep.h"

#include "zfft_avxdif8.h"
#include "zfft_butterflies.h"
#include "zfft_plan.h"
#include "zfft_twiddles.h"
#include "zfft_work_share.h"

#include <cmath>
#include <cstring>

namespace ZFFT_VARIANT {
namespace ZFFT_SixStep {
namespace {

constexpr int DIRECT_LOG_N_MAX = 5;

// What the five passes over an n by n matrix read.
struct matrix {
    long n;
    int log_n;
    const tile_pair* tiles;
    const complex_t* twiddles; // four per tile
    const complex_t* rows;     // long radix-8 table of the row size
};

// The calling thread's part of a loop: shared out over the team when
// `shared`, else all of it. A shared loop ends with a barrier.
work_share part(long total, bool shared)
{
    return shared ? my_share(total) : work_share{0, total};
}

void end_of_pass(bool shared)
{
    if (shared) {
#pragma omp barrier
    }
}

// The 2 by 2 tile at (row, col): its two rows, each two neighbouring
// elements in one vector.
struct tile2 {
    cvec2 top;
    cvec2 bottom;
};

tile2 load_tile(const complex_t* x, long n, long row, long col)
{
    return {cvec2::load(x + row * n + col), cvec2::load(x + (row + 1) * n + col)};
}

void store_tile(complex_t* x, long n, long row, long col, const tile2& t)
{
    t.top.store(x + row * n + col);
    t.bottom.store(x + (row + 1) * n + col);
}

// Columns become rows: ((a, b), (c, d)) -> ((a, c), (b, d)).
tile2 turned(const tile2& t)
{
    return {cvec2::combine(t.top.lo(), t.bottom.lo()), cvec2::combine(t.top.hi(), t.bottom.hi())};
}

// Tiles are visited in blocks of TILE_BLOCK by TILE_BLOCK tiles, each block
// with its mirror block. The list order would walk the lower tiles down a
// whole column, half a cache line each, at a row stride that is a power of
// two and so keeps meeting the same cache sets; within a block both sides
// use whole lines before the walk moves on. Every tile is still visited
// once, so the result does not depend on the order.
constexpr long TILE_BLOCK = 4;

// Calls visit(t, i, j) for every tile t of the list, the calling thread's
// share of the blocks when `shared`.
template <class Visit>
void for_each_tile(const matrix& m, bool shared, Visit visit)
{
    const long half = m.n / 2;
    const long block = half < TILE_BLOCK ? half : TILE_BLOCK;
    const long blocks = half / block;
    const work_share share = part(blocks * (blocks + 1) / 2, shared);
    // The share's first block pair (bi, bj), bi <= bj, in row order.
    long bi = 0;
    long first = share.begin;
    while (first >= blocks - bi) {
        first -= blocks - bi;
        ++bi;
    }
    long bj = bi + first;
    for (long pair = share.begin; pair < share.end; ++pair) {
        for (long hi = bi * block; hi < (bi + 1) * block; ++hi) {
            const long row_start = hi * half - ((hi + 1) * hi) / 2;
            for (long hj = hi > bj * block ? hi : bj * block; hj < (bj + 1) * block; ++hj) {
                const long t = hj + row_start;
                visit(t, long{m.tiles[t].i}, long{m.tiles[t].j});
            }
        }
        if (++bj == blocks) {
            ++bi;
            bj = bi;
        }
    }
}

// Steps 1 and 5: the matrix in turned into x, one pair of tiles at a time;
// in place when in is x. Both tiles of a pair are loaded before either is
// stored.
void transpose(const complex_t* in, complex_t* x, const matrix& m, bool shared)
{
    const long n = m.n;
    for_each_tile(m, shared, [in, x, n](long, long i, long j) {
        if (i != j) {
            const tile2 upper = load_tile(in, n, i, j);
            const tile2 lower = load_tile(in, n, j, i);
            store_tile(x, n, j, i, turned(upper));
            store_tile(x, n, i, j, turned(lower));
        } else {
            store_tile(x, n, i, i, turned(load_tile(in, n, i, i)));
        }
    });
    end_of_pass(shared);
}

// Step 3: element (r, c) times exp(i r c theta), moved to (c, r). The four
// values of a tile serve its mirror tile too, since r c is symmetric: with
// w = ((w00, w01), (w10, w11)) for the upper tile, the turned upper tile
// takes the turned w, the turned lower tile w as it stands.
template <Direction D, bool Scaled>
void twiddle_transpose(complex_t* x, const matrix& m, double factor, bool shared)
{
    const long n = m.n;
    auto prepared = [factor](const tile2& t) {
        if constexpr (Scaled) {
            return tile2{scale(t.top, factor), scale(t.bottom, factor)};
        } else {
            (void)factor;
            return t;
        }
    };
    auto times = [](const tile2& w, const tile2& t) { return tile2{mul(w.top, t.top), mul(w.bottom, t.bottom)}; };
    for_each_tile(m, shared, [&](long t, long i, long j) {
        const complex_t* wt = m.twiddles + 4 * t;
        const tile2 w{twiddle<D>(cvec2::load(wt)), twiddle<D>(cvec2::load(wt + 2))};
        const tile2 w_turned = turned(w);
        const tile2 upper = turned(prepared(load_tile(x, n, i, j)));
        if (i != j) {
            const tile2 lower = turned(prepared(load_tile(x, n, j, i)));
            store_tile(x, n, j, i, times(w_turned, upper));
            store_tile(x, n, i, j, times(w, lower));
        } else {
            store_tile(x, n, i, i, times(w_turned, upper));
        }
    });
    end_of_pass(shared);
}

// Steps 2 and 4: every row by the single-threaded radix-8 chain, the same
// row of y as its work space.
template <Direction D>
void row_transforms(complex_t* x, complex_t* y, const matrix& m, bool shared)
{
    const work_share share = part(m.n, shared);
    for (long r = share.begin; r < share.end; ++r) {
        if constexpr (D == Direction::forward) {
            ZFFT_AVXDIF8::forward_raw_single(m.log_n, x + r * m.n, y + r * m.n, m.rows);
        } else {
            ZFFT_AVXDIF8::inverse_single(m.log_n, x + r * m.n, y + r * m.n, m.rows);
        }
    }
    end_of_pass(shared);
}

// The even form: two transposes with a twiddled one between them, and the
// two row passes. The first pass reads in (x itself, or the input of
// forward_raw_from); the result stands in x.
template <Direction D, bool Scaled>
void five_passes(const complex_t* in, complex_t* x, complex_t* y, const matrix& m, double factor, bool shared)
{
    transpose(in, x, m, shared);
    row_transforms<D>(x, y, m, shared);
    twiddle_transpose<D, Scaled>(x, m, factor, shared);
    row_transforms<D>(x, y, m, shared);
    transpose(x, x, m, shared);
}

// Odd form, step 1: one radix-8 step from x into y, two p at a time.
template <Direction D, bool Scaled>
void radix8_step(const complex_t* x, complex_t* y, const complex_t* W1, long Q, double factor, bool shared)
{
    const work_share share = part(Q / 2, shared);
    for (long pair = share.begin; pair < share.end; ++pair) {
        const long p = 2 * pair;
        cvec2 a[8];
        cvec2 b[8];
        #pragma GCC unroll 16
        for (int k = 0; k < 8; ++k) {
            a[k] = cvec2::load(x + p + k * Q);
            if constexpr (Scaled) {
                a[k] = scale(a[k], factor);
            }
        }
        butterfly8<D>(a, b);
        const cvec2 w1 = twiddle<D>(cvec2::load(W1 + p));
        cvec2 w = w1;
        b[0].store(y + p);
        #pragma GCC unroll 16
        for (int k = 1; k < 8; ++k) {
            mul(w, b[k]).store(y + p + k * Q);
            w = mul(w1, w);
        }
    }
    end_of_pass(shared);
}

// Odd form, step 3: x[8 j + k] = y[k Q + j], two j at a time.
void interleave(complex_t* x, const complex_t* y, long Q, bool shared)
{
    const work_share share = part(Q / 2, shared);
    for (long pair = share.begin; pair < share.end; ++pair) {
        const long j = 2 * pair;
        #pragma GCC unroll 16
        for (int k = 0; k < 8; ++k) {
            x[8 * j + k] = y[k * Q + j];
            x[8 * (j + 1) + k] = y[k * Q + j + 1];
        }
    }
    end_of_pass(shared);
}

template <Direction D, bool Scaled>
void even_transform(int log_N, const complex_t* in, complex_t* x, complex_t* y, const matrix& m, double factor)
{
    if (log_N >= EVEN_PARALLEL_FROM && team_would_share()) {
#pragma omp parallel
        five_passes<D, Scaled>(in, x, y, m, factor, true);
    } else {
        five_passes<D, Scaled>(in, x, y, m, factor, false);
    }
}

template <Direction D, bool Scaled>
void odd_transform(int log_N, const complex_t* in, complex_t* x, complex_t* y, const complex_t* W1, const matrix& m,
                   double factor)
{
    const long Q = (1L << log_N) / 8;
    const bool fork = team_would_share();
    if (log_N >= ODD_BLOCKS_ON_CALLER_FROM) {
        if (fork) {
#pragma omp parallel
            radix8_step<D, Scaled>(in, y, W1, Q, factor, true);
        } else {
            radix8_step<D, Scaled>(in, y, W1, Q, factor, false);
        }
        // Deliberately outside any region: each sub-transform's shared
        // loops then run whole on this thread.
        #pragma GCC unroll 16
        for (int block = 0; block < 8; ++block) {
            five_passes<D, false>(y + block * Q, y + block * Q, x + block * Q, m, 1.0, true);
        }
        if (fork) {
#pragma omp parallel
            interleave(x, y, Q, true);
        } else {
            interleave(x, y, Q, false);
        }
    } else if (log_N >= ODD_PARALLEL_FROM && fork) {
#pragma omp parallel
        {
            radix8_step<D, Scaled>(in, y, W1, Q, factor, true);
            // At most eight threads are busy here: one block each.
            const work_share blocks = my_share(8);
            for (long block = blocks.begin; block < blocks.end; ++block) {
                five_passes<D, false>(y + block * Q, y + block * Q, x + block * Q, m, 1.0, false);
            }
#pragma omp barrier
            interleave(x, y, Q, true);
        }
    } else {
        radix8_step<D, Scaled>(in, y, W1, Q, factor, false);
        #pragma GCC unroll 16
        for (int block = 0; block < 8; ++block) {
            five_passes<D, false>(y + block * Q, y + block * Q, x + block * Q, m, 1.0, false);
        }
        interleave(x, y, Q, false);
    }
}

} // namespace

void FFT0::clear_views()
{
    m_first = nullptr;
    m_tile_twiddles = nullptr;
    m_rows = nullptr;
    m_tiles = nullptr;
}

void FFT0::setup(int n)
{
    clear_views();
    int l = 0;
    for (int rest = n; rest >= 2; rest /= 2) {
        ++l;
    }
    setup_log2(l);
}

// The tile list and the four twiddles of every tile for an n by n matrix.
void FFT0::make_tiles(int n)
{
    const long half = n / 2;
    const long count = (half + 1) * half / 2;
    // Four pairs of 16-bit indices fill one complex_t of the block.
    tile_pair* tiles = reinterpret_cast<tile_pair*>(m_tile_owner.resize(static_cast<std::size_t>((count + 3) / 4)));
    complex_t* twiddles = m_tile_twiddle_owner.resize(static_cast<std::size_t>(4 * count));
    const double theta = -TWO_PI / (static_cast<double>(n) * static_cast<double>(n));
    auto value = [theta](long row, long col) {
        const double a = static_cast<double>(row) * (static_cast<double>(col) * theta);
        return complex_t{std::cos(a), std::sin(a)};
    };
#pragma omp parallel for schedule(static) if (static_cast<long>(n) * n >= PARALLEL_FILL_FROM)
    for (long hi = 0; hi < half; ++hi) {
        const long i = 2 * hi;
        for (long hj = hi; hj < half; ++hj) {
            const long j = 2 * hj;
            const long t = hj + hi * half - ((hi + 1) * hi) / 2;
            tiles[t] = {static_cast<std::uint16_t>(j), static_cast<std::uint16_t>(i)};
            twiddles[4 * t + 0] = value(i, j);
            twiddles[4 * t + 1] = value(i, j + 1);
            twiddles[4 * t + 2] = value(i + 1, j);
            twiddles[4 * t + 3] = value(i + 1, j + 1);
        }
    }
    m_tiles = tiles;
}

void FFT0::setup_log2(int l)
{
    clear_views();
    m_tile_owner.release();
    m_row_owner.release();
    m_tile_twiddle_owner.release();
    m_first_owner.release();
    log_N = l;
    N = (l >= 0 && l <= 30) ? 1 << l : 0;
    if (l < 1 || l > 24) {
        return;
    }

    auto make_row_table = [this](int row_size) {
        if (row_size >= 9) {
            complex_t* rows = m_row_owner.resize(2 * static_cast<std::size_t>(row_size));
            init_twiddles_long(8, row_size, rows);
            m_rows = rows;
        }
    };

    if (l <= DIRECT_LOG_N_MAX) {
        make_row_table(N);
        m_first = m_rows;
        return;
    }
    if (l % 2 == 0) {
        const int n = 1 << (l / 2);
        make_tiles(n);
        m_first = m_tile_twiddle_owner.data();
        make_row_table(n);
        return;
    }
    const long eighth = N / 8;
    complex_t* W1 = m_first_owner.resize(static_cast<std::size_t>(eighth));
    const double theta1 = -TWO_PI / N;
#pragma omp parallel for schedule(static) if (eighth >= PARALLEL_FILL_FROM)
    for (long p = 0; p < eighth; ++p) {
        const double a = static_cast<double>(p) * theta1;
        W1[p] = {std::cos(a), std::sin(a)};
    }
    m_first = W1;
    const int n = 1 << (l / 2 - 1);
    make_tiles(n);
    // The odd form keeps its tile twiddles in their own view, the first
    // being the odd step's table; the block's owner is the tile one.
    m_tile_twiddles = m_tile_twiddle_owner.data();
    make_row_table(n);
}

void FFT0::run(bool inverse, Scaling scaling, const complex_t* in, complex_t* x, complex_t* y) const
{
    if (log_N < 1 || log_N > 24) {
        return;
    }
    if (log_N <= DIRECT_LOG_N_MAX) {
        if (in != x) {
            std::memcpy(static_cast<void*>(x), in, static_cast<std::size_t>(N) * sizeof(complex_t));
        }
        using namespace ZFFT_AVXDIF8;
        if (!inverse) {
            scaling == Scaling::none    ? forward_raw_single(log_N, x, y, m_first)
            : scaling == Scaling::by_n ? forward_single(log_N, x, y, m_first)
                                        : forward_unitary_single(log_N, x, y, m_first);
        } else {
            scaling == Scaling::none    ? inverse_single(log_N, x, y, m_first)
            : scaling == Scaling::by_n ? inverse_norm_single(log_N, x, y, m_first)
                                        : inverse_unitary_single(log_N, x, y, m_first);
        }
        return;
    }

    const double factor = scaling == Scaling::by_n ? 1.0 / static_cast<double>(N)
                                                   : std::sqrt(1.0 / static_cast<double>(N));
    const bool odd = log_N % 2 != 0;
    const int log_n = odd ? log_N / 2 - 1 : log_N / 2;
    const long n = 1L << log_n;
    const matrix m{n, log_n, m_tiles, odd ? m_tile_twiddles : m_first, m_rows};

    auto go = [&]<Direction D, bool Scaled>() {
        if (odd) {
            odd_transform<D, Scaled>(log_N, in, x, y, m_first, m, factor);
        } else {
            even_transform<D, Scaled>(log_N, in, x, y, m, factor);
        }
    };
    if (inverse) {
        if (scaling == Scaling::none) {
            go.template operator()<Direction::inverse, false>();
        } else {
            go.template operator()<Direction::inverse, true>();
        }
    } else if (scaling == Scaling::none) {
        go.template operator()<Direction::forward, false>();
    } else {
        go.template operator()<Direction::forward, true>();
    }
}

void FFT0::forward(complex_t* x, complex_t* y)
{
    run(false, Scaling::by_n, x, x, y);
}

void FFT0::forward_raw(complex_t* x, complex_t* y)
{
    run(false, Scaling::none, x, x, y);
}

void FFT0::forward_raw_from(const complex_t* in, complex_t* x, complex_t* y)
{
    run(false, Scaling::none, in, x, y);
}

void FFT0::forward_unitary(complex_t* x, complex_t* y)
{
    run(false, Scaling::by_sqrt_n, x, x, y);
}

void FFT0::inverse(complex_t* x, complex_t* y)
{
    run(true, Scaling::none, x, x, y);
}

void FFT0::inverse_unitary(complex_t* x, complex_t* y)
{
    run(true, Scaling::by_sqrt_n, x, x, y);
}

void FFT0::inverse_norm(complex_t* x, complex_t* y)
{
    run(true, Scaling::by_n, x, x, y);
}

} // namespace ZFFT_SixStep
} // namespace ZFFT_VARIANT
