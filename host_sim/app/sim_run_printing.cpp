#include "sim_run_printing.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iomanip>
#include <map>
#include <optional>
#include <ostream>
#include <sstream>

namespace zelvar_sim {
namespace {

std::string fixed(double value, int decimals)
{
    if (std::isnan(value)) {
        return "NaN";
    }
    std::ostringstream text;
    text << std::fixed << std::setprecision(decimals) << value;
    return text.str();
}

// Samples per estimate: the window duration at the input's rate, rounded up
// to a power of two, at most 2^20; the plug-in publishes no setting of it.
std::uint64_t windowSamples(double rate, double seconds)
{
    const double product = rate * seconds;
    const auto wanted = product > 0.0 && product < 1e18 ? static_cast<std::uint64_t>(product) : 0;
    std::uint64_t size = 1;
    while (size < wanted && size < (std::uint64_t{1} << 20)) {
        size <<= 1;
    }
    return size;
}

void printInputs(std::ostream& out, const FrequencyRunRequest& request)
{
    out << "inputs:\n";
    std::uint64_t id = 1;
    for (const DemoInput& input : request.inputs) {
        const double seconds = static_cast<double>(input.recording->length()) / input.sample_rate;
        out << "  " << id++ << " \"" << input.long_name << "\", " << input.sample_rate << " Hz, "
            << seconds << " s: " << input.description << "\n";
    }
}

void printSettings(std::ostream& out, const FrequencyRunResult& result)
{
    out << "settings in force:\n";
    std::size_t width = 0;
    for (const ShownSetting& setting : result.settings) {
        width = std::max(width, setting.label.size());
    }
    for (const ShownSetting& setting : result.settings) {
        out << "  " << std::left << std::setw(static_cast<int>(width) + 2) << setting.label
            << (setting.value.empty() ? "(empty)" : setting.value) << "\n";
    }
    for (const std::string& refused : result.refused_edits) {
        out << "  not taken: " << refused << "\n";
    }
}

void printWindow(std::ostream& out, const FrequencyRunRequest& request,
                 const FrequencyRunResult& result)
{
    if (request.inputs.empty() || result.outputs.empty()) {
        return;
    }
    const double input_rate = request.inputs.front().sample_rate;
    const double output_rate = result.outputs.front().rate;
    out << "window: " << windowSamples(input_rate, result.window_length) << " samples ("
        << result.window_length << " s at " << input_rate
        << " Hz, rounded up to a power of two), step " << std::llround(input_rate / output_rate)
        << " samples, " << output_rate << " values a second per input\n";
}

void printRunLine(std::ostream& out, const FrequencyRunRequest& request,
                  const FrequencyRunResult& result)
{
    out << "run: " << result.report.process_steps << " process steps in "
        << (request.run.mode == ProcessMode::stream ? "stream" : "time-stamped")
        << " mode, one every " << request.run.process_interval << " s, blocks of "
        << (request.run.block_duration > 0.0 ? fixed(request.run.block_duration, 3) + " s"
                                             : std::string("the stream's own duration"))
        << (result.task_registered ? "" : "; the host has no task of the channel") << "\n";
}

// One row per output index that any output has, one column per output.
void printTable(std::ostream& out, const FrequencyRunResult& result)
{
    if (result.outputs.empty()) {
        out << "no output channels\n";
        return;
    }
    // A cell no output value fell into stays blank, unlike a NaN the plug-in sent.
    std::map<std::uint64_t, std::vector<std::optional<double>>> rows;
    for (std::size_t column = 0; column < result.outputs.size(); ++column) {
        for (const CapturedBlock& block : result.outputs[column].blocks) {
            for (std::size_t i = 0; i < block.values.size(); ++i) {
                auto& row = rows[block.first_index + i];
                row.resize(result.outputs.size());
                row[column] = block.values[i];
            }
        }
    }
    const double rate = result.outputs.front().rate;
    std::vector<int> widths;
    out << "\n" << std::right << std::setw(8) << "time s";
    for (const RunOutput& output : result.outputs) {
        const std::string heading = output.name + " Hz";
        widths.push_back(static_cast<int>(std::max<std::size_t>(heading.size(), 10) + 3));
        out << std::setw(widths.back()) << heading;
    }
    out << "\n";
    for (const auto& [index, values] : rows) {
        out << std::setw(8) << fixed(static_cast<double>(index) / rate, 3);
        for (std::size_t column = 0; column < values.size(); ++column) {
            out << std::setw(widths[column])
                << (values[column] ? fixed(*values[column], 2) : std::string());
        }
        out << "\n";
    }
    if (rows.empty()) {
        out << "  (no values)\n";
    }
}

} // namespace

void printFrequencyRun(std::ostream& out, const FrequencyRunRequest& request,
                       const FrequencyRunResult& result)
{
    printInputs(out, request);
    printSettings(out, result);
    printWindow(out, request, result);
    printRunLine(out, request, result);
    printTable(out, result);
    out << "\nNaN: a window that held a gap, or an estimate outside the frequency range.\n";
    out << "host faults: " << result.faults.size() << ", values the plug-in still holds: "
        << result.values_left << "\n";
    for (const ProtocolFault& fault : result.faults) {
        out << "  " << messageName(fault.message_id) << ": " << fault.reason << "\n";
    }
}

} // namespace zelvar_sim
