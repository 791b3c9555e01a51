#include "zfft_fft_handle.h"

#include "zfft_factory.h"
#include "zfft_plan.h"

#include <memory>

namespace ZFFT_VARIANT {

void FFTHandle::reset()
{
    delete m_fft;
    m_fft = nullptr;
}

FFT_IF* FFTHandle::release()
{
    FFT_IF* fft = m_fft;
    m_fft = nullptr;
    return fft;
}

void FFTHandle::setup(int n)
{
    reset();
    N = n;
    log_N = 0;
    if (n >= 2) {
        for (int rest = n; rest > 1; rest /= 2) {
            ++log_N;
        }
    }
    if (n != (1 << log_N)) {
        log_N = -1;
    }
    if (log_N == 0) {
        return;
    }

    const bool planned = log_N >= 1 && log_N <= PLAN_LAST_LOG;
    std::unique_ptr<FFT_IF> fft(make_fft0(planned ? PLAN[log_N] : ZFFT::Algorithm::MixedRadix));
    if (planned) {
        fft->setup_log2(log_N);
    } else {
        fft->setup(n);
    }
    m_fft = fft.release();
}

} // namespace ZFFT_VARIANT
