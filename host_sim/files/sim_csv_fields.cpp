#include "sim_csv_fields.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace zelvar_sim {
namespace {

std::string_view trimmed(std::string_view text)
{
    const auto blank = [](char c) { return c == ' ' || c == '\t'; };
    while (!text.empty() && blank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && blank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

} // namespace

char guessCsvSeparator(std::string_view first_line)
{
    // ';' and tabs are chosen over ',' since their files write decimal commas.
    bool quoted = false;
    bool tab = false;
    for (char c : first_line) {
        if (c == '"') {
            quoted = !quoted;
        } else if (!quoted && c == ';') {
            return ';';
        } else if (!quoted && c == '\t') {
            tab = true;
        }
    }
    return tab ? '\t' : ',';
}

void splitCsvLine(std::string_view line, char separator, std::vector<std::string>& fields)
{
    fields.clear();
    if (!line.empty() && line.back() == '\r') {
        line.remove_suffix(1);
    }
    std::string field;
    bool quoted = false;
    std::size_t i = 0;
    const auto finish = [&] {
        if (!quoted) {
            field = std::string(trimmed(field));
        }
        fields.push_back(field);
        field.clear();
        quoted = false;
    };
    while (i < line.size()) {
        const char c = line[i];
        if (c == '"' && std::string_view(trimmed(field)).empty() && !quoted) {
            // A quoted field: up to the closing quote, blanks around it dropped.
            field.clear();
            quoted = true;
            ++i;
            while (i < line.size()) {
                if (line[i] == '"') {
                    if (i + 1 < line.size() && line[i + 1] == '"') {
                        field += '"';
                        i += 2;
                        continue;
                    }
                    ++i;
                    break;
                }
                field += line[i++];
            }
            while (i < line.size() && line[i] != separator) {
                ++i;
            }
            continue;
        }
        if (c == separator) {
            finish();
        } else if (!quoted) {
            field += c;
        }
        ++i;
    }
    finish();
}

bool dropByteOrderMark(std::string& first_line)
{
    if (first_line.rfind("\xEF\xBB\xBF", 0) != 0) {
        return false;
    }
    first_line.erase(0, 3);
    return true;
}

CsvFieldKind readCsvField(const std::string& field, double& value, bool decimal_comma)
{
    std::string with_point;
    std::string_view text = trimmed(field);
    if (decimal_comma && text.find(',') != std::string_view::npos) {
        with_point = std::string(text);
        std::replace(with_point.begin(), with_point.end(), ',', '.');
        text = with_point;
    }
    if (text.empty()) {
        return CsvFieldKind::missing;
    }
    if (text.front() == '+') {
        text.remove_prefix(1);
        if (text.empty() || text.front() == '-' || text.front() == '+') {
            return CsvFieldKind::bad;
        }
    }
    double parsed = 0.0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), parsed);
    if (error != std::errc() || end != text.data() + text.size()) {
        return CsvFieldKind::bad;
    }
    if (std::isnan(parsed)) {
        return CsvFieldKind::missing;
    }
    value = parsed;
    return CsvFieldKind::number;
}

} // namespace zelvar_sim
