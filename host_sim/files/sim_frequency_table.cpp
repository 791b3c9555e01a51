#include "sim_frequency_table.h"

#include "sim_file_error.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fstream>
#include <limits>
#include <ostream>
#include <set>

namespace zelvar_sim {
namespace {

// A field as CSV wants it: quoted when it holds a separator, a quote or a line end.
std::string csvField(const std::string& text)
{
    if (text.find_first_of(",\"\r\n") == std::string::npos) {
        return text;
    }
    std::string quoted = "\"";
    for (char c : text) {
        quoted += c;
        if (c == '"') {
            quoted += '"';
        }
    }
    return quoted + "\"";
}

} // namespace

std::string numberText(double value)
{
    if (std::isnan(value)) {
        return "nan";
    }
    char buffer[32];
    const auto [end, error] = std::to_chars(buffer, buffer + sizeof(buffer), value);
    return error == std::errc() ? std::string(buffer, end) : std::string("nan");
}

void writeFrequencyTable(std::ostream& out, const std::vector<FrequencySeries>& series)
{
    std::set<std::string> files;
    for (const FrequencySeries& one : series) {
        files.insert(one.file);
    }
    const bool with_file = files.size() > 1;
    out << (with_file ? "file," : "") << "channel,index,time_s,frequency_hz\n";
    for (const FrequencySeries& one : series) {
        const std::string prefix =
            (with_file ? csvField(one.file) + "," : std::string()) + csvField(one.channel) + ",";
        one.forEachPoint([&](std::uint64_t index, double value) {
            out << prefix << index << ',' << numberText(one.timeOf(index)) << ','
                << numberText(value) << '\n';
        });
    }
}

void writeFrequencyTable(const std::string& path, const std::vector<FrequencySeries>& series)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    if (!out) {
        throw FileError(path + ": cannot be written");
    }
    writeFrequencyTable(out, series);
    out.flush();
    if (!out) {
        throw FileError(path + ": writing failed before the table was whole");
    }
}

FrequencySummary summarise(const FrequencySeries& series)
{
    FrequencySummary summary;
    summary.file = series.file;
    summary.channel = series.channel;
    std::vector<double> numbers;
    for (const CapturedBlock& block : series.blocks) {
        summary.values += block.values.size();
        for (double value : block.values) {
            if (std::isnan(value)) {
                ++summary.nan_values;
            } else {
                numbers.push_back(value);
            }
        }
    }
    if (numbers.empty()) {
        summary.median_hz = std::numeric_limits<double>::quiet_NaN();
        return summary;
    }
    const std::size_t half = numbers.size() / 2;
    std::nth_element(numbers.begin(), numbers.begin() + static_cast<std::ptrdiff_t>(half),
                     numbers.end());
    summary.median_hz = numbers[half];
    if (numbers.size() % 2 == 0) {
        const double below = *std::max_element(
            numbers.begin(), numbers.begin() + static_cast<std::ptrdiff_t>(half));
        summary.median_hz = below + (summary.median_hz - below) / 2.0;
    }
    return summary;
}

void printSummaries(std::ostream& out, const std::vector<FrequencySummary>& summaries)
{
    for (const FrequencySummary& summary : summaries) {
        out << summary.file << ' ' << summary.channel << ": " << summary.values << " values, "
            << summary.nan_values << " NaN, median ";
        if (std::isnan(summary.median_hz)) {
            out << "none";
        } else {
            out << numberText(summary.median_hz) << " Hz";
        }
        out << '\n';
    }
}

} // namespace zelvar_sim
