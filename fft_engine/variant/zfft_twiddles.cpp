#include "zfft_twiddles.h"

#include "zfft_cvec.h"
#include "zfft_plan.h"

#include <cmath>

namespace ZFFT_VARIANT {
namespace {

complex_t unit(double angle)
{
    return {std::cos(angle), std::sin(angle)};
}

// Runs body(p) for p in [0, count), in parallel for large tables; the
// entries do not depend on one another.
template <class Body>
void fill(int N, int count, const Body& body)
{
    if (N >= TWIDDLE_PARALLEL_FILL_FROM) {
#pragma omp parallel for schedule(static)
        for (int p = 0; p < count; ++p) {
            body(p);
        }
    } else {
        for (int p = 0; p < count; ++p) {
            body(p);
        }
    }
}

} // namespace

void init_twiddles_short(int r, int N, complex_t* W)
{
    if (N < r) {
        return;
    }
    const double theta0 = -TWO_PI / N;
    fill(N, N / r, [=](int p) { W[p] = unit(double(p) * theta0); });
}

void init_twiddles_long(int r, int N, complex_t* W)
{
    if (N < r) {
        return;
    }
    const double theta0 = -TWO_PI / N;
    const int m = N / r;
    fill(N, m, [=](int p) {
        for (int k = 1; k < r; ++k) {
            const complex_t w = unit((double(k) * theta0) * double(p));
            W[(k - 1) * m + p] = w;
            W[N + p * r + k] = w;
        }
    });
}

} // namespace ZFFT_VARIANT
