// Test helper: seeded random values and texts for the property tests, so a
// failure repeats with the same seed.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace zlr::test {

class Random {
public:
    explicit Random(std::uint64_t seed) : m_engine(seed) {}

    std::uint64_t bits() { return m_engine(); }
    std::int64_t pick(std::int64_t low, std::int64_t high)
    {
        return std::uniform_int_distribution<std::int64_t>(low, high)(m_engine);
    }
    bool coin() { return pick(0, 1) == 1; }

    // Any finite double, subnormals included.
    double finite()
    {
        for (;;) {
            const double value = std::bit_cast<double>(bits());
            if (std::isfinite(value)) return value;
        }
    }

    // A text of `min` to `max` pieces drawn from `pieces`.
    std::string text(int min, int max, const std::vector<std::string>& pieces)
    {
        std::string out;
        for (auto n = pick(min, max); n > 0; --n) {
            out += pieces[static_cast<std::size_t>(pick(0, pieces.size() - 1))];
        }
        return out;
    }

    // Markup characters, entities, multi-byte UTF-8 and blanks.
    static const std::vector<std::string>& awkwardPieces()
    {
        static const std::vector<std::string> pieces = {
            "a", "Z", "0", "\"", "'", "<", ">", "&", "&amp;", "]]>", "\xC3\xA4", "\xE2\x82\xAC",
            "\xF0\x9F\x8E\xB5", "=", "/", "-", " ", "\t", "\n"};
        return pieces;
    }

    std::mt19937_64& engine() { return m_engine; }

private:
    std::mt19937_64 m_engine;
};

} // namespace zlr::test
