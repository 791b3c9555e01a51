#include "sim_demo_recording.h"

#include <cmath>
#include <cstdint>
#include <functional>
#include <random>

namespace zelvar_sim {
namespace {

constexpr double RATE = 10000.0;
constexpr double SECONDS = 4.0;
constexpr double TWO_PI = 6.283185307179586;

// Frequency f(t) held from `from` to `to` seconds between two levels, linear in time.
double glide(double t, double from, double to, double f_from, double f_to)
{
    if (t <= from) {
        return f_from;
    }
    if (t >= to) {
        return f_to;
    }
    return f_from + (f_to - f_from) * (t - from) / (to - from);
}

// A sine whose phase follows the frequency sample by sample, so that steps
// and glides have no jump in the waveform.
std::vector<double> tone(const std::function<double(double)>& frequency, double amplitude,
                         double noise, unsigned seed)
{
    const auto count = static_cast<std::size_t>(RATE * SECONDS);
    std::vector<double> samples(count);
    std::mt19937 generator(seed);
    std::normal_distribution<double> jitter(0.0, noise);
    double phase = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        samples[i] = amplitude * std::sin(phase) + (noise > 0.0 ? jitter(generator) : 0.0);
        phase = std::fmod(phase + TWO_PI * frequency(static_cast<double>(i) / RATE) / RATE, TWO_PI);
    }
    return samples;
}

} // namespace

std::vector<DemoInput> demoInputs()
{
    const auto stepped = [](double t) {
        return t < 1.0 ? 250.0 : glide(t, 2.0, 3.0, 500.0, 1500.0);
    };
    const auto gliding = [](double t) { return glide(t, 2.5, 3.5, 1200.0, 300.0); };
    const auto gap_begin = static_cast<std::uint64_t>(1.5 * RATE);
    const auto gap_end = static_cast<std::uint64_t>(1.65 * RATE);
    return {
        {"Stepped tone", RATE, MemoryRecording::of(tone(stepped, 1.0, 0.0, 1)),
         "250 Hz, 500 Hz from 1 s, gliding up to 1500 Hz between 2 s and 3 s"},
        {"Gliding tone", RATE,
         MemoryRecording::of(tone(gliding, 0.5, 0.05, 2), {SampleSpan{gap_begin, gap_end}}),
         "1200 Hz with a gap from 1.5 s to 1.65 s, gliding down to 300 Hz between 2.5 s and "
         "3.5 s, with noise"},
    };
}

} // namespace zelvar_sim
