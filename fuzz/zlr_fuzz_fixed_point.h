// The round-trip check of the telegram fuzz targets: whatever a reader
// accepts, its writer must turn into a text that reads again, and from the
// second written text on, reading and writing must be a fixed point. (The
// first text may still differ: the parser normalises white space in
// attributes and line ends, and some readers drop what they cannot use.)
#pragma once

#include "zlr_fuzz_harness.h"

#include <cstdio>
#include <set>
#include <string>

namespace zlr::fuzz {

// `parse(telegram, text)` answers whether the text was read, `write(telegram)`
// gives a text. With `strict` false the first written text may be refused:
// a number that only strtod's range check stops (a subnormal printed in
// decimal) ends the check there.
template <typename Telegram, typename Parse, typename Write>
void expectFixedPoint(const Telegram& first, Parse parse, Write write, bool strict = true)
{
    const std::string once = write(first);
    expectWrittenForm(once);
    Telegram second;
    const bool second_read = parse(second, once);
    if (strict) {
        expect(second_read, "the written text reads");
    }
    if (!second_read) {
        return;
    }
    const std::string twice = write(second);
    Telegram third;
    expect(parse(third, twice), "the second written text reads");
    const std::string thrice = write(third);
    if (thrice != twice) {
        std::fprintf(stderr, "second text:\n%s\nthird text:\n%s\n", twice.c_str(), thrice.c_str());
    }
    expect(thrice == twice, "writing is stable");
}

// The same check for a telegram whose own `parse(text, length)` reads it.
template <typename Telegram, typename Write>
void expectFixedPoint(const Telegram& first, Write write, bool strict = true)
{
    const auto parse = [](Telegram& telegram, const std::string& text) {
        return telegram.parse(text.data(), text.size());
    };
    expectFixedPoint(first, parse, write, strict);
}

// Constraints go out under every property of their name, so a round trip of
// channels with properties needs names that occur once per channel.
template <typename Channels>
bool namesOnce(const Channels& channels)
{
    for (const auto& channel : channels) {
        std::set<std::string> names;
        for (const auto& property : channel.m_properties) {
            if (!names.insert(property.getName()).second) {
                return false;
            }
        }
    }
    return true;
}

} // namespace zlr::fuzz

// The whole target of a reader `Telegram::parse(text, length)` whose telegram
// the simulator writes with `write`: what is read reaches the fixed point.
#define ZLR_FUZZ_FIXED_POINT_TARGET(Telegram, write, strict)        \
    namespace {                                                     \
    void readTelegram(const char* text, std::size_t length)         \
    {                                                               \
        Telegram telegram;                                          \
        if (telegram.parse(text, length)) {                         \
            zlr::fuzz::expectFixedPoint(telegram, write, strict);   \
        }                                                           \
    }                                                               \
    }                                                               \
    ZLR_FUZZ_READER(readTelegram)
