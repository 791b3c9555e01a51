// Complex transforms of the five Stockham classes at the sizes the plan
// gives them, each beside FFTW's complex transform of the same size in the
// same run. Sizes that the engine runs parallel are measured with one and
// with two threads, FFTW likewise. At the end a table gives both times,
// nominal Mflop/s (5 N log2 N / t) and the ratio ours / FFTW.
#include "zfft/zfft_variants.h"

#include <benchmark/benchmark.h>
#include <fftw3.h>
#include <omp.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace {

using ZFFT::Algorithm;
using ZFFT::complex_t;

struct Case {
    Algorithm algorithm;
    int n;
    bool parallel; // at or above the class's threshold
};

// The plan's rows that a Stockham class serves.
const Case CASES[] = {
    {Algorithm::DIT4, 2, false},       {Algorithm::DIF4, 4, false},
    {Algorithm::DIT8, 8, false},       {Algorithm::DIF4, 16, false},
    {Algorithm::DIT8, 32, false},      {Algorithm::DIF8, 64, false},
    {Algorithm::DIF16, 128, false},    {Algorithm::DIF8, 256, false},
    {Algorithm::DIF8, 512, false},     {Algorithm::DIF4, 1024, false},
    {Algorithm::DIF16, 2048, false},   {Algorithm::DIT8, 4096, false},
    {Algorithm::DIF8, 8192, true},     {Algorithm::DIT8, 16384, true},
    {Algorithm::DIT8, 32768, true},    {Algorithm::DIT8, 131072, true},
};

ZFFT::Variant best_variant()
{
    for (auto v : {ZFFT::Variant::AVX2, ZFFT::Variant::AVX, ZFFT::Variant::SSE2}) {
        if (ZFFT::variant_supported(v)) {
            return v;
        }
    }
    return ZFFT::Variant::SSE2;
}

std::vector<complex_t> signal(int n)
{
    std::mt19937_64 engine(n);
    std::uniform_real_distribution<double> dist(-1.0, 1.0);
    std::vector<complex_t> x(n);
    for (auto& v : x) {
        v = {dist(engine), dist(engine)};
    }
    return x;
}

void set_flops(benchmark::State& state, int n)
{
    state.counters["Mflop/s"] = benchmark::Counter(5.0 * n * std::log2(double(n)) * 1e-6,
                                                   benchmark::Counter::kIsIterationInvariantRate);
}

void ours(benchmark::State& state, Case c, int threads)
{
    omp_set_num_threads(threads);
    auto fft = ZFFT::create_complex_fft(best_variant(), c.algorithm, c.n);
    if (!fft) {
        state.SkipWithError("no such transform");
        return;
    }
    const std::vector<complex_t> input = signal(c.n);
    std::vector<complex_t> x = input, y(c.n);
    for (auto _ : state) {
        // The transform works in place; feeding it its own output keeps the
        // values bounded over the iterations since they are unit-scaled.
        fft->forward_unitary(x.data(), y.data());
        benchmark::DoNotOptimize(x.data());
        benchmark::ClobberMemory();
    }
    set_flops(state, c.n);
}

void fftw(benchmark::State& state, Case c, int threads)
{
    fftw_plan_with_nthreads(threads);
    auto* in = static_cast<fftw_complex*>(fftw_malloc(sizeof(fftw_complex) * c.n));
    auto* out = static_cast<fftw_complex*>(fftw_malloc(sizeof(fftw_complex) * c.n));
    const fftw_plan plan = fftw_plan_dft_1d(c.n, in, out, FFTW_FORWARD, FFTW_MEASURE);
    const std::vector<complex_t> input = signal(c.n);
    std::memcpy(in, input.data(), sizeof(fftw_complex) * c.n);
    for (auto _ : state) {
        fftw_execute(plan);
        benchmark::DoNotOptimize(out);
        benchmark::ClobberMemory();
    }
    set_flops(state, c.n);
    fftw_destroy_plan(plan);
    fftw_free(in);
    fftw_free(out);
}

std::string key(const Case& c, int threads)
{
    return std::string(ZFFT::algorithm_name(c.algorithm)) + "/" + std::to_string(c.n) + "/threads:" +
           std::to_string(threads);
}

// The console output as usual, and the times kept for the closing table.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const auto& r : runs) {
            if (r.run_type == Run::RT_Iteration && !r.error_occurred) {
                std::string name = r.benchmark_name();
                const std::string suffix = "/real_time";
                if (name.size() > suffix.size() &&
                    name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0) {
                    name.resize(name.size() - suffix.size());
                }
                m_seconds[name] = r.GetAdjustedRealTime() * 1e-9;
            }
        }
    }

    void print_table() const
    {
        std::printf("\n| class | N | threads | ours (us) | ours Mflop/s | FFTW (us) | FFTW Mflop/s | ours/FFTW |\n");
        std::printf("|---|---:|---:|---:|---:|---:|---:|---:|\n");
        for (const Case& c : CASES) {
            for (int threads : {1, 2}) {
                if (threads == 2 && !c.parallel) {
                    continue;
                }
                const auto a = m_seconds.find("ours/" + key(c, threads));
                const auto b = m_seconds.find("fftw/" + key(c, threads));
                if (a == m_seconds.end() || b == m_seconds.end()) {
                    continue;
                }
                const double flops = 5.0 * c.n * std::log2(double(c.n));
                std::printf("| %s | %d | %d | %.3f | %.0f | %.3f | %.0f | %.2f |\n",
                            ZFFT::algorithm_name(c.algorithm), c.n, threads, a->second * 1e6,
                            flops / a->second * 1e-6, b->second * 1e6, flops / b->second * 1e-6,
                            a->second / b->second);
            }
        }
    }

private:
    std::map<std::string, double> m_seconds;
};

} // namespace

int main(int argc, char** argv)
{
    fftw_init_threads();
    for (const Case& c : CASES) {
        for (int threads : {1, 2}) {
            if (threads == 2 && !c.parallel) {
                continue;
            }
            benchmark::RegisterBenchmark(("ours/" + key(c, threads)).c_str(), ours, c, threads)
                ->UseRealTime();
            benchmark::RegisterBenchmark(("fftw/" + key(c, threads)).c_str(), fftw, c, threads)
                ->UseRealTime();
        }
    }
    benchmark::Initialize(&argc, argv);
    std::printf("variant %s\n", ZFFT::variant_name(best_variant()));
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.print_table();
    fftw_cleanup_threads();
    return 0;
}
