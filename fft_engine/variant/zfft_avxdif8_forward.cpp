// The forward transforms of ZFFT_AVXDIF8::FFT0, in a translation unit of
// their own so that the chains of the two directions compile in parallel.
#include "zfft_avxdif8.h"

#include "zfft_stockham_chains.h"

namespace ZFFT_VARIANT {
namespace ZFFT_AVXDIF8 {

void FFT0::pick_forward_chains(int log_N, chain_fn (&chains)[3]) const
{
    pick_stockham_chains<RADIX, Flow::dif, THRESHOLD, Direction::forward>(log_N, chains);
}

void forward_single(int log_N, complex_t* x, complex_t* y, const complex_t* W)
{
    run_chain<RADIX, Flow::dif, Direction::forward, Form::single, Scaling::by_n, 1, SINGLE_CHAIN_LOG_N_MAX>(
        log_N, x, y, W);
}

void forward_raw_single(int log_N, complex_t* x, complex_t* y, const complex_t* W)
{
    run_chain<RADIX, Flow::dif, Direction::forward, Form::single, Scaling::none, 1, SINGLE_CHAIN_LOG_N_MAX>(
        log_N, x, y, W);
}

void forward_unitary_single(int log_N, complex_t* x, complex_t* y, const complex_t* W)
{
    run_chain<RADIX, Flow::dif, Direction::forward, Form::single, Scaling::by_sqrt_n, 1, SINGLE_CHAIN_LOG_N_MAX>(
        log_N, x, y, W);
}

} // namespace ZFFT_AVXDIF8
} // namespace ZFFT_VARIANT
