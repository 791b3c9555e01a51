// The access that tests and benchmarks have to every complex class of this
// variant. Nothing in the engine calls it, so it stays out of whatever links
// only the real transform.
#include "zfft_factory.h"

#include "zfft_fft_handle.h"

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

const char* planned_class_name(int n)
{
    FFTHandle handle;
    handle.setup(n);
    const FFT_IF* fft = handle.get();
    return fft ? fft->name() : nullptr;
}

} // namespace ZFFT_VARIANT
