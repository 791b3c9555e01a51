#include "zfft_factory.h"

#include "zfft_avxdif16.h"
#include "zfft_avxdif4.h"
#include "zfft_avxdif8.h"
#include "zfft_avxdit4.h"
#include "zfft_avxdit8.h"
#include "zfft_fft_handle.h"
#include "zfft_mixed_radix.h"
#include "zfft_sixstep.h"

#include <memory>

namespace ZFFT_VARIANT {
namespace {

class ComplexAdapter final : public ZFFT::ComplexFFT {
public:
    ComplexAdapter(FFT_IF* fft, int n) : m_fft(fft), m_n(n) {}

    int size() const override { return m_n; }
    void forward(complex_t* x, complex_t* y) override { m_fft->forward(x, y); }
    void forward_raw(complex_t* x, complex_t* y) override { m_fft->forward_raw(x, y); }
    void forward_unitary(complex_t* x, complex_t* y) override { m_fft->forward_unitary(x, y); }
    void forward_norm(complex_t* x, complex_t* y) override { m_fft->forward_norm(x, y); }
    void inverse(complex_t* x, complex_t* y) override { m_fft->inverse(x, y); }
    void inverse_raw(complex_t* x, complex_t* y) override { m_fft->inverse_raw(x, y); }
    void inverse_unitary(complex_t* x, complex_t* y) override { m_fft->inverse_unitary(x, y); }
    void inverse_norm(complex_t* x, complex_t* y) override { m_fft->inverse_norm(x, y); }

private:
    std::unique_ptr<FFT_IF> m_fft;
    int m_n;
};

// floor(log2 n) when n is a power of two from 2 to 2^24, else -1.
int power_of_two_log(int n)
{
    int log_n = 0;
    while (log_n < 31 && (1 << log_n) < n) {
        ++log_n;
    }
    return (n >= 2 && (1 << log_n) == n && log_n <= 24) ? log_n : -1;
}

} // namespace

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

FFT_IF* make_planned_fft0(int n)
{
    FFTHandle handle;
    handle.setup(n);
    return handle.release();
}

ZFFT::ComplexFFT* make_complex_fft(ZFFT::Algorithm a, int n)
{
    std::unique_ptr<FFT_IF> fft;
    if (a == ZFFT::Algorithm::Planned) {
        fft.reset(make_planned_fft0(n));
    } else if (a == ZFFT::Algorithm::MixedRadix) {
        if (n < 1) {
            return nullptr;
        }
        fft.reset(make_fft0(a));
        if (fft) {
            fft->setup(n);
        }
    } else {
        const int log_n = power_of_two_log(n);
        if (log_n < 0) {
            return nullptr;
        }
        fft.reset(make_fft0(a));
        if (fft) {
            fft->setup_log2(log_n);
        }
    }
    if (!fft) {
        return nullptr;
    }
    return new ComplexAdapter(fft.release(), n);
}

} // namespace ZFFT_VARIANT
