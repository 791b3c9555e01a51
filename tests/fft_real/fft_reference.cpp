#include "fft_reference.h"

#include <cmath>
#include <complex>
#include <cstring>
#include <fftw3.h>
#include <random>

namespace fft_test {
namespace {

using cld = std::complex<long double>;

std::vector<cld> unit_roots(long n, int sign)
{
    const long double pi = 3.141592653589793238462643383279502884L;
    std::vector<cld> w(static_cast<std::size_t>(n));
    for (long j = 0; j < n; ++j) {
        const long double a = sign * 2.0L * pi * static_cast<long double>(j) / static_cast<long double>(n);
        w[j] = cld(std::cos(a), std::sin(a));
    }
    return w;
}

} // namespace

std::vector<complex_t> naive_dft(const std::vector<complex_t>& x, int sign)
{
    const long n = static_cast<long>(x.size());
    const std::vector<cld> w = unit_roots(n, sign);
    std::vector<complex_t> out(x.size());
    for (long k = 0; k < n; ++k) {
        cld sum = 0;
        long jk = 0;
        for (long j = 0; j < n; ++j) {
            sum += cld(x[j].re, x[j].im) * w[jk];
            jk += k;
            if (jk >= n) {
                jk -= n;
            }
        }
        out[k] = {static_cast<double>(sum.real()), static_cast<double>(sum.imag())};
    }
    return out;
}

std::vector<complex_t> naive_real_dft(const std::vector<double>& x)
{
    std::vector<complex_t> c(x.size());
    for (std::size_t i = 0; i < x.size(); ++i) {
        c[i] = {x[i], 0.0};
    }
    return naive_dft(c, -1);
}

std::vector<complex_t> fftw_dft(const std::vector<complex_t>& x, int sign)
{
    const int n = static_cast<int>(x.size());
    fftw_complex* in = fftw_alloc_complex(n);
    fftw_complex* out = fftw_alloc_complex(n);
    fftw_plan plan = fftw_plan_dft_1d(n, in, out, sign < 0 ? FFTW_FORWARD : FFTW_BACKWARD, FFTW_ESTIMATE);
    std::memcpy(in, x.data(), x.size() * sizeof(complex_t));
    fftw_execute(plan);
    std::vector<complex_t> result(x.size());
    std::memcpy(result.data(), out, x.size() * sizeof(complex_t));
    fftw_destroy_plan(plan);
    fftw_free(in);
    fftw_free(out);
    return result;
}

std::vector<complex_t> fftw_real_dft(const std::vector<double>& x)
{
    const int n = static_cast<int>(x.size());
    double* in = fftw_alloc_real(n);
    fftw_complex* out = fftw_alloc_complex(n / 2 + 1);
    fftw_plan plan = fftw_plan_dft_r2c_1d(n, in, out, FFTW_ESTIMATE);
    std::memcpy(in, x.data(), x.size() * sizeof(double));
    fftw_execute(plan);
    std::vector<complex_t> result(x.size());
    for (int k = 0; k <= n / 2; ++k) {
        result[k] = {out[k][0], out[k][1]};
    }
    for (int k = 1; k < (n + 1) / 2; ++k) {
        result[n - k] = {out[k][0], -out[k][1]};
    }
    fftw_destroy_plan(plan);
    fftw_free(in);
    fftw_free(out);
    return result;
}

double relative_rms(const complex_t* got, const std::vector<complex_t>& want)
{
    long double err = 0;
    long double ref = 0;
    for (std::size_t i = 0; i < want.size(); ++i) {
        const long double dr = static_cast<long double>(got[i].re) - want[i].re;
        const long double di = static_cast<long double>(got[i].im) - want[i].im;
        err += dr * dr + di * di;
        ref += static_cast<long double>(want[i].re) * want[i].re + static_cast<long double>(want[i].im) * want[i].im;
    }
    if (ref == 0) {
        return static_cast<double>(std::sqrt(err));
    }
    return static_cast<double>(std::sqrt(err / ref));
}

double relative_rms(const double* got, const std::vector<double>& want)
{
    long double err = 0;
    long double ref = 0;
    for (std::size_t i = 0; i < want.size(); ++i) {
        const long double d = static_cast<long double>(got[i]) - want[i];
        err += d * d;
        ref += static_cast<long double>(want[i]) * want[i];
    }
    if (ref == 0) {
        return static_cast<double>(std::sqrt(err));
    }
    return static_cast<double>(std::sqrt(err / ref));
}

double tolerance(long n)
{
    const double log_n = n > 1 ? std::log2(static_cast<double>(n)) : 0.0;
    return 1e-15 * (log_n > 1.0 ? log_n : 1.0);
}

std::vector<double> random_reals(long n, unsigned seed)
{
    std::mt19937_64 gen(seed);
    std::uniform_real_distribution<double> dist(-1.0, 1.0);
    std::vector<double> x(static_cast<std::size_t>(n));
    for (double& v : x) {
        v = dist(gen);
    }
    return x;
}

std::vector<complex_t> random_complex(long n, unsigned seed)
{
    std::mt19937_64 gen(seed);
    std::uniform_real_distribution<double> dist(-1.0, 1.0);
    std::vector<complex_t> x(static_cast<std::size_t>(n));
    for (complex_t& v : x) {
        v.re = dist(gen);
        v.im = dist(gen);
    }
    return x;
}

bool same_bits(const void* a, const void* b, std::size_t bytes)
{
    return std::memcmp(a, b, bytes) == 0;
}

std::vector<unsigned> supported_selectors()
{
    const ZFFT::cpu_features& f = ZFFT::get_cpu_features();
    std::vector<unsigned> selectors{0};
    if (f.has_sse2) {
        selectors.push_back(1);
    }
    if (f.has_avx) {
        selectors.push_back(2);
    }
    if (f.has_avx2) {
        selectors.push_back(3);
    }
    return selectors;
}

std::string selector_name(unsigned selector)
{
    switch (selector) {
    case 0:
        return "Default";
    case 1:
        return "SSE2";
    case 2:
        return "AVX";
    case 3:
        return "AVX2";
    }
    return "Selector" + std::to_string(selector);
}

std::vector<ZFFT::Variant> supported_variants()
{
    std::vector<ZFFT::Variant> variants;
    for (ZFFT::Variant v : {ZFFT::Variant::SSE2, ZFFT::Variant::AVX, ZFFT::Variant::AVX2}) {
        if (ZFFT::variant_supported(v)) {
            variants.push_back(v);
        }
    }
    return variants;
}

} // namespace fft_test
