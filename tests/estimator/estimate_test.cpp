// The estimator on signals whose frequency is known.
#include "frequency_measurement_instance.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace {


constexpr double TWO_PI = 6.283185307179586;

std::vector<double> sine(std::size_t n, double frequency, double rate, double phase, double amplitude = 1.0)
{
    std::vector<double> x(n);
    for (std::size_t i = 0; i < n; ++i) {
        x[i] = amplitude * std::sin(TWO_PI * frequency * static_cast<double>(i) / rate + phase);
    }
    return x;
}

// An instance used as the bare estimator: a transform of `n` samples and the
// search limit, without a host.
struct Estimator {
    FrequencyMeasurementInstance instance;

    void prepare(std::size_t n) { instance.prepareEstimator(n); }
    double estimate(const std::vector<double>& x, double rate, double max_frequency)
    {
        instance.getMaxFrequencySetting()->setValue(max_frequency);
        return instance.estimateFrequency(x, rate);
    }
};

std::vector<double> plus(std::vector<double> a, const std::vector<double>& b)
{
    for (std::size_t i = 0; i < b.size(); ++i) {
        a[i] += b[i];
    }
    return a;
}

TEST(Estimator, KnownSignalsGiveTheirFrequencies)
{
    const double rate = 1000.0;
    const double bin1 = rate / 256; // 3.90625 Hz
    const struct {
        const char* name;
        std::vector<double> x;
        double max_frequency;
        double want;
        double tolerance;
    } cases[] = {
        {"sine on bin 64", sine(256, 250.0, rate, 0.4), 500.0, 250.0, 1e-9},
        {"sine on bin 1", sine(256, bin1, rate, 1.0), 500.0, bin1, 1e-9},
        // The peak wins over a weaker component at bin 1 ...
        {"strong bin 64 over weak bin 1", plus(sine(256, 250.0, rate, 0.2), sine(256, bin1, rate, 0.7, 0.1)), 500.0,
         250.0, 1e-6},
        // ... unless the search ends before it: max_frequency 0 keeps bin 1.
        {"max_frequency 0 keeps bin 1", plus(sine(256, 250.0, rate, 0.2), sine(256, bin1, rate, 0.7, 0.1)), 0.0,
         bin1, 0.05},
        // A limit more than half a bin below 250 Hz still rounds bin 64 in.
        {"limit rounds to the bin above", sine(256, 250.0, rate, 0.3), 250.0 - 0.4 * bin1, 250.0, 1e-9},
        // An impulse has a flat spectrum, every bin of power exactly 1: the
        // first of the equal peaks, bin 1, gives the estimate.
        {"flat spectrum, first peak wins", plus(std::vector<double>(256, 0.0), {1.0}), 500.0, bin1, 1e-9},
        // A window with no component at all: both phases are atan2(0, 0).
        {"all zero", std::vector<double>(256, 0.0), 500.0, 0.0, 0.0},
        // A constant is not removed, but bin 0 is no candidate: the estimate
        // comes from the component at bin 3.
        {"offset plus bin 3", plus(std::vector<double>(256, 5.0), sine(256, 3 * bin1, rate, 0.0)), 500.0, 3 * bin1,
         1e-6},
        // Just below Nyquist the peak lands on bin n/2, where the two phases
        // differ by about -pi: the estimate comes out as -rate/2.
        {"near Nyquist", sine(256, 499.0, rate, 0.3), 500.0, -500.0, 1e-6},
    };
    Estimator estimator;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        estimator.prepare(c.x.size());
        EXPECT_NEAR(estimator.estimate(c.x, rate, c.max_frequency), c.want, c.tolerance);
    }
}

TEST(Estimator, BetweenBinsIsNotQuantisedAtAnyPhase)
{
    Estimator estimator;
    estimator.prepare(256);
    // The method's own bias (the mirror image leaks into the Hann-windowed
    // bins) reaches about 0.00104 Hz at the worst phase of this case.
    double worst = 0.0;
    for (int step = 0; step < 360; ++step) {
        const double phase = TWO_PI * step / 360;
        const double got = estimator.estimate(sine(256, 123.4, 1000.0, phase), 1000.0, 500.0);
        worst = std::max(worst, std::fabs(got - 123.4));
    }
    EXPECT_LT(worst, 0.0011);
    EXPECT_GT(worst, 1e-5) << "suspiciously exact: the estimate should not be snapped to anything";
}

TEST(Estimator, RefusesWhatCarriesNoFrequency)
{
    Estimator estimator;
    std::vector<double> x = sine(256, 100.0, 1000.0, 0.0);
    EXPECT_TRUE(std::isnan(estimator.estimate(x, 1000.0, 500.0))) << "not prepared";

    estimator.prepare(256);
    x[17] = std::nan("");
    const double with_nan = estimator.estimate(x, 1000.0, 500.0);
    EXPECT_TRUE(std::isnan(with_nan));

    // Windows of one and two samples have no bin pair to work with.
    for (std::size_t n : {1, 2}) {
        estimator.prepare(n);
        EXPECT_TRUE(std::isnan(estimator.estimate(std::vector<double>(n, 1.0), 100.0, 50.0))) << n;
    }
}

} // namespace
