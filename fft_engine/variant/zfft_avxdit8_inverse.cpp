// The inverse transforms of ZFFT_AVXDIT8::FFT0, in a translation unit of
// their own so that the chains of the two directions compile in parallel.
#include "zfft_avxdit8.h"

#include "zfft_stockham_chains.h"

namespace ZFFT_VARIANT {
namespace ZFFT_AVXDIT8 {

void FFT0::inverse(complex_t* x, complex_t* y)
{
    stockham_transform<RADIX, Flow::dit, THRESHOLD, Direction::inverse, Scaling::none>(log_N, x, y, W);
}

void FFT0::inverse_unitary(complex_t* x, complex_t* y)
{
    stockham_transform<RADIX, Flow::dit, THRESHOLD, Direction::inverse, Scaling::by_sqrt_n>(log_N, x, y, W);
}

void FFT0::inverse_norm(complex_t* x, complex_t* y)
{
    stockham_transform<RADIX, Flow::dit, THRESHOLD, Direction::inverse, Scaling::by_n>(log_N, x, y, W);
}

} // namespace ZFFT_AVXDIT8
} // namespace ZFFT_VARIANT
