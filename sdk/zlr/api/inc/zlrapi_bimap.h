// A two-way table between the texts of a telegram and their numbers, so that
// reading and writing are both one lookup.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>

namespace zlr {

class StringBimap {
public:
    using Row = std::pair<const char*, std::uint32_t>;

    StringBimap(std::initializer_list<Row> rows)
    {
        for (const Row& row : rows) {
            m_by_text.emplace(row.first, row.second);
            m_by_number.emplace(row.second, row.first);
        }
    }

    // Text to number; false when the text has no row.
    bool findNumber(const std::string& text, std::uint32_t& number) const
    {
        const auto it = m_by_text.find(text);
        if (it == m_by_text.end()) {
            return false;
        }
        number = it->second;
        return true;
    }

    // Number to text; a number without a row is a programming error of the
    // writer and throws std::out_of_range.
    const std::string& textOf(std::uint32_t number) const
    {
        const auto it = m_by_number.find(number);
        if (it == m_by_number.end()) {
            throw std::out_of_range("Right side key not found");
        }
        return it->second;
    }

    std::size_t leftSize() const { return m_by_text.size(); }
    std::size_t rightSize() const { return m_by_number.size(); }

private:
    std::map<std::string, std::uint32_t> m_by_text;
    std::map<std::uint32_t, std::string> m_by_number;
};

// The load-time check of a table: both sides must hold `expected` rows. A
// mismatch (a duplicated text or number) is reported on the assertion channel
// and thrown as std::runtime_error, so that a broken table stops the library
// from loading rather than mistranslating telegrams later.
void assert_bimap_size(const StringBimap& map, const char* name, std::size_t expected);

} // namespace zlr
