// What the memory alone costs a chain of Stockham stages on this machine: the
// loads and stores of a stage in its own order, without its arithmetic, so a
// stage's time in the engine can be set against its traffic. With two
// threads, one parallel region per chain and a barrier after every pass, as
// the engine's parallel form runs; the modes differ only in whose output of
// the pass before each thread reads.
#include <benchmark/benchmark.h>
#include <immintrin.h>
#include <omp.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>

namespace {

struct Buffers {
    explicit Buffers(std::size_t complex_count)
        : n(complex_count),
          a(static_cast<double*>(std::aligned_alloc(64, n * 16))),
          b(static_cast<double*>(std::aligned_alloc(64, n * 16)))
    {
        std::memset(a, 0, n * 16);
        std::memset(b, 0, n * 16);
    }
    ~Buffers()
    {
        std::free(a);
        std::free(b);
    }
    Buffers(const Buffers&) = delete;
    Buffers& operator=(const Buffers&) = delete;

    std::size_t n;
    double* a;
    double* b;
};

// Two complex values a 256-bit register, as the engine's cvec2.
[[gnu::target("avx2")]] inline void move2(const double* from, double* to)
{
    _mm256_store_pd(to, _mm256_load_pd(from));
}

// n complex values from `in` to `out`, front to back.
[[gnu::target("avx2")]] void copyPass(const double* in, double* out, std::size_t n)
{
    for (std::size_t i = 0; i < 2 * n; i += 4) {
        move2(in + i, out + i);
    }
}

// The first radix-8 stage (n, 1): eight inputs n/8 apart, outputs side by side.
[[gnu::target("avx2")]] void firstStagePass(const double* in, double* out, std::size_t n)
{
    const std::size_t m = n / 8;
    for (std::size_t p = 0; p < m; p += 2) {
        for (std::size_t k = 0; k < 8; ++k) {
            move2(in + 2 * (k * m + p), out + 2 * (8 * p + 2 * k));
        }
    }
}

// The last radix-8 stage (16, n/16): in[q + s (p + 2k)] to out[q + s (8p + k)],
// a cache line of four q at a time.
[[gnu::target("avx2")]] void lastStagePass(const double* in, double* out, std::size_t n)
{
    const std::size_t s = n / 16;
    for (std::size_t p = 0; p < 2; ++p) {
        for (std::size_t q = 0; q < s; q += 4) {
            for (std::size_t k = 0; k < 8; ++k) {
                const double* from = in + 2 * (q + s * (p + 2 * k));
                double* to = out + 2 * (q + s * (8 * p + k));
                move2(from, to);
                move2(from + 4, to + 4);
            }
        }
    }
}

using Pass = void (*)(const double*, double*, std::size_t);
constexpr Pass PASSES[] = {copyPass, firstStagePass, lastStagePass};
constexpr const char* PASS_NAMES[] = {"copy", "first_stage", "last_stage"};

// An iteration is two passes, there and back.
void BM_OnePass(benchmark::State& state)
{
    const Pass pass = PASSES[state.range(0)];
    Buffers buffers(static_cast<std::size_t>(state.range(1)) * 1024 / 16);
    for (auto _ : state) {
        pass(buffers.a, buffers.b, buffers.n);
        pass(buffers.b, buffers.a, buffers.n);
        benchmark::ClobberMemory();
    }
    state.SetLabel(PASS_NAMES[state.range(0)]);
}

enum Mode { ONE_THREAD, OWN_HALF, HALF_REMOTE, ALL_REMOTE };
constexpr const char* MODE_NAMES[] = {"one_thread", "own_half", "half_remote", "all_remote"};
constexpr int CHAIN_PASSES = 5;

// One thread's part of a pass: the output half it owns, read from its own
// half, from a quarter of each half (as a radix stage reads), or from the
// other thread's half.
void threadPass(Mode mode, int id, const double* in, double* out, std::size_t n)
{
    const std::size_t half = n / 2;
    const std::size_t quarter = n / 4;
    double* mine = out + 2 * id * half;
    switch (mode) {
    case OWN_HALF:
        copyPass(in + 2 * id * half, mine, half);
        break;
    case HALF_REMOTE:
        copyPass(in + 2 * id * quarter, mine, quarter);
        copyPass(in + 2 * (half + id * quarter), mine + 2 * quarter, quarter);
        break;
    default:
        copyPass(in + 2 * (1 - id) * half, mine, half);
        break;
    }
}

void BM_PassChain(benchmark::State& state)
{
    const Mode mode = static_cast<Mode>(state.range(0));
    Buffers buffers(static_cast<std::size_t>(state.range(1)) * 1024 / 16);
    for (auto _ : state) {
        if (mode == ONE_THREAD) {
            for (int s = 0; s < CHAIN_PASSES; ++s) {
                copyPass(s % 2 ? buffers.b : buffers.a, s % 2 ? buffers.a : buffers.b, buffers.n);
            }
        } else {
#pragma omp parallel num_threads(2)
            {
                const int id = omp_get_thread_num();
                for (int s = 0; s < CHAIN_PASSES; ++s) {
                    threadPass(mode, id, s % 2 ? buffers.b : buffers.a,
                               s % 2 ? buffers.a : buffers.b, buffers.n);
#pragma omp barrier
                }
            }
        }
        benchmark::ClobberMemory();
    }
    state.SetLabel(MODE_NAMES[mode]);
}

} // namespace

// Second argument: the size of each of the two arrays in KiB (128 KiB is the
// complex transform inside a real one of 16384 samples).
BENCHMARK(BM_OnePass)->ArgsProduct({{0, 1, 2}, {128}})->ArgNames({"pattern", "kib"});
BENCHMARK(BM_PassChain)
    ->ArgsProduct({{ONE_THREAD, OWN_HALF, HALF_REMOTE, ALL_REMOTE}, {128, 256, 512}})
    ->ArgNames({"mode", "kib"})
    ->UseRealTime();

BENCHMARK_MAIN();
