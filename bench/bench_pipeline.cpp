// The whole pipeline through the simulated host against the estimator
// alone over the same windows: input samples per second for 1, 2 and 8
// inputs at 10 kHz and 48 kHz, window 0.2 s, overlap 50 and 90 percent.
// The pipeline is the loaded plug-in driven by the host's task messages,
// with the host cutting blocks and capturing results; its setup (load,
// channel creation) stands outside the timing. Figures in bench/README.md.
#include "frequency_measurement_instance.h"
#include "plugin_loader.h"
#include "sim_host_bench.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr double SECONDS = 2.0;
constexpr double WINDOW_LENGTH = 0.2;

std::vector<double> recording(double rate, double frequency)
{
    std::vector<double> samples(static_cast<std::size_t>(rate * SECONDS));
    for (std::size_t i = 0; i < samples.size(); ++i) {
        samples[i] = std::sin(2.0 * M_PI * frequency * static_cast<double>(i) / rate) +
                     0.1 * std::sin(0.37 * static_cast<double>(i));
    }
    return samples;
}

// Arguments: inputs, rate in Hz, overlap in percent.
void BM_Pipeline(benchmark::State& state)
{
    const auto inputs = static_cast<std::size_t>(state.range(0));
    const auto rate = static_cast<double>(state.range(1));
    const std::string overlap = std::to_string(state.range(2));
    const auto samples = zelvar_sim::MemoryRecording::of(recording(rate, rate / 9.7));
    zelvar_sim::PluginLibrary library(FREQUENCY_MEASUREMENT_PLUGIN);
    std::size_t values = 0;
    for (auto _ : state) {
        state.PauseTiming();
        {
            zelvar_sim::HostBench bench;
            for (std::size_t i = 0; i < inputs; ++i) {
                bench.addInput({.id = i + 1, .long_name = "In" + std::to_string(i), .sample_rate = rate},
                               samples);
            }
            zelvar_sim::PluginSession session(library, bench.host());
            bench.model().attach(session);
            const auto created = bench.createChannel();
            const std::uint32_t root = created.response->m_created_channels.front();
            bench.model().editProperty(root, "FREQUENCY_MEASUREMENT/WindowOverlap", overlap);
            state.ResumeTiming();
            bench.acquisition().run(session, {.block_duration = 0.1, .process_interval = 0.1});
            state.PauseTiming();
            values = bench.acquisition().outputValues(created.response->m_created_channels.back()).size();
            session.finish();
            bench.model().detach();
        }
        state.ResumeTiming();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * inputs *
                                                      samples->length()));
    state.counters["values_per_input"] = static_cast<double>(values);
}

// The same windows, each copied out of the recording and estimated, for
// every input: what the pipeline cannot do without.
void BM_EstimatorAlone(benchmark::State& state)
{
    const auto inputs = static_cast<std::size_t>(state.range(0));
    const auto rate = static_cast<double>(state.range(1));
    const double overlap = static_cast<double>(state.range(2)) * 0.01;
    const std::vector<double> samples = recording(rate, rate / 9.7);
    std::uint64_t size = 1;
    while (static_cast<double>(size) < rate * WINDOW_LENGTH) {
        size <<= 1;
    }
    const auto step = static_cast<std::uint64_t>(std::ceil(((1.0 - overlap) * WINDOW_LENGTH) * rate));
    FrequencyMeasurementInstance instance;
    instance.getMaxFrequencySetting()->setValue(rate / 2);
    instance.prepareEstimator(size);
    std::vector<double> window(size);
    std::size_t values = 0;
    for (auto _ : state) {
        values = 0;
        for (std::size_t input = 0; input < inputs; ++input) {
            for (std::uint64_t first = 0; first + size <= samples.size(); first += step) {
                std::copy(samples.begin() + static_cast<std::ptrdiff_t>(first),
                          samples.begin() + static_cast<std::ptrdiff_t>(first + size), window.begin());
                benchmark::DoNotOptimize(instance.estimateFrequency(window, rate));
                ++values;
            }
        }
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * inputs * samples.size()));
    state.counters["values_per_input"] = static_cast<double>(values / inputs);
}

void cases(benchmark::internal::Benchmark* b)
{
    for (const long rate : {10000L, 48000L}) {
        for (const long overlap : {50L, 90L}) {
            for (const long inputs : {1L, 2L, 8L}) {
                b->Args({inputs, rate, overlap});
            }
        }
    }
    b->ArgNames({"inputs", "rate", "overlap"});
}

} // namespace

BENCHMARK(BM_Pipeline)->Apply(cases)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_EstimatorAlone)->Apply(cases)->UseRealTime()->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
