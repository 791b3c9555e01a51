// What the five Stockham classes share: their fields and their setup. Each
// class adds the six transforms, each of them a dispatch over its chains.
#pragma once

#include "zfft_aligned_table.h"
#include "zfft_fft_if.h"
#include "zfft_twiddles.h"

namespace ZFFT_VARIANT {

// R is the radix of the twiddled stages; from size T on the transforms run
// parallel and the table takes the short form.
template <int R, int T>
class StockhamFFT0 : public FFT_IF {
public:
    void setup(int n) override
    {
        int l = 0;
        for (int rest = n; rest >= 2; rest /= 2) {
            ++l;
        }
        setup_log2(l);
    }

    void setup_log2(int l) override
    {
        m_table.release();
        W = nullptr;
        log_N = l;
        N = (l >= 0 && l <= 30) ? 1 << l : 0;
        if (l < 1 || l > 24 || N <= R) {
            return; // no stage needs a twiddle
        }
        if (N >= T) {
            W = m_table.resize(N / R);
            init_twiddles_short(R, N, W);
        } else {
            W = m_table.resize(2 * std::size_t(N));
            init_twiddles_long(R, N, W);
        }
    }

protected:
    int N = 0;
    int log_N = -1;
    aligned_table m_table;
    complex_t* W = nullptr;
};

} // namespace ZFFT_VARIANT
