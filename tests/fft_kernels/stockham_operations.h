// The check of all eight operations and the three round trips of one class
// at one size, shared by the quick and the slow suites.
#pragma once

#include "fft_kernels_cases.h"
#include "fft_reference.h"

#include <cmath>

namespace fft_test {

using Op = void (ZFFT::ComplexFFT::*)(complex_t*, complex_t*);

class StockhamOperations : public testing::TestWithParam<ClassCase> {
protected:
    // All eight operations with their scalings, and the three round trips.
    void check_all_operations(int log_n)
    {
        const ClassCase& c = GetParam();
        const int n = 1 << log_n;
        FFT_TEST_MAKE_OR_SKIP(fft, c, n);
        const Reference& ref = reference(log_n);
        const double tol = tolerance(log_n);
        const double by_n = 1.0 / n;
        const double by_sqrt_n = 1.0 / std::sqrt(double(n));

        const struct {
            const char* name;
            Op op;
            const cvector& expected_unscaled;
            double scale;
        } ops[] = {
            {"forward", &ZFFT::ComplexFFT::forward, ref.forward, by_n},
            {"forward_raw", &ZFFT::ComplexFFT::forward_raw, ref.forward, 1.0},
            {"forward_unitary", &ZFFT::ComplexFFT::forward_unitary, ref.forward, by_sqrt_n},
            {"forward_norm", &ZFFT::ComplexFFT::forward_norm, ref.forward, by_n},
            {"inverse", &ZFFT::ComplexFFT::inverse, ref.backward, 1.0},
            {"inverse_raw", &ZFFT::ComplexFFT::inverse_raw, ref.backward, 1.0},
            {"inverse_unitary", &ZFFT::ComplexFFT::inverse_unitary, ref.backward, by_sqrt_n},
            {"inverse_norm", &ZFFT::ComplexFFT::inverse_norm, ref.backward, by_n},
        };
        for (const auto& o : ops) {
            const std::string diff =
                compare(run(*fft, o.op, ref.x), scaled(o.expected_unscaled, o.scale), tol);
            EXPECT_TRUE(diff.empty()) << o.name << " at N = " << n << ": " << diff;
        }

        const struct {
            const char* name;
            Op there;
            Op back;
        } trips[] = {
            {"forward, inverse", &ZFFT::ComplexFFT::forward, &ZFFT::ComplexFFT::inverse},
            {"forward_raw, inverse_norm", &ZFFT::ComplexFFT::forward_raw,
             &ZFFT::ComplexFFT::inverse_norm},
            {"forward_unitary, inverse_unitary", &ZFFT::ComplexFFT::forward_unitary,
             &ZFFT::ComplexFFT::inverse_unitary},
        };
        for (const auto& t : trips) {
            const cvector back = run(*fft, t.back, run(*fft, t.there, ref.x));
            const std::string diff = compare(back, ref.x, tol);
            EXPECT_TRUE(diff.empty()) << t.name << " at N = " << n << ": " << diff;
        }
    }
};

} // namespace fft_test
