// The estimator's cost per window against its transform alone: what the
// peak search and the phase formula add to one forward_raw. Figures and the
// command are in bench/README.md.
#include "frequency_measurement_instance.h"
#include "zfft/zfft_real_fft.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

namespace {

std::vector<double> windowSignal(long n)
{
    std::vector<double> x(static_cast<std::size_t>(n));
    for (long i = 0; i < n; ++i) {
        const double t = static_cast<double>(i);
        x[static_cast<std::size_t>(i)] = std::sin(0.1234 * t) + 0.5 * std::cos(0.007 * t * t);
    }
    return x;
}

// The peak search covers all N/2 bins: the search limit is half the rate.
void BM_Estimator(benchmark::State& state)
{
    const long n = state.range(0);
    FrequencyMeasurementInstance instance;
    instance.getMaxFrequencySetting()->setValue(24000.0);
    instance.prepareEstimator(static_cast<std::uint64_t>(n));
    const std::vector<double> x = windowSignal(n);
    for (auto _ : state) {
        benchmark::DoNotOptimize(instance.estimateFrequency(x, 48000.0));
    }
}

void BM_EstimatorTransformOnly(benchmark::State& state)
{
    const long n = state.range(0);
    ZFFT::RealFFTPtr fft = ZFFT::create_real_fft(static_cast<int>(n), 0);
    std::vector<ZFFT::complex_t> y(static_cast<std::size_t>(n));
    const std::vector<double> x = windowSignal(n);
    for (auto _ : state) {
        fft->forward_raw(x.data(), y.data());
        benchmark::DoNotOptimize(y.data());
        benchmark::ClobberMemory();
    }
}

void estimatorSizes(benchmark::internal::Benchmark* b)
{
    for (long n = 64; n <= (1L << 20); n *= 4) {
        b->Arg(n);
    }
    b->ArgName("n");
}

} // namespace

BENCHMARK(BM_Estimator)->Apply(estimatorSizes)->UseRealTime();
BENCHMARK(BM_EstimatorTransformOnly)->Apply(estimatorSizes)->UseRealTime();

BENCHMARK_MAIN();
