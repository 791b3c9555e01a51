// The single-threaded radix-8 chains that run on a caller's long table, which
// no class interface shows above the class's threshold. Compiled as part of
// the SSE2 variant, which runs on every processor the engine supports.
#include "fft_reference.h"

#include "zfft_avxdif8.h"
#include "zfft_twiddles.h"

#include <cmath>

namespace fft_test {
namespace {

namespace V = ZFFT_SSE2;
using RowChain = void (*)(int, complex_t*, complex_t*, const complex_t*);

cvector run_chain(RowChain chain, int log_n, cvector x)
{
    cvector table(2 * x.size()), work(x.size(), complex_t{NAN, NAN});
    V::init_twiddles_long(8, static_cast<int>(x.size()), table.data());
    chain(log_n, x.data(), work.data(), table.data());
    return x;
}

// All six transforms at every size of the chains, against FFTW.
TEST(RowChains, SixTransformsOnALongTable)
{
    const struct {
        const char* name;
        RowChain chain;
        int sign;
        int scaling; // 0 none, 1 by 1/N, 2 by 1/sqrt(N)
    } chains[] = {
        {"forward", V::ZFFT_AVXDIF8::forward_single, -1, 1},
        {"forward_raw", V::ZFFT_AVXDIF8::forward_raw_single, -1, 0},
        {"forward_unitary", V::ZFFT_AVXDIF8::forward_unitary_single, -1, 2},
        {"inverse", V::ZFFT_AVXDIF8::inverse_single, +1, 0},
        {"inverse_unitary", V::ZFFT_AVXDIF8::inverse_unitary_single, +1, 2},
        {"inverse_norm", V::ZFFT_AVXDIF8::inverse_norm_single, +1, 1},
    };
    for (int log_n = 1; log_n <= V::ZFFT_AVXDIF8::SINGLE_CHAIN_LOG_N_MAX; ++log_n) {
        const double n = 1 << log_n;
        const Reference& ref = fftw_reference(log_n);
        for (const auto& c : chains) {
            const double factor = c.scaling == 1 ? 1.0 / n : c.scaling == 2 ? 1.0 / std::sqrt(n) : 1.0;
            const cvector want = scaled(c.sign < 0 ? ref.forward : ref.backward, factor);
            EXPECT_TRUE(close(run_chain(c.chain, log_n, ref.x), want, tolerance(1 << log_n)))
                << c.name << " at N = " << n;
        }
    }
}

// Where the class runs the parallel chain on the short table, the
// single-threaded chain on the long table agrees with it to rounding.
TEST(RowChains, AgreeWithTheParallelChainsOfTheClass)
{
    for (int log_n : {11, 12}) {
        auto fft = ZFFT::create_complex_fft(ZFFT::Variant::SSE2, ZFFT::Algorithm::DIF8, 1 << log_n);
        ASSERT_NE(fft, nullptr);
        cvector parallel = random_complex(1 << log_n, 5), work(parallel.size());
        const cvector single = run_chain(V::ZFFT_AVXDIF8::forward_raw_single, log_n, parallel);
        fft->forward_raw(parallel.data(), work.data());
        EXPECT_TRUE(close(single, parallel, 1e-15)) << "N = " << parallel.size();
    }
}

TEST(RowChains, SizesOutsideTheChainsAreLeftAlone)
{
    cvector x(16, complex_t{1, 2}), y(16, complex_t{3, 4});
    for (int log_n : {0, 13, -1}) {
        V::ZFFT_AVXDIF8::forward_raw_single(log_n, x.data(), y.data(), nullptr);
    }
    EXPECT_TRUE(same_bits(x, cvector(16, complex_t{1, 2})));
    EXPECT_TRUE(same_bits(y, cvector(16, complex_t{3, 4})));
}

} // namespace
} // namespace fft_test
