#include "zfft_rfft.h"

#include "zfft_cvec.h"
#include "zfft_plan.h"
#include "zfft_work_share.h"

#include <cmath>
#include <cstring>
#include <memory>

namespace ZFFT_VARIANT {
namespace {


inline cvec2 reversed(cvec2 v)
{
    return cvec2::combine(v.hi(), v.lo());
}

// Steps 5 and 6 of the forward frame for k in [k0, k1), within 1 .. Nq:
// X[k] = z[k] - W[k] d with d = z[k] - conj z[Nh-k], the partner bin Nh-k
// from the same values, and the mirror bins N-k and Nh+k, which are where
// z[Nh-k] and z[k] were read. So each k touches only its own four places
// and no pass over y follows. Two neighbouring k share a vector below Nq,
// where the partners are distinct; at k = Nq the two stores of y[Nq] and of
// y[N-Nq] hit one place each, and the second one stands.
//
// Up to 16 samples the inner transform is one straight-line stage that has
// just stored its points one at a time; a vector load over two of those
// stores waits until both have left the store buffer, so there the split
// takes one k at a time.
template <bool Scaled>
void split_and_mirror(complex_t* y, const complex_t* W, long Nh, long Nq, long k0, long k1, double r)
{
    complex_t* z = y + Nh;
    long k = k0;
    const long pairs_below = Nh > 8 ? Nq : 0;
    for (; k + 1 < k1 && k + 1 < pairs_below; k += 2) {
        const cvec2 a = cvec2::load(z + k);
        const cvec2 b = conj(reversed(cvec2::load(z + Nh - k - 1)));
        const cvec2 e = mul(cvec2::load(W + k), a - b);
        cvec2 lo = a - e;
        cvec2 t = e + b;
        if constexpr (Scaled) {
            lo = scale(lo, r);
            t = scale(t, r);
        }
        lo.store(y + k);
        reversed(conj(t)).store(y + Nh - k - 1);
        reversed(conj(lo)).store(z + Nh - k - 1);
        t.store(z + k);
    }
    for (; k < k1; ++k) {
        const cvec1 a = cvec1::load(z + k);
        const cvec1 b = conj(cvec1::load(z + Nh - k));
        const cvec1 e = mul(cvec1::load(W + k), a - b);
        cvec1 lo = a - e;
        cvec1 t = e + b;
        if constexpr (Scaled) {
            lo = scale(lo, r);
            t = scale(t, r);
        }
        lo.store(y + k);
        conj(t).store(y + Nh - k);
        conj(lo).store(z + Nh - k);
        t.store(z + k);
    }
}

// Step 2 of the inverse frame for k in [k0, k1): z[k] = conj(a - W[k] d) c,
// with a = conj y[k], d = a - y[Nh-k]. Only k = 0 reads the upper half
// (the Nyquist bin, z[0] itself), before it writes there.
template <bool Scaled>
void merge(complex_t* y, const complex_t* W, long Nh, long k0, long k1, double c)
{
    complex_t* z = y + Nh;
    long k = k0;
    // Both vectors of a pair are loaded before z[k] is stored, so the pair
    // that holds k = 0 still reads the Nyquist bin first.
    for (; k + 1 < k1; k += 2) {
        const cvec2 a = conj(cvec2::load(y + k));
        const cvec2 b = reversed(cvec2::load(y + Nh - k - 1));
        const cvec2 e = mul(cvec2::load(W + k), a - b);
        cvec2 v = conj(a - e);
        if constexpr (Scaled) {
            v = scale(v, c);
        }
        v.store(z + k);
    }
    for (; k < k1; ++k) {
        const cvec1 a = conj(cvec1::load(y + k));
        const cvec1 b = cvec1::load(y + Nh - k);
        const cvec1 e = mul(cvec1::load(W + k), a - b);
        cvec1 v = conj(a - e);
        if constexpr (Scaled) {
            v = scale(v, c);
        }
        v.store(z + k);
    }
}

// The same range cut for every thread of a region, or all of it outside.
template <class F>
void shared_loop(long first, long last, F body)
{
    const work_share share = my_share(last - first);
    body(first + share.begin, first + share.end);
}

} // namespace

void RFFT::setup(int n)
{
    N = n;
    int log_n = 0;
    for (int rest = n; rest >= 2; rest /= 2) {
        ++log_n;
    }
    W = nullptr;
    m_inner.setup(n / 2);
    if (n < 0) {
        m_table.release();
        return;
    }
    m_table.resize(static_cast<std::size_t>(n) + 1);
    if (n >= 1) {
        fill_table(log_n);
    }
    W = m_table.data();
}

// W[k] = ((1 + sin t) / 2, cos t / 2), t = 2 pi k / N: the factor
// (1 + i exp(-i t)) / 2 of the split, ready to multiply. A power of two
// folds one sine and cosine into eight entries; other sizes fold the half
// wave only.
void RFFT::fill_table(int log_n)
{
    complex_t* T = m_table.data();
    const long n = N;
    const long Nh = n / 2;
    const long Nq = n / 4;
    const long Ne = n / 8;
    const long Nr = n - Nq;
    const double theta0 = TWO_PI / N;

    if (N != (1 << log_n)) {
        for (long p = 0; p <= Nh; ++p) {
            const double s = std::sin(static_cast<double>(p) * theta0);
            const double c = std::cos(static_cast<double>(p) * theta0);
            T[p] = {(1 + s) / 2, c / 2};
            T[n - p] = {(1 - s) / 2, c / 2};
        }
        return;
    }
    if (N == 1) {
        T[1] = {0.5, 0.5};
        T[0] = T[1];
        return;
    }
    if (N == 2) {
        T[2] = {0.5, 0.5};
        T[0] = T[2];
        T[1] = {0.5, -0.5};
        return;
    }
    if (N == 4) {
        T[0] = {0.5, 0.5};
        T[1] = {1.0, 0.0};
        T[2] = {0.5, -0.5};
        T[3] = {0.0, 0.0};
        T[4] = {0.5, 0.5};
        return;
    }
#pragma omp parallel for schedule(static) if (N >= REAL_PARALLEL_TABLE_FROM)
    for (long p = 0; p <= Ne; ++p) {
        const double s = std::sin(static_cast<double>(p) * theta0);
        const double c = std::cos(static_cast<double>(p) * theta0);
        T[p] = {(1 + s) / 2, c / 2};
        T[Nq - p] = {(c + 1) / 2, s / 2};
        T[Nq + p] = {(c + 1) / 2, -s / 2};
        T[Nh - p] = {(1 + s) / 2, -c / 2};
        T[Nh + p] = {(1 - s) / 2, -c / 2};
        T[Nr - p] = {(1 - c) / 2, -s / 2};
        T[Nr + p] = {(1 - c) / 2, s / 2};
        T[n - p] = {(1 - s) / 2, c / 2};
    }
}

// Always inlined into the three forward operations, so that each holds the
// frame of its own scaling without a test of it.
[[gnu::always_inline]] inline void RFFT::run_forward(const double* x, complex_t* y, Scaling S) const
{
    if (N < 1) {
        return;
    }
    if (N == 1) {
        y[0] = {x[0], 0.0};
        return;
    }
    const long n = N;
    const long Nh = n / 2;
    const long Nq = n / 4;
    complex_t* z = y + Nh;

    // The samples, read as pairs, are the complex input of the half-size
    // transform, which reads them in place and leaves its result in z; the
    // lower half of y is its work space. One complex point is its own
    // transform: an empty handle needs no call.
    if (FFT_IF* inner = m_inner.get()) {
        inner->forward_raw_from(reinterpret_cast<const complex_t*>(x), z, y);
    } else {
        std::memcpy(static_cast<void*>(z), x, sizeof(complex_t));
    }

    double dc = z[0].re + z[0].im;
    double nyquist = z[0].re - z[0].im;
    double r = 1.0;
    if (S == Scaling::by_n) {
        dc /= static_cast<double>(n);
        nyquist /= static_cast<double>(n);
        r = 1.0 / static_cast<double>(n);
    } else if (S == Scaling::by_sqrt_n) {
        dc /= std::sqrt(static_cast<double>(n));
        nyquist /= std::sqrt(static_cast<double>(n));
        r = 1.0 / std::sqrt(static_cast<double>(n));
    }
    y[0] = {dc, 0.0};
    z[0] = {nyquist, 0.0};

    const complex_t* table = W;
    const auto split_range = [=](long k0, long k1) {
        if (S == Scaling::none) {
            split_and_mirror<false>(y, table, Nh, Nq, k0, k1, r);
        } else {
            split_and_mirror<true>(y, table, Nh, Nq, k0, k1, r);
        }
    };
    if (n >= REAL_PARALLEL_TRANSFORM_FROM && team_would_share()) {
#pragma omp parallel
        shared_loop(1, Nq + 1, split_range);
    } else {
        split_range(1, Nq + 1);
    }
}

void RFFT::run_inverse(complex_t* y, double* x, Scaling scaling) const
{
    if (N < 1) {
        return;
    }
    if (N == 1) {
        x[0] = y[0].re;
        return;
    }
    const long n = N;
    const long Nh = n / 2;
    complex_t* z = y + Nh;
    const complex_t* table = W;

    double c = 0.0;
    if (scaling == Scaling::none) {
        c = 2.0;
    } else if (scaling == Scaling::by_sqrt_n) {
        c = 2.0 / std::sqrt(static_cast<double>(n));
    }
    auto merge_all = [=] {
        shared_loop(0, Nh, [=](long k0, long k1) {
            if (scaling == Scaling::by_n) {
                merge<false>(y, table, Nh, k0, k1, c);
            } else {
                merge<true>(y, table, Nh, k0, k1, c);
            }
        });
    };
    auto unpack = [=] {
        shared_loop(0, Nh, [=](long k0, long k1) {
            std::memcpy(x + 2 * k0, static_cast<const void*>(z + k0),
                        static_cast<std::size_t>(k1 - k0) * sizeof(complex_t));
        });
    };

    const bool parallel = n >= REAL_PARALLEL_TRANSFORM_FROM && team_would_share();
    if (parallel) {
#pragma omp parallel
        merge_all();
    } else {
        merge_all();
    }
    if (FFT_IF* inner = m_inner.get()) {
        if (scaling == Scaling::by_n) {
            inner->inverse_norm(z, y);
        } else {
            inner->inverse(z, y);
        }
    }
    if (parallel) {
#pragma omp parallel
        unpack();
    } else {
        unpack();
    }
}

void RFFT::forward(const double* x, complex_t* y)
{
    run_forward(x, y, Scaling::by_n);
}

void RFFT::forward_raw(const double* x, complex_t* y)
{
    run_forward(x, y, Scaling::none);
}

void RFFT::forward_unitary(const double* x, complex_t* y)
{
    run_forward(x, y, Scaling::by_sqrt_n);
}

void RFFT::forward_norm(const double* x, complex_t* y)
{
    forward(x, y);
}

void RFFT::inverse(complex_t* y, double* x)
{
    run_inverse(y, x, Scaling::none);
}

void RFFT::inverse_raw(complex_t* y, double* x)
{
    inverse(y, x);
}

void RFFT::inverse_unitary(complex_t* y, double* x)
{
    run_inverse(y, x, Scaling::by_sqrt_n);
}

void RFFT::inverse_norm(complex_t* y, double* x)
{
    run_inverse(y, x, Scaling::by_n);
}

ZFFT::RealFFT* make_real_fft(int n)
{
    auto fft = std::make_unique<RFFT>();
    fft->setup(n);
    return fft.release();
}

} // namespace ZFFT_VARIANT
