#include "zlrapi_seventeen_digits.h"

#include <array>
#include <bit>
#include <charconv>
#include <cstdint>

namespace zlr {
namespace {

__extension__ typedef unsigned __int128 Wide;

// Binary exponents printed from one product: the significand (below 2^53)
// times 10^22 (below 2^74) stays below 2^128 from 2^-19 on, and from 2^52
// on the value needs no fraction bits at all.
constexpr int SMALLEST_EXPONENT = -19;
constexpr int LARGEST_EXPONENT = 52;
constexpr int SIGNIFICAND_BITS = 52;

constexpr std::uint64_t SEVENTEEN_DIGITS_LOW = 10000000000000000ULL;   // 10^16
constexpr std::uint64_t SEVENTEEN_DIGITS_HIGH = 100000000000000000ULL; // 10^17

constexpr std::array<Wide, 23> TEN_TO = [] {
    std::array<Wide, 23> powers{};
    Wide power = 1;
    for (Wide& entry : powers) {
        entry = power;
        power *= 10;
    }
    return powers;
}();

// "00" to "99".
constexpr std::array<char, 200> DIGIT_PAIRS = [] {
    std::array<char, 200> pairs{};
    for (std::size_t n = 0; n < 100; ++n) {
        pairs[2 * n] = static_cast<char>('0' + n / 10);
        pairs[2 * n + 1] = static_cast<char>('0' + n % 10);
    }
    return pairs;
}();

char* copyDigits(char* out, const char* digits, int count)
{
    for (int i = 0; i < count; ++i) {
        *out++ = digits[i];
    }
    return out;
}

} // namespace

char* printSeventeenDigits(char* out, double magnitude)
{
    const std::uint64_t bits = std::bit_cast<std::uint64_t>(magnitude);
    const int binary_exponent = static_cast<int>(bits >> SIGNIFICAND_BITS) - 1023;
    if (binary_exponent < SMALLEST_EXPONENT || binary_exponent > LARGEST_EXPONENT) {
        return std::to_chars(out, out + SEVENTEEN_DIGITS_ROOM, magnitude,
                             std::chars_format::general, 17)
            .ptr;
    }
    // magnitude = significand / 2^shift, exactly.
    constexpr std::uint64_t HIDDEN_BIT = std::uint64_t{1} << SIGNIFICAND_BITS;
    const std::uint64_t significand = (bits & (HIDDEN_BIT - 1)) | HIDDEN_BIT;
    const int shift = SIGNIFICAND_BITS - binary_exponent;

    // floor(binary_exponent * log10 2): the decimal exponent or one below it.
    int decimal_exponent = (binary_exponent * 78913) >> 18;
    Wide scaled = significand * TEN_TO[static_cast<std::size_t>(16 - decimal_exponent)];
    std::uint64_t digits = static_cast<std::uint64_t>(scaled >> shift);
    if (digits >= SEVENTEEN_DIGITS_HIGH) {
        ++decimal_exponent;
        scaled = significand * TEN_TO[static_cast<std::size_t>(16 - decimal_exponent)];
        digits = static_cast<std::uint64_t>(scaled >> shift);
    }
    // To nearest on the exact rest, a tie to the even digit, as printf does.
    if (shift > 0) {
        const Wide rest = scaled & ((Wide{1} << shift) - 1);
        const Wide half = Wide{1} << (shift - 1);
        if (rest > half || (rest == half && (digits & 1) != 0)) {
            ++digits;
            if (digits == SEVENTEEN_DIGITS_HIGH) {
                digits = SEVENTEEN_DIGITS_LOW;
                ++decimal_exponent;
            }
        }
    }

    // Two 32-bit halves of 8 and 9 digits, taken two digits at a time.
    char text[17];
    std::uint32_t low = static_cast<std::uint32_t>(digits % 1000000000);
    std::uint32_t high = static_cast<std::uint32_t>(digits / 1000000000);
    for (int i = 15; i >= 9; i -= 2) {
        copyDigits(text + i, DIGIT_PAIRS.data() + 2 * (low % 100), 2);
        low /= 100;
    }
    text[8] = static_cast<char>('0' + low);
    for (int i = 6; i >= 0; i -= 2) {
        copyDigits(text + i, DIGIT_PAIRS.data() + 2 * (high % 100), 2);
        high /= 100;
    }
    int significant = 17;
    while (text[significant - 1] == '0') {
        --significant;
    }

    // The "%g" choice: plain notation from 10^-4 up, as no exponent here
    // reaches the precision.
    if (decimal_exponent < -4) {
        *out++ = text[0];
        if (significant > 1) {
            *out++ = '.';
            out = copyDigits(out, text + 1, significant - 1);
        }
        *out++ = 'e';
        *out++ = '-';
        *out++ = '0';
        *out++ = static_cast<char>('0' - decimal_exponent);
        return out;
    }
    if (decimal_exponent < 0) {
        *out++ = '0';
        *out++ = '.';
        for (int zeros = -decimal_exponent - 1; zeros > 0; --zeros) {
            *out++ = '0';
        }
        return copyDigits(out, text, significant);
    }
    const int whole = decimal_exponent + 1;
    out = copyDigits(out, text, whole);
    if (significant > whole) {
        *out++ = '.';
        out = copyDigits(out, text + whole, significant - whole);
    }
    return out;
}

} // namespace zlr
