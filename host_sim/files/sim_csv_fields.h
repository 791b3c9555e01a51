// Splitting and reading the fields of one CSV line, the same way when a file
// is checked and when it is read.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelvar_sim {

// ';' when the line has one outside quotes, else a tab, else ','.
char guessCsvSeparator(std::string_view first_line);

// The fields of a line, cut at the separator outside double quotes, trimmed
// of blanks and unquoted ("" inside quotes is one quote). A final '\r' is dropped.
void splitCsvLine(std::string_view line, char separator, std::vector<std::string>& fields);

enum class CsvFieldKind { number, missing, bad };

// A number in the C locale's form (a leading '+' allowed), or with a decimal
// comma where `decimal_comma` (files separated by ';' or tabs, as
// spreadsheets of many countries write them); an empty field or any NaN is missing. `value`
// is set for a number only.
CsvFieldKind readCsvField(const std::string& field, double& value, bool decimal_comma = false);

// Drops a UTF-8 byte order mark at the start of a file's first line; true
// when there was one.
bool dropByteOrderMark(std::string& first_line);

} // namespace zelvar_sim
