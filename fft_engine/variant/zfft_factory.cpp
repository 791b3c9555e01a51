#include "zfft_factory.h"

#include "zfft_avxdif16.h"
#include "zfft_avxdif4.h"
#include "zfft_avxdif8.h"
#include "zfft_avxdit4.h"
#include "zfft_avxdit8.h"
#include "zfft_mixed_radix.h"
#include "zfft_sixstep.h"

namespace ZFFT_VARIANT {

FFT_IF* make_fft0(ZFFT::Algorithm a)
{
    switch (a) {
    // Each class adds its case here as it is built.
    case ZFFT::Algorithm::DIF4:
        return new ZFFT_AVXDIF4::FFT0;
    case ZFFT::Algorithm::DIT4:
        return new ZFFT_AVXDIT4::FFT0;
    case ZFFT::Algorithm::DIF8:
        return new ZFFT_AVXDIF8::FFT0;
    case ZFFT::Algorithm::DIT8:
        return new ZFFT_AVXDIT8::FFT0;
    case ZFFT::Algorithm::DIF16:
        return new ZFFT_AVXDIF16::FFT0;
    case ZFFT::Algorithm::SixStep:
        return new ZFFT_SixStep::FFT0();
    case ZFFT::Algorithm::MixedRadix:
        return new ZFFT_MixedRadix::FFT0();
    default:
        return nullptr;
    }
}

} // namespace ZFFT_VARIANT
