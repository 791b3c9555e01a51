#include "zfft/zfft_real_fft.h"

#include <cpuid.h>
#include <mutex>
#include <thread>
#include <unistd.h>

namespace ZFFT {
namespace {

bool bit(unsigned value, int index)
{
    return (value >> index) & 1u;
}

// XGETBV is issued only after CPUID said the processor has XSAVE.
std::uint64_t read_xcr0()
{
    std::uint32_t eax = 0;
    std::uint32_t edx = 0;
    __asm__ volatile("xgetbv" : "=a"(eax), "=d"(edx) : "c"(0));
    return (std::uint64_t{edx} << 32) | eax;
}

cpu_features detect()
{
    cpu_features f{};
    f.hardware_threads = std::thread::hardware_concurrency();
    if (f.hardware_threads == 0) {
        const long online = sysconf(_SC_NPROCESSORS_ONLN);
        f.hardware_threads = online > 0 ? static_cast<std::uint64_t>(online) : 0;
    }

    unsigned eax = 0, ebx = 0, ecx = 0, edx = 0;
    __cpuid(0, eax, ebx, ecx, edx);
    const unsigned highest_leaf = eax;
    if (highest_leaf < 1) {
        return f;
    }

    __cpuid(1, eax, ebx, ecx, edx);
    if (bit(ecx, 26)) {
        const std::uint64_t xcr0 = read_xcr0();
        f.ymm_usable = ((xcr0 >> 1) & 1u) && ((xcr0 >> 2) & 1u);
    }
    f.has_sse = bit(edx, 25);
    f.has_sse2 = bit(edx, 26);
    f.has_sse3 = bit(ecx, 0);
    f.has_ssse3 = bit(ecx, 9);
    f.has_sse41 = bit(ecx, 19);
    f.has_sse42 = bit(ecx, 20);
    f.has_fma = bit(ecx, 12);
    f.has_avx = bit(ecx, 28) && bit(ecx, 26) && bit(ecx, 27) && f.ymm_usable;

    if (highest_leaf >= 7 && f.ymm_usable) {
        __cpuid_count(7, 0, eax, ebx, ecx, edx);
        f.has_avx2 = bit(ebx, 5);
    }
    return f;
}

} // namespace

const cpu_features& get_cpu_features()
{
    static std::once_flag once;
    static cpu_features features{};
    std::call_once(once, [] { features = detect(); });
    return features;
}

} // namespace ZFFT
