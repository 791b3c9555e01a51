#include "sim_session_outcome.h"

#include "sim_file_error.h"

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <type_traits>

namespace zelvar_sim {
namespace {

// The file never leaves the machine nor outlives the run: numbers go as
// their bytes.
template <typename T>
void put(std::ostream& out, const T& value)
{
    static_assert(std::is_trivially_copyable_v<T>);
    out.write(reinterpret_cast<const char*>(&value), sizeof value);
}

void put(std::ostream& out, const std::string& text)
{
    put(out, static_cast<std::uint64_t>(text.size()));
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
}

template <typename T>
T take(std::istream& in)
{
    T value{};
    in.read(reinterpret_cast<char*>(&value), sizeof value);
    return value;
}

// A size that a truncated or foreign file could make absurd is checked
// against what is left of the file before anything is allocated.
std::uint64_t takeSize(std::istream& in, std::uint64_t item_bytes, std::uint64_t left)
{
    const auto size = take<std::uint64_t>(in);
    if (!in || size > left / std::max<std::uint64_t>(1, item_bytes)) {
        in.setstate(std::ios::failbit);
        return 0;
    }
    return size;
}

std::string takeText(std::istream& in, std::uint64_t left)
{
    std::string text(takeSize(in, 1, left), '\0');
    in.read(text.data(), static_cast<std::streamsize>(text.size()));
    return text;
}

} // namespace

void writeSessionOutcome(const std::string& path, const SessionOutcome& outcome)
{
    std::ofstream out(path, std::ios::binary);
    put(out, outcome.status);
    put(out, outcome.error);
    put(out, outcome.printed);
    put(out, outcome.title);
    put(out, outcome.saved_configuration);
    put(out, static_cast<std::uint64_t>(outcome.series.size()));
    for (const FrequencySeries& series : outcome.series) {
        put(out, series.file);
        put(out, series.channel);
        put(out, series.sample_rate);
        put(out, series.window_step);
        put(out, static_cast<std::uint64_t>(series.blocks.size()));
        for (const CapturedBlock& block : series.blocks) {
            put(out, block.first_index);
            put(out, static_cast<std::uint64_t>(block.values.size()));
            out.write(reinterpret_cast<const char*>(block.values.data()),
                      static_cast<std::streamsize>(block.values.size() * sizeof(double)));
        }
    }
    out.close();
    if (!out) {
        throw FileError(path + ": cannot be written");
    }
}

SessionOutcome readSessionOutcome(const std::string& path)
{
    std::ifstream in(path, std::ios::binary | std::ios::ate);
    const auto left = static_cast<std::uint64_t>(std::max<std::streamoff>(0, in.tellg()));
    in.seekg(0);
    SessionOutcome outcome;
    outcome.status = take<int>(in);
    outcome.error = takeText(in, left);
    outcome.printed = takeText(in, left);
    outcome.title = takeText(in, left);
    outcome.saved_configuration = takeText(in, left);
    outcome.series.resize(takeSize(in, 40, left));
    for (FrequencySeries& series : outcome.series) {
        series.file = takeText(in, left);
        series.channel = takeText(in, left);
        series.sample_rate = take<double>(in);
        series.window_step = take<std::uint64_t>(in);
        series.blocks.resize(takeSize(in, 16, left));
        for (CapturedBlock& block : series.blocks) {
            block.first_index = take<std::uint64_t>(in);
            block.values.resize(takeSize(in, sizeof(double), left));
            in.read(reinterpret_cast<char*>(block.values.data()),
                    static_cast<std::streamsize>(block.values.size() * sizeof(double)));
        }
    }
    if (!in || in.peek() != std::char_traits<char>::eof()) {
        throw FileError(path + ": a session's result that does not read back");
    }
    return outcome;
}

} // namespace zelvar_sim
