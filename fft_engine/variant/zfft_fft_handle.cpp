#include "zfft_fft_handle.h"

#include "zfft_factory.h"

#include <memory>

namespace ZFFT_VARIANT {
namespace {

using ZFFT::Algorithm;

// The class made for each power-of-two size, by log2 of the complex size.
// The alternation of classes is the result of measuring each size, not a
// rule: it is kept as it is. Row 0 (one point) makes nothing.
constexpr int PLAN_LAST_LOG = 24;
constexpr Algorithm PLAN[PLAN_LAST_LOG + 1] = {
    Algorithm::Planned, // 1: no object
    Algorithm::DIT4,    // 2
    Algorithm::DIF4,    // 4
    Algorithm::DIT8,    // 8
    Algorithm::DIF4,    // 16
    Algorithm::DIT8,    // 32
    Algorithm::DIF8,    // 64
    Algorithm::DIF16,   // 128
    Algorithm::DIF8,    // 256
    Algorithm::DIF8,    // 512
    Algorithm::DIF4,    // 1024
    Algorithm::DIF16,   // 2048
    Algorithm::DIT8,    // 4096
    Algorithm::DIF8,    // 8192
    Algorithm::DIT8,    // 16384
    Algorithm::DIT8,    // 32768
    Algorithm::SixStep, // 65536
    Algorithm::DIT8,    // 131072
    Algorithm::SixStep, // 262144
    Algorithm::SixStep, // 524288
    Algorithm::SixStep, // 1048576
    Algorithm::SixStep, // 2097152
    Algorithm::SixStep, // 4194304
    Algorithm::SixStep, // 8388608
    Algorithm::SixStep, // 16777216
};

} // namespace

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
    std::unique_ptr<FFT_IF> fft(make_fft0(planned ? PLAN[log_N] : Algorithm::MixedRadix));
    if (planned) {
        fft->setup_log2(log_N);
    } else {
        fft->setup(n);
    }
    m_fft = fft.release();
}

} // namespace ZFFT_VARIANT
