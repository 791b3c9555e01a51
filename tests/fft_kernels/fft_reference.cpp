#include "fft_reference.h"

#include <fftw3.h>

#include <cmath>
#include <algorithm>
#include <cstring>
#include <iomanip>
#include <limits>
#include <map>
#include <random>
#include <sstream>

namespace fft_test {

double nan_value()
{
    return std::numeric_limits<double>::quiet_NaN();
}

const Reference& reference(int log_n)
{
    static std::map<int, Reference> cache;
    auto it = cache.find(log_n);
    if (it == cache.end()) {
        Reference r;
        r.x = random_signal(std::size_t{1} << log_n, 1000 + log_n);
        r.forward = fftw_dft(r.x, -1);
        r.backward = fftw_dft(r.x, +1);
        it = cache.emplace(log_n, std::move(r)).first;
    }
    return it->second;
}

cvector random_signal(std::size_t n, std::uint64_t seed)
{
    std::mt19937_64 engine(seed);
    std::uniform_real_distribution<double> dist(-1.0, 1.0);
    cvector x(n);
    for (auto& v : x) {
        v.re = dist(engine);
        v.im = dist(engine);
    }
    return x;
}

cvector naive_dft(const cvector& x, int sign)
{
    const std::size_t n = x.size();
    // Roots from the exact integer index j k mod n, so that the reference
    // does not lose accuracy with growing products.
    std::vector<long double> c(n), s(n);
    const long double two_pi = 6.283185307179586476925286766559L;
    for (std::size_t i = 0; i < n; ++i) {
        const long double a = two_pi * static_cast<long double>(i) / static_cast<long double>(n);
        c[i] = std::cos(a);
        s[i] = sign * std::sin(a);
    }
    cvector y(n);
    for (std::size_t k = 0; k < n; ++k) {
        long double re = 0, im = 0;
        std::size_t index = 0;
        for (std::size_t j = 0; j < n; ++j) {
            re += x[j].re * c[index] - x[j].im * s[index];
            im += x[j].re * s[index] + x[j].im * c[index];
            index += k;
            if (index >= n) {
                index -= n;
            }
        }
        y[k] = {static_cast<double>(re), static_cast<double>(im)};
    }
    return y;
}

cvector fftw_dft(const cvector& x, int sign)
{
    const int n = static_cast<int>(x.size());
    auto* in = static_cast<fftw_complex*>(fftw_malloc(sizeof(fftw_complex) * n));
    auto* out = static_cast<fftw_complex*>(fftw_malloc(sizeof(fftw_complex) * n));
    const fftw_plan plan =
        fftw_plan_dft_1d(n, in, out, sign < 0 ? FFTW_FORWARD : FFTW_BACKWARD, FFTW_ESTIMATE);
    std::memcpy(in, x.data(), sizeof(fftw_complex) * n);
    fftw_execute(plan);
    cvector y(n);
    std::memcpy(y.data(), out, sizeof(fftw_complex) * n);
    fftw_destroy_plan(plan);
    fftw_free(in);
    fftw_free(out);
    return y;
}

double relative_rms_error(const cvector& actual, const cvector& expected)
{
    long double diff = 0, norm = 0;
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const long double dr = actual[i].re - expected[i].re;
        const long double di = actual[i].im - expected[i].im;
        diff += dr * dr + di * di;
        norm += static_cast<long double>(expected[i].re) * expected[i].re +
                static_cast<long double>(expected[i].im) * expected[i].im;
    }
    if (norm == 0) {
        return static_cast<double>(std::sqrt(diff / expected.size()));
    }
    return static_cast<double>(std::sqrt(diff / norm));
}

cvector scaled(cvector x, double c)
{
    for (auto& v : x) {
        v.re *= c;
        v.im *= c;
    }
    return x;
}

namespace {

std::string side_by_side(const cvector& actual, const cvector& expected, std::size_t first)
{
    std::ostringstream out;
    out << std::setprecision(17);
    out << "  index: actual | expected\n";
    std::size_t shown = 0;
    for (std::size_t i = first; i < expected.size() && shown < 4; ++i, ++shown) {
        out << "  [" << i << "]: (" << actual[i].re << ", " << actual[i].im << ") | ("
            << expected[i].re << ", " << expected[i].im << ")\n";
    }
    return out.str();
}

} // namespace

std::string compare(const cvector& actual, const cvector& expected, double tolerance)
{
    if (actual.size() != expected.size()) {
        return "sizes differ";
    }
    const double error = relative_rms_error(actual, expected);
    if (error < tolerance) {
        return {};
    }
    // The first entry whose own error stands out, to start the listing there.
    double scale = 0;
    for (const auto& v : expected) {
        scale = std::max({scale, std::abs(v.re), std::abs(v.im)});
    }
    std::size_t first = 0;
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const double d = std::max(std::abs(actual[i].re - expected[i].re),
                                  std::abs(actual[i].im - expected[i].im));
        if (!(d <= tolerance * std::max(scale, 1e-300))) {
            first = i;
            break;
        }
    }
    std::ostringstream out;
    out << "relative RMS error " << error << " not below " << tolerance << "\n"
        << side_by_side(actual, expected, first);
    return out.str();
}

std::string compare_bits(const cvector& actual, const cvector& expected)
{
    if (actual.size() != expected.size()) {
        return "sizes differ";
    }
    for (std::size_t i = 0; i < expected.size(); ++i) {
        if (std::memcmp(&actual[i], &expected[i], sizeof(complex_t)) != 0) {
            return "first bit difference\n" + side_by_side(actual, expected, i);
        }
    }
    return {};
}

} // namespace fft_test
