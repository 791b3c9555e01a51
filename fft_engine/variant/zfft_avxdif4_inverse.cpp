// The inverse transforms of ZFFT_AVXDIF4::FFT0, in a translation unit of
// their own so that the chains of the two directions compile in parallel.
#include "zfft_avxdif4.h"

#include "zfft_stockham_chains.h"

namespace ZFFT_VARIANT {
namespace ZFFT_AVXDIF4 {

void FFT0::pick_inverse_chains(int log_N, chain_fn (&chains)[3]) const
{
    pick_stockham_chains<RADIX, Flow::dif, THRESHOLD, Direction::inverse>(log_N, chains);
}

} // namespace ZFFT_AVXDIF4
} // namespace ZFFT_VARIANT
