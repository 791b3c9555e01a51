// A window costs no allocation: every operator new of the process is
// counted, and a run of transforms and estimates must not move the count.
#include "frequency_measurement_instance.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <cstdlib>
#include <new>

namespace {
std::atomic<long> g_allocations{0};
}

void* operator new(std::size_t size)
{
    g_allocations.fetch_add(1, std::memory_order_relaxed);
    if (void* p = std::malloc(size ? size : 1)) {
        return p;
    }
    throw std::bad_alloc();
}

// The other forms count through the first, or only free.
void* operator new[](std::size_t size) { return ::operator new(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    g_allocations.fetch_add(1, std::memory_order_relaxed);
    return std::malloc(size ? size : 1);
}
void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept { return ::operator new(size, tag); }
void operator delete(void* p) noexcept { std::free(p); }
void operator delete[](void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
void operator delete[](void* p, std::size_t) noexcept { std::free(p); }

namespace {

TEST(NoAllocation, TransformsAndEstimatesAllocateNothing)
{
    for (int n : {4, 256, 1000, 4096, 16384, 65536, 262144, 1048576}) {
        SCOPED_TRACE("n=" + std::to_string(n));
        std::vector<double> x(static_cast<std::size_t>(n));
        for (int i = 0; i < n; ++i) {
            x[i] = std::sin(0.37 * i) + 0.25 * std::cos(0.011 * i);
        }
        std::vector<ZFFT::complex_t> y(static_cast<std::size_t>(n));
        ZFFT::RealFFTPtr fft = ZFFT::create_real_fft(n, 0);
        FrequencyMeasurementInstance estimator;
        estimator.getMaxFrequencySetting()->setValue(24000.0);
        estimator.prepareEstimator(static_cast<std::uint64_t>(n));
        // One warm-up pass, so that the thread pool of the parallel sizes is
        // up before counting.
        fft->forward_raw(x.data(), y.data());
        estimator.estimateFrequency(x, 48000.0);

        const long before = g_allocations.load();
        for (int round = 0; round < 3; ++round) {
            fft->forward(x.data(), y.data());
            fft->forward_raw(x.data(), y.data());
            fft->forward_unitary(x.data(), y.data());
            fft->inverse(y.data(), x.data());
            fft->inverse_norm(y.data(), x.data());
            fft->inverse_unitary(y.data(), x.data());
            EXPECT_FALSE(std::isnan(estimator.estimateFrequency(x, 48000.0)));
        }
        EXPECT_EQ(g_allocations.load(), before);
    }
}

TEST(NoAllocation, TheCounterSeesAllocations)
{
    const long before = g_allocations.load();
    FrequencyMeasurementInstance estimator;
    estimator.prepareEstimator(1024);
    EXPECT_GT(g_allocations.load(), before);
}

} // namespace
