// One window of equally spaced samples to one frequency in hertz: the
// strongest bin of the raw power spectrum, refined by the phase difference
// between two Hann-windowed spectra at that bin, each formed from three
// neighbouring raw bins.
#include "frequency_measurement_instance.h"

#include "frequency_strongest_bin.h"

#include <cmath>
#include <limits>

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
complex_t halfExpI(double angle)
{
    const complex_t e{std::cos(angle), std::sin(angle)};
    return {0.5 * e.re, 0.5 * e.im};
}

} // namespace

void FrequencyMeasurementInstance::prepareEstimator(std::uint64_t window_size)
{
    m_fft.reset();
    m_window_size = window_size;
    m_fft = ZFFT::create_real_fft(static_cast<int>(window_size), 0);
    m_spectrum.clear();
    m_spectrum.resize(window_size, complex_t{0.0, 0.0});
}

void FrequencyMeasurementInstance::releaseEstimator()
{
    m_fft.reset();
    std::vector<complex_t>().swap(m_spectrum);
}

double FrequencyMeasurementInstance::estimateFrequency(const std::vector<double>& samples,
                                                       double sample_rate)
{
    return estimateFrequency(samples.data(), samples.size(), sample_rate);
}

double FrequencyMeasurementInstance::estimateFrequency(const double* samples, std::uint64_t count,
                                                       double sample_rate)
{
    constexpr double refused = std::numeric_limits<double>::quiet_NaN();
    const std::uint64_t n = count;
    // A size changed by the settings after the transform was made waits
    // for the next preparation.
    if (n != m_window_size || !m_fft || m_spectrum.size() != n) {
        return refused;
    }
    // Windows of one or two samples carry no frequency: the three-bin
    // formula would read X[2] beyond the spectrum, and a two-sample
    // transform has no inner transform to run.
    if (n < 4) {
        return refused;
    }

    m_fft->forward_raw(samples, m_spectrum.data());
    const complex_t* X = m_spectrum.data();

    // Read at every window, so that a change of the setting acts on the next.
    const double max_frequency = m_max_frequency->getValue();
    const double df = sample_rate / static_cast<double>(n);
    const long long r = std::llround(max_frequency / df);
    // Unsigned on purpose: a negative r + 1 wraps to a huge limit.
    const std::uint64_t r_plus_1 = static_cast<std::uint64_t>(r) + 1u;
    const std::uint64_t limit = n < r_plus_1 ? n : r_plus_1;

    const std::uint64_t k = strongestBin(X, limit);
    // The mirror keeps the peak in the lower half, so X[k+1] exists; a
    // spectrum that broke that would otherwise be read past its end.
    if (k + 1 >= n) {
        return refused;
    }

    // The three exponentials are evaluated afresh for every window: the
    // estimator keeps no table of its own, whatever it would save.
    const double omega = TWO_PI / static_cast<double>(n);
    const complex_t a = halfExpI(-omega);
    const complex_t b = halfExpI(omega);
    const complex_t c = halfExpI(omega * static_cast<double>(k));

    // Spectrum at bin k, under a periodic Hann window, of the signal
    // advanced by one sample ...
    const complex_t Y = minus(minus(X[k], times(b, X[k + 1])), times(a, X[k - 1]));
    const complex_t Z = times(Y, c);
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
