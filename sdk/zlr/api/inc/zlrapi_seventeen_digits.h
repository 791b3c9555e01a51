// A non-negative finite double in the printf "%.17g" form, byte for byte.
//
// The host writes a handful of such numbers into every block list it hands
// out, and the general printing routine spends most of its time on the rare
// numbers whose exact value needs wide arithmetic. The numbers of measurement
// times and ranges (from about 2e-6 up to 2^53) are printed here from one
// 128-bit product; all others go to std::to_chars.
#pragma once

namespace zlr {

// Room that printSeventeenDigits may use.
constexpr int SEVENTEEN_DIGITS_ROOM = 32;

// Writes `magnitude` (finite, sign bit clear) at `out`, which has room for
// SEVENTEEN_DIGITS_ROOM characters; answers the end of the text.
char* printSeventeenDigits(char* out, double magnitude);

} // namespace zlr
