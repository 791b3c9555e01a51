// Conversions of number texts with the kit's own error texts.
//
// They behave like std::stol and friends (leading blanks skipped, a trailing
// rest ignored, base 0 meaning "0x" hexadecimal and a leading 0 octal), but
// throw std::invalid_argument("invalid <name> argument") for a text without a
// number and std::out_of_range("<name> argument out of range") on overflow,
// so the texts are the same wherever the kit runs.
#pragma once

#include <string>
#include <string_view>

namespace zlr {

long stolChecked(const std::string& text, int base = 10);
unsigned long stoulChecked(const std::string& text, int base = 10);
long long stollChecked(const std::string& text, int base = 10);
unsigned long long stoullChecked(const std::string& text, int base = 10);
double stodChecked(const std::string& text);

// A plain decimal number (an optional '-', digits with an optional point,
// an optional exponent) and nothing else, which strtod reads to the same
// double without a range error. Answers false, and leaves the strtod cases
// to strtod, for anything else: blanks, '+', hexadecimal, "inf", "nan",
// and numbers beyond the normal range.
bool readPlainDouble(std::string_view text, double& value);

} // namespace zlr
