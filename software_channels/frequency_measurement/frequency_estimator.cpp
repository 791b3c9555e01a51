#include "frequency_estimator.h"

#include <algorithm>
#include <cmath>
#include <immintrin.h>
#include <limits>

namespace frequency_measurement {
namespace {

using ZFFT::complex_t;

constexpr double TWO_PI = 6.283185307179586;
constexpr double MINUS_PI = -3.141592653589793;

// The ordinary complex product, never fused.
complex_t times(complex_t a, complex_t b)
{
    return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}

complex_t minus(complex_t a, complex_t b)
{
    return {a.re - b.re, a.im - b.im};
}

// 0.5 exp(i angle), the exponential first and then halved in both parts.
complex_t half_exp_i(double angle)
{
    const complex_t e{std::cos(angle), std::sin(angle)};
    return {0.5 * e.re, 0.5 * e.im};
}

// The powers |X[j]|^2 = re^2 + im^2 of X[j] and X[j+1], in that order.
__m128d powers_of_pair(const complex_t* X, std::uint64_t j)
{
    const __m128d a = _mm_loadu_pd(&X[j].re);
    const __m128d b = _mm_loadu_pd(&X[j + 1].re);
    const __m128d sa = _mm_mul_pd(a, a);
    const __m128d sb = _mm_mul_pd(b, b);
    return _mm_add_pd(_mm_unpacklo_pd(sa, sb), _mm_unpackhi_pd(sa, sb));
}

double power(complex_t v)
{
    return v.re * v.re + v.im * v.im;
}

// The powers of X[j] .. X[j+3] in the lane order j, j+2, j+1, j+3, each
// re^2 + im^2 as in power(); four bins to a 256-bit vector.
[[gnu::target("avx2")]] inline __m256d powers_of_quad(const complex_t* X, std::uint64_t j)
{
    const __m256d a = _mm256_loadu_pd(&X[j].re);
    const __m256d b = _mm256_loadu_pd(&X[j + 2].re);
    const __m256d sa = _mm256_mul_pd(a, a);
    const __m256d sb = _mm256_mul_pd(b, b);
    return _mm256_add_pd(_mm256_unpacklo_pd(sa, sb), _mm256_unpackhi_pd(sa, sb));
}

// The largest power of bins [j, limit) in steps of four, and not below
// `best`; j is left at the first bin not looked at. Two running maxima, so
// that each step waits on the comparison before the last one; max(p, best)
// keeps best when p is NaN, and neither maximum is ever NaN.
[[gnu::target("avx2")]] double largest_power_avx2(const complex_t* X, std::uint64_t& j,
                                                  std::uint64_t limit)
{
    __m256d best_a = _mm256_setzero_pd();
    __m256d best_b = _mm256_setzero_pd();
    for (; j + 7 < limit; j += 8) {
        best_a = _mm256_max_pd(powers_of_quad(X, j), best_a);
        best_b = _mm256_max_pd(powers_of_quad(X, j + 4), best_b);
    }
    for (; j + 3 < limit; j += 4) {
        best_a = _mm256_max_pd(powers_of_quad(X, j), best_a);
    }
    const __m256d both = _mm256_max_pd(best_a, best_b);
    const __m128d half = _mm_max_pd(_mm256_castpd256_pd128(both), _mm256_extractf128_pd(both, 1));
    return std::max(_mm_cvtsd_f64(half), _mm_cvtsd_f64(_mm_unpackhi_pd(half, half)));
}

// The first bin of [j, limit), in steps of four, whose power is `best`, or
// 0 with j at the first bin not looked at.
[[gnu::target("avx2")]] std::uint64_t first_with_power_avx2(const complex_t* X, std::uint64_t& j,
                                                           std::uint64_t limit, double best)
{
    const __m256d wanted = _mm256_set1_pd(best);
    for (; j + 3 < limit; j += 4) {
        const int hits = _mm256_movemask_pd(_mm256_cmp_pd(powers_of_quad(X, j), wanted, _CMP_EQ_OQ));
        if (hits != 0) {
            // Lanes hold j, j+2, j+1, j+3.
            return (hits & 1) ? j : (hits & 4) ? j + 1 : (hits & 2) ? j + 2 : j + 3;
        }
    }
    return 0;
}

double largest_power_sse2(const complex_t* X, std::uint64_t& j, std::uint64_t limit)
{
    __m128d best_even = _mm_setzero_pd();
    __m128d best_odd = _mm_setzero_pd();
    for (; j + 3 < limit; j += 4) {
        best_even = _mm_max_pd(powers_of_pair(X, j), best_even);
        best_odd = _mm_max_pd(powers_of_pair(X, j + 2), best_odd);
    }
    const __m128d both = _mm_max_pd(best_even, best_odd);
    return std::max(_mm_cvtsd_f64(both), _mm_cvtsd_f64(_mm_unpackhi_pd(both, both)));
}

std::uint64_t first_with_power_sse2(const complex_t* X, std::uint64_t& j, std::uint64_t limit,
                                    double best)
{
    const __m128d wanted = _mm_set1_pd(best);
    for (; j + 1 < limit; j += 2) {
        const int hits = _mm_movemask_pd(_mm_cmpeq_pd(powers_of_pair(X, j), wanted));
        if (hits != 0) {
            return (hits & 1) ? j : j + 1;
        }
    }
    return 0;
}

bool use_avx2()
{
    static const bool usable = [] {
        const ZFFT::cpu_features& cpu = ZFFT::get_cpu_features();
        return cpu.has_avx2 && cpu.ymm_usable;
    }();
    return usable;
}

// The first j in [1, limit) whose power is strictly greater than that of
// every j before it and than 0.0, or 1 when there is none: the strongest
// bin, the first of equal peaks, never a NaN. Done in two vector passes
// (the largest power, then its first position) instead of one pass whose
// every step waits for the last comparison; the powers are the same bits
// in both passes and in both vector widths, so the answer is that of the
// plain scan.
std::uint64_t strongest_bin(const complex_t* X, std::uint64_t limit)
{
    const bool wide = use_avx2();
    std::uint64_t j = 1;
    double best = wide ? largest_power_avx2(X, j, limit) : largest_power_sse2(X, j, limit);
    for (; j < limit; ++j) {
        const double p = power(X[j]);
        if (p > best) {
            best = p;
        }
    }
    if (!(best > 0.0)) {
        return 1;
    }
    j = 1;
    if (const std::uint64_t found = wide ? first_with_power_avx2(X, j, limit, best)
                                         : first_with_power_sse2(X, j, limit, best)) {
        return found;
    }
    for (; j < limit; ++j) {
        if (power(X[j]) == best) {
            return j;
        }
    }
    return 1;
}

} // namespace

void FrequencyEstimator::prepare(std::uint64_t window_size)
{
    m_fft.reset();
    m_window_size = window_size;
    m_fft = ZFFT::create_real_fft(static_cast<int>(window_size), 0);
    m_spectrum.assign(window_size, complex_t{0.0, 0.0});
}

void FrequencyEstimator::release()
{
    m_fft.reset();
    m_spectrum = std::vector<complex_t>();
}

double FrequencyEstimator::estimateFrequency(const std::vector<double>& samples, double sample_rate,
                                             double max_frequency)
{
    constexpr double refused = std::numeric_limits<double>::quiet_NaN();
    const std::uint64_t n = samples.size();
    if (n != m_window_size || !m_fft) {
        return refused;
    }
    // Windows of one or two samples carry no frequency: the three-bin
    // formula would read X[2] beyond the spectrum, and a two-sample
    // transform has no inner transform to run. They answer NaN before any
    // work, which the range test then drops like any refused value.
    if (n < 4) {
        return refused;
    }

    m_fft->forward_raw(samples.data(), m_spectrum.data());
    const complex_t* X = m_spectrum.data();

    const double df = sample_rate / static_cast<double>(n);
    const long long r = std::llround(max_frequency / df);
    // Unsigned on purpose: a negative r + 1 wraps to a huge limit.
    const std::uint64_t r_plus_1 = static_cast<std::uint64_t>(r) + 1u;
    const std::uint64_t limit = n < r_plus_1 ? n : r_plus_1;

    // Bin 0 is never a candidate; the first of equal peaks wins, and a NaN
    // power never wins.
    const std::uint64_t k = strongest_bin(X, limit);
    // The mirror keeps the peak in the lower half, so X[k+1] exists; a
    // spectrum that broke that would otherwise be read past its end.
    if (k + 1 >= n) {
        return refused;
    }

    const double omega = TWO_PI / static_cast<double>(n);
    // exp(-i omega) is the conjugate of exp(i omega) to the last bit (the
    // cosine is even, the sine odd), so one evaluation serves a and b.
    const complex_t b = half_exp_i(omega);
    const complex_t a{b.re, -b.im};

    // Spectrum at bin k, under a periodic Hann window, of the signal
    // advanced by one sample ...
    const complex_t Y = minus(minus(X[k], times(b, X[k + 1])), times(a, X[k - 1]));
    const complex_t Z = times(Y, half_exp_i(omega * static_cast<double>(k)));
    const double phi1 = std::atan2(Z.im, Z.re);

    // ... and of the signal as it stands.
    const complex_t H{0.5 * X[k].re - 0.25 * X[k + 1].re - 0.25 * X[k - 1].re,
                      0.5 * X[k].im - 0.25 * X[k + 1].im - 0.25 * X[k - 1].im};
    const double phi0 = std::atan2(H.im, H.re);

    // Only the lower wrap is undone: a difference above pi or between -pi
    // and 0 gives a frequency outside 0 .. rate/2 that the range test drops.
    double d = phi1 - phi0;
    if (MINUS_PI > d) {
        d += TWO_PI;
    }
    return (d / TWO_PI) * sample_rate;
}

} // namespace frequency_measurement
