// What the five Stockham classes share: their fields, their setup and the
// six transforms. setup_log2 picks the chain of every operation for the
// size once, so that a transform is one call of its chain.
#pragma once

#include "zfft_aligned_table.h"
#include "zfft_fft_if.h"
#include "zfft_twiddles.h"

namespace ZFFT_VARIANT {

// One unrolled chain of stages for one size: the first stage reads in (x
// itself for a transform in place), x receives the result, y is work space.
using chain_fn = void (*)(const complex_t* in, complex_t* x, complex_t* y, const complex_t* W);

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
        pick_forward_chains(l, m_forward);
        pick_inverse_chains(l, m_inverse);
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

    void forward(complex_t* x, complex_t* y) final { run(m_forward[BY_N], x, x, y); }
    void forward_raw(complex_t* x, complex_t* y) final { run(m_forward[NONE], x, x, y); }
    void forward_unitary(complex_t* x, complex_t* y) final { run(m_forward[BY_SQRT_N], x, x, y); }
    void inverse(complex_t* x, complex_t* y) final { run(m_inverse[NONE], x, x, y); }
    void inverse_unitary(complex_t* x, complex_t* y) final { run(m_inverse[BY_SQRT_N], x, x, y); }
    void inverse_norm(complex_t* x, complex_t* y) final { run(m_inverse[BY_N], x, x, y); }
    void forward_raw_from(const complex_t* in, complex_t* x, complex_t* y) final
    {
        run(m_forward[NONE], in, x, y);
    }

protected:
    // Index of a scaling in a chain set: none, 1/N, 1/sqrt(N).
    static constexpr int NONE = 0;
    static constexpr int BY_N = 1;
    static constexpr int BY_SQRT_N = 2;

    // The chains of each scaling for log_N, null where log_N is outside 1 to
    // 24. Each direction lives in a translation unit of its own, so that the
    // two compile in parallel.
    virtual void pick_forward_chains(int log_N, chain_fn (&chains)[3]) const = 0;
    virtual void pick_inverse_chains(int log_N, chain_fn (&chains)[3]) const = 0;

    int N = 0;
    int log_N = -1;
    aligned_table m_table;
    complex_t* W = nullptr;

private:
    void run(chain_fn chain, const complex_t* in, complex_t* x, complex_t* y) const
    {
        if (chain != nullptr) {
            chain(in, x, y, W);
        }
    }

    chain_fn m_forward[3] = {};
    chain_fn m_inverse[3] = {};
};

} // namespace ZFFT_VARIANT
