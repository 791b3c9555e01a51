#include <sndfile.h>
#include <sys/wait.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr int RATE = 8000;
constexpr double TONE = 440.0;
constexpr int GAP_BEGIN = 3000; // samples [GAP_BEGIN, GAP_END) missing in the CSV
constexpr int GAP_END = 3400;

struct Outcome {
    int status = -1;
    std::string out;
    std::string err;
};

std::string readText(const fs::path& path)
{
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

fs::path folder()
{
    // One per test, since CTest may run the tests side by side.
    const auto dir = fs::temp_directory_path() /
                     ("zelvar-run-command-" +
                      std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()));
    fs::create_directories(dir);
    return dir;
}

Outcome runSim(const std::string& args)
{
    const fs::path dir = folder();
    const std::string line = "cd '" + dir.string() + "' && '" + ZELVAR_SIM + "' run " + args +
                             " >stdout.txt 2>stderr.txt";
    const int raw = std::system(line.c_str());
    return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, readText(dir / "stdout.txt"),
            readText(dir / "stderr.txt")};
}

std::vector<std::int16_t> tone()
{
    std::vector<std::int16_t> samples(RATE);
    for (int i = 0; i < RATE; ++i) {
        samples[i] = static_cast<std::int16_t>(std::lround(12000.0 * std::sin(2 * M_PI * TONE * i / RATE)));
    }
    return samples;
}

void writeInputs()
{
    const auto samples = tone();
    SF_INFO info{};
    info.samplerate = RATE;
    info.channels = 1;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    SNDFILE* file = sf_open((folder() / "tone.wav").c_str(), SFM_WRITE, &info);
    ASSERT_NE(file, nullptr);
    sf_writef_short(file, samples.data(), RATE);
    sf_close(file);
    std::ofstream csv(folder() / "tone.csv");
    csv << "tone,other\n";
    for (int i = 0; i < RATE; ++i) {
        if (i >= GAP_BEGIN && i < GAP_END) {
            csv << ",\n";
        } else {
            csv << samples[i] << "," << -samples[i] << "\n";
        }
    }
}

struct Row {
    std::uint64_t index = 0;
    double time = 0.0;
    double frequency = 0.0;
};

// The rows of one channel of a table "channel,index,time_s,frequency_hz".
std::vector<Row> rowsOf(const std::string& table, const std::string& channel)
{
    std::istringstream lines(table);
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(line, "channel,index,time_s,frequency_hz");
    std::vector<Row> rows;
    while (std::getline(lines, line)) {
        std::istringstream fields(line);
        std::string name, index, time, frequency;
        std::getline(fields, name, ',');
        std::getline(fields, index, ',');
        std::getline(fields, time, ',');
        std::getline(fields, frequency, ',');
        if (name == channel) {
            rows.push_back({std::stoull(index), std::stod(time), std::stod(frequency)});
        }
    }
    return rows;
}

TEST(RunCommand, WavAndCsvOfOneToneGiveOneTable)
{
    writeInputs();
    const Outcome wav = runSim("tone.wav -o wav_table.csv");
    ASSERT_EQ(wav.status, 0) << wav.err;
    const Outcome csv = runSim("tone.csv --sample-rate 8000 --channels tone -o -");
    ASSERT_EQ(csv.status, 0) << csv.err;

    const auto wav_rows = rowsOf(readText(folder() / "wav_table.csv"), "tone");
    const auto csv_rows = rowsOf(csv.out, "tone");
    ASSERT_EQ(wav_rows.size(), csv_rows.size());
    ASSERT_GE(wav_rows.size(), 5u);
    // Defaults at 8000 Hz: a 0.2 s window of 2048 samples, moved by 800.
    const std::uint64_t step = 800, size = 2048;
    std::size_t gap_windows = 0;
    for (std::size_t i = 0; i < wav_rows.size(); ++i) {
        const Row& row = csv_rows[i];
        EXPECT_EQ(row.index, i + 1);
        EXPECT_EQ(row.time, static_cast<double>(row.index * step) / RATE);
        EXPECT_NEAR(wav_rows[i].frequency, TONE, 0.01) << "window " << row.index;
        const std::uint64_t first = (row.index - 1) * step;
        const bool holds_gap = first < GAP_END && first + size > GAP_BEGIN;
        gap_windows += holds_gap;
        if (holds_gap) {
            EXPECT_TRUE(std::isnan(row.frequency)) << "window " << row.index;
        } else {
            EXPECT_EQ(row.frequency, wav_rows[i].frequency) << "window " << row.index;
        }
    }
    EXPECT_GT(gap_windows, 0u);
}

TEST(RunCommand, BadInputIsOneLineAndWritesNothing)
{
    writeInputs();
    std::ofstream(folder() / "noise.wav") << "not a sound at all";
    std::ofstream(folder() / "bad.csv") << "a\n1\n2\n3x\n";
    const struct {
        std::string args;
        int status;
        std::string message;
    } cases[] = {
        {"missing.wav", 2, "missing.wav"},
        {"noise.wav", 2, "noise.wav"},
        {"bad.csv --sample-rate 100", 2, "bad.csv"},
        {"tone.csv", 2, "tone.csv"},
        {"tone.csv --sample-rate 0", 2, "sample rate"},
        {"tone.wav --channels 7", 2, "7"},
        {"tone.wav --min-frequency 3000 --max-frequency 1000", 3,
         "Minimum frequency is larger than maximum frequency"},
        {"tone.wav --max-frequency 4500", 3, "MaxFrequency"},
    };
    for (const auto& bad : cases) {
        fs::remove(folder() / "refused.csv");
        const Outcome outcome = runSim(bad.args + " -o refused.csv");
        EXPECT_EQ(outcome.status, bad.status) << bad.args;
        EXPECT_NE(outcome.err.find(bad.message), std::string::npos) << bad.args << ": " << outcome.err;
        EXPECT_EQ(outcome.err.find('\n'), outcome.err.size() - 1) << bad.args << ": " << outcome.err;
        EXPECT_FALSE(fs::exists(folder() / "refused.csv")) << bad.args;
    }
}

} // namespace
