// The forward real transform against FFTW's r2c (FFTW_MEASURE plans), on one
// and on two threads. Figures and the command are in bench/README.md.
#include "zfft/zfft_real_fft.h"

#include <benchmark/benchmark.h>
#include <fftw3.h>
#include <omp.h>

#include <cmath>
#include <vector>

namespace {

std::vector<double> test_signal(long n)
{
    std::vector<double> x(static_cast<std::size_t>(n));
    for (long i = 0; i < n; ++i) {
        x[i] = std::sin(0.1234 * static_cast<double>(i)) + 0.5 * std::cos(0.007 * static_cast<double>(i) * i);
    }
    return x;
}

// Nominal flops of a real transform: 2.5 N log2 N.
void report(benchmark::State& state, long n)
{
    state.counters["Mflops"] = benchmark::Counter(2.5e-6 * n * std::log2(static_cast<double>(n)),
                                                  benchmark::Counter::kIsIterationInvariantRate);
}

void BM_RealForward_Ours(benchmark::State& state)
{
    const long n = state.range(0);
    omp_set_num_threads(static_cast<int>(state.range(1)));
    const std::vector<double> x = test_signal(n);
    std::vector<ZFFT::complex_t> y(static_cast<std::size_t>(n));
    ZFFT::RealFFTPtr fft = ZFFT::create_real_fft(static_cast<int>(n), 0);
    for (auto _ : state) {
        fft->forward_raw(x.data(), y.data());
        benchmark::DoNotOptimize(y.data());
        benchmark::ClobberMemory();
    }
    report(state, n);
}

void BM_RealForward_FFTW(benchmark::State& state)
{
    const long n = state.range(0);
    fftw_plan_with_nthreads(static_cast<int>(state.range(1)));
    double* in = fftw_alloc_real(static_cast<std::size_t>(n));
    fftw_complex* out = fftw_alloc_complex(static_cast<std::size_t>(n / 2 + 1));
    fftw_plan plan = fftw_plan_dft_r2c_1d(static_cast<int>(n), in, out, FFTW_MEASURE);
    const std::vector<double> x = test_signal(n);
    std::copy(x.begin(), x.end(), in);
    for (auto _ : state) {
        fftw_execute(plan);
        benchmark::DoNotOptimize(out);
        benchmark::ClobberMemory();
    }
    report(state, n);
    fftw_destroy_plan(plan);
    fftw_free(in);
    fftw_free(out);
}

// Every power of two from 4 to 2^20 and a few even sizes that are not
// (the mixed-radix path). Ours and FFTW are registered side by side, so that
// a run with repetitions and random interleaving gives both the same load.
std::vector<long> transform_sizes()
{
    std::vector<long> sizes;
    for (long n = 4; n <= (1L << 20); n *= 2) {
        sizes.push_back(n);
    }
    for (long n : {1000L, 2000L, 6000L, 44100L, 48000L}) {
        sizes.push_back(n);
    }
    return sizes;
}

void register_transforms()
{
    for (int threads : {1, 2}) {
        for (long n : transform_sizes()) {
            benchmark::RegisterBenchmark("BM_RealForward_Ours", BM_RealForward_Ours)
                ->Args({n, threads})
                ->ArgNames({"n", "threads"})
                ->UseRealTime();
            benchmark::RegisterBenchmark("BM_RealForward_FFTW", BM_RealForward_FFTW)
                ->Args({n, threads})
                ->ArgNames({"n", "threads"})
                ->UseRealTime();
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    fftw_init_threads();
    register_transforms();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    fftw_cleanup_threads();
    return 0;
}
