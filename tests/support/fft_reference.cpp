#include "fft_reference.h"

#include <fftw3.h>
#include <omp.h>

#include <cmath>
#include <complex>
#include <algorithm>
#include <iomanip>
#include <map>
#include <random>

namespace fft_test {
namespace {

using cld = std::complex<long double>;

// x through op, with a work space full of NaN: its content on entry must not
// matter.
using Op = void (ZFFT::ComplexFFT::*)(complex_t*, complex_t*);
cvector run(ZFFT::ComplexFFT& fft, Op op, cvector x)
{
    cvector work(x.size(), complex_t{NAN, NAN});
    (fft.*op)(x.data(), work.data());
    return x;
}

} // namespace

cvector scaled(cvector x, double c)
{
    for (auto& v : x) {
        v = {v.re * c, v.im * c};
    }
    return x;
}

std::vector<double> random_reals(long n, unsigned seed)
{
    std::mt19937_64 gen(seed);
    std::uniform_real_distribution<double> dist(-1.0, 1.0);
    std::vector<double> x(static_cast<std::size_t>(n));
    std::generate(x.begin(), x.end(), [&] { return dist(gen); });
    return x;
}

cvector random_complex(long n, unsigned seed)
{
    const std::vector<double> parts = random_reals(2 * n, seed);
    cvector x(static_cast<std::size_t>(n));
    std::memcpy(x.data(), parts.data(), parts.size() * sizeof(double));
    return x;
}

cvector naive_dft(const cvector& x, int sign)
{
    // Roots indexed by the exact integer jk mod n, so the reference keeps its
    // accuracy however large the products grow.
    const long n = static_cast<long>(x.size());
    const long double pi = 3.141592653589793238462643383279502884L;
    std::vector<cld> w(x.size());
    for (long j = 0; j < n; ++j) {
        const long double a = sign * 2.0L * pi * static_cast<long double>(j) / static_cast<long double>(n);
        w[j] = cld(std::cos(a), std::sin(a));
    }
    cvector out(x.size());
    for (long k = 0; k < n; ++k) {
        cld sum = 0;
        for (long j = 0, jk = 0; j < n; ++j, jk = (jk + k) % n) {
            sum += cld(x[j].re, x[j].im) * w[jk];
        }
        out[k] = {static_cast<double>(sum.real()), static_cast<double>(sum.imag())};
    }
    return out;
}

cvector naive_real_dft(const std::vector<double>& x)
{
    cvector c(x.size());
    for (std::size_t i = 0; i < x.size(); ++i) {
        c[i] = {x[i], 0.0};
    }
    return naive_dft(c, -1);
}

cvector fftw_dft(const cvector& x, int sign)
{
    const int n = static_cast<int>(x.size());
    fftw_complex* in = fftw_alloc_complex(n);
    fftw_complex* out = fftw_alloc_complex(n);
    fftw_plan plan = fftw_plan_dft_1d(n, in, out, sign < 0 ? FFTW_FORWARD : FFTW_BACKWARD, FFTW_ESTIMATE);
    std::memcpy(in, x.data(), x.size() * sizeof(complex_t));
    fftw_execute(plan);
    cvector result(x.size());
    std::memcpy(result.data(), out, x.size() * sizeof(complex_t));
    fftw_destroy_plan(plan);
    fftw_free(in);
    fftw_free(out);
    return result;
}

cvector fftw_real_dft(const std::vector<double>& x)
{
    const int n = static_cast<int>(x.size());
    double* in = fftw_alloc_real(n);
    fftw_complex* out = fftw_alloc_complex(n / 2 + 1);
    fftw_plan plan = fftw_plan_dft_r2c_1d(n, in, out, FFTW_ESTIMATE);
    std::memcpy(in, x.data(), x.size() * sizeof(double));
    fftw_execute(plan);
    cvector result(x.size());
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

static double relative_rms(const double* got, const double* want, std::size_t count)
{
    long double err = 0, ref = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const long double d = static_cast<long double>(got[i]) - want[i];
        err += d * d;
        ref += static_cast<long double>(want[i]) * want[i];
    }
    return static_cast<double>(ref == 0 ? std::sqrt(err) : std::sqrt(err / ref));
}

double relative_rms(const complex_t* got, const cvector& want)
{
    return relative_rms(&got->re, &want.data()->re, 2 * want.size());
}

double relative_rms(const double* got, const std::vector<double>& want)
{
    return relative_rms(got, want.data(), want.size());
}

double tolerance(long n)
{
    return 1e-15 * std::max(1.0, n > 1 ? std::log2(static_cast<double>(n)) : 0.0);
}

testing::AssertionResult close(const cvector& got, const cvector& want, double tol)
{
    if (got.size() != want.size()) {
        return testing::AssertionFailure() << "sizes differ";
    }
    const double err = relative_rms(got.data(), want);
    if (err < tol) {
        return testing::AssertionSuccess();
    }
    const auto distance = [&](std::size_t i) { return std::hypot(got[i].re - want[i].re, got[i].im - want[i].im); };
    std::size_t worst = 0;
    for (std::size_t i = 1; i < got.size(); ++i) {
        worst = distance(i) > distance(worst) || std::isnan(distance(i)) ? i : worst;
    }
    return testing::AssertionFailure() << std::setprecision(17) << "relative RMS error " << err << " not below " << tol
                                       << "; worst at [" << worst << "]: (" << got[worst].re << ", " << got[worst].im
                                       << ") want (" << want[worst].re << ", " << want[worst].im << ")";
}

const Reference& fftw_reference(int log_n)
{
    static std::map<int, Reference> cache;
    auto it = cache.find(log_n);
    if (it == cache.end()) {
        Reference r;
        r.x = random_complex(1L << log_n, 1000u + static_cast<unsigned>(log_n));
        r.forward = fftw_dft(r.x, -1);
        r.backward = fftw_dft(r.x, +1);
        it = cache.emplace(log_n, std::move(r)).first;
    }
    return it->second;
}

void expect_all_operations(ZFFT::ComplexFFT& fft, const Reference& ref, bool quick)
{
    using F = ZFFT::ComplexFFT;
    const long n = static_cast<long>(ref.x.size());
    const double by_n = 1.0 / n, by_sqrt_n = 1.0 / std::sqrt(static_cast<double>(n));
    const struct {
        const char* name;
        Op op;
        const cvector& unscaled;
        double scale;
        bool in_quick;
    } ops[] = {
        {"forward", &F::forward, ref.forward, by_n, false},
        {"forward_raw", &F::forward_raw, ref.forward, 1.0, true},
        {"forward_unitary", &F::forward_unitary, ref.forward, by_sqrt_n, false},
        {"forward_norm", &F::forward_norm, ref.forward, by_n, false},
        {"inverse", &F::inverse, ref.backward, 1.0, true},
        {"inverse_raw", &F::inverse_raw, ref.backward, 1.0, false},
        {"inverse_unitary", &F::inverse_unitary, ref.backward, by_sqrt_n, false},
        {"inverse_norm", &F::inverse_norm, ref.backward, by_n, false},
    };
    for (const auto& o : ops) {
        if (o.in_quick || !quick) {
            EXPECT_TRUE(close(run(fft, o.op, ref.x), scaled(o.unscaled, o.scale), tolerance(n)))
                << o.name << " at N = " << n;
        }
    }
    const struct {
        const char* name;
        Op there, back;
    } trips[] = {
        {"forward, inverse", &F::forward, &F::inverse},
        {"forward_raw, inverse_norm", &F::forward_raw, &F::inverse_norm},
        {"forward_unitary, inverse_unitary", &F::forward_unitary, &F::inverse_unitary},
    };
    for (const auto& t : trips) {
        EXPECT_TRUE(close(run(fft, t.back, run(fft, t.there, ref.x)), ref.x, tolerance(n)))
            << t.name << " at N = " << n;
        if (quick) {
            break;
        }
    }
}

void expect_same_bits_on_any_thread_count(ZFFT::ComplexFFT& fft, const cvector& x)
{
    const int saved = omp_get_max_threads();
    using F = ZFFT::ComplexFFT;
    for (Op op : {&F::forward, &F::forward_raw, &F::forward_unitary, &F::forward_norm, &F::inverse, &F::inverse_raw,
                  &F::inverse_unitary, &F::inverse_norm}) {
        omp_set_num_threads(1);
        const cvector one = run(fft, op, x);
        for (int threads : {2, 3}) {
            omp_set_num_threads(threads);
            EXPECT_TRUE(same_bits(run(fft, op, x), one)) << threads << " threads, N = " << x.size();
        }
    }
    omp_set_num_threads(saved);
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

std::string variant_test_name(const testing::TestParamInfo<ZFFT::Variant>& info)
{
    return ZFFT::variant_name(info.param);
}

std::vector<unsigned> supported_selectors()
{
    std::vector<unsigned> selectors{0};
    for (unsigned selector : {1u, 2u, 3u}) {
        if (ZFFT::selector_supported(selector)) {
            selectors.push_back(selector);
        }
    }
    return selectors;
}

std::string selector_name(unsigned selector)
{
    const char* const names[] = {"Default", "SSE2", "AVX", "AVX2"};
    return selector < 4 ? names[selector] : "Selector" + std::to_string(selector);
}

} // namespace fft_test
