// Conversions of number texts with the kit's own error texts.
//
// They behave like std::stol and friends (leading blanks skipped, a trailing
// rest ignored, base 0 meaning "0x" hexadecimal and a leading 0 octal), but
// throw std::invalid_argument("invalid <name> argument") for a text without a
// number and std::out_of_range("<name> argument out of range") on overflow,
// so the texts are the same wherever the kit runs.
#pragma once

#include <string>

namespace zlr {

long stolChecked(const std::string& text, int base = 10);
unsigned long stoulChecked(const std::string& text, int base = 10);
long long stollChecked(const std::string& text, int base = 10);
unsigned long long stoullChecked(const std::string& text, int base = 10);
double stodChecked(const std::string& text);

} // namespace zlr
