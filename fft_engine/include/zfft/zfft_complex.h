// The engine's complex number: two consecutive doubles, real part first.
// Every complex array of the engine is an array of these, interleaved.
#pragma once

namespace ZFFT {

struct complex_t {
    double re;
    double im;
};
static_assert(sizeof(complex_t) == 16, "complex_t must be two packed doubles");

} // namespace ZFFT
