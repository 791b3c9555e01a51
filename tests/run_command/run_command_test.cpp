#include <sndfile.h>
#include <sys/wait.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr int RATE = 8000;
constexpr double TONE = 440.0;
constexpr std::uint64_t GAP_BEGIN = 3000, GAP_END = 3400; // samples the CSV leaves empty

std::string readText(const fs::path& path)
{
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

// A folder per test, since CTest may run them side by side; with the tone
// as a 16-bit WAV and as a CSV with a gap.
fs::path folderWithTone()
{
    const auto dir = fs::temp_directory_path() /
                     (std::string("zelvar-run-command-") +
                      ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::create_directories(dir);
    std::vector<std::int16_t> samples(RATE);
    std::ofstream csv(dir / "tone.csv");
    csv << "tone,other\n";
    for (std::uint64_t i = 0; i < RATE; ++i) {
        samples[i] = static_cast<std::int16_t>(std::lround(12000.0 * std::sin(2 * M_PI * TONE * i / RATE)));
        csv << (i >= GAP_BEGIN && i < GAP_END ? ",\n" : std::to_string(samples[i]) + ",1\n");
    }
    SF_INFO info{.frames = 0, .samplerate = RATE, .channels = 1,
                 .format = SF_FORMAT_WAV | SF_FORMAT_PCM_16, .sections = 0, .seekable = 0};
    SNDFILE* wav = sf_open((dir / "tone.wav").c_str(), SFM_WRITE, &info);
    EXPECT_EQ(sf_writef_short(wav, samples.data(), RATE), RATE);
    sf_close(wav);
    return dir;
}

// The exit status; what it printed is left in stdout.txt and stderr.txt.
int runSim(const fs::path& dir, const std::string& args)
{
    const std::string line = "cd '" + dir.string() + "' && '" + ZELVAR_SIM + "' run " + args +
                             " >stdout.txt 2>stderr.txt";
    const int raw = std::system(line.c_str());
    return WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
}

// The frequencies of channel "tone" by index, from a one-file table.
std::vector<double> frequencies(const std::string& table)
{
    std::istringstream lines(table);
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(line, "channel,index,time_s,frequency_hz");
    std::vector<double> values;
    while (std::getline(lines, line)) {
        std::uint64_t index = 0;
        double time = 0.0;
        EXPECT_EQ(std::sscanf(line.c_str(), "tone,%lu,%lf,", &index, &time), 2) << line;
        EXPECT_EQ(index, values.size() + 1);
        EXPECT_EQ(time, static_cast<double>(index * 800) / RATE); // step: half of 0.2 s
        values.push_back(std::stod(line.substr(line.rfind(',') + 1)));
    }
    return values;
}

TEST(RunCommand, WavAndCsvOfOneToneGiveOneTable)
{
    const fs::path dir = folderWithTone();
    ASSERT_EQ(runSim(dir, "tone.wav -o wav_table.csv"), 0);
    ASSERT_EQ(runSim(dir, "tone.csv --sample-rate 8000 --channels tone -o -"), 0);
    const auto from_wav = frequencies(readText(dir / "wav_table.csv"));
    const auto from_csv = frequencies(readText(dir / "stdout.txt"));
    ASSERT_EQ(from_wav.size(), from_csv.size());
    ASSERT_GE(from_wav.size(), 5u);
    std::size_t gap_windows = 0;
    for (std::uint64_t i = 0; i < from_wav.size(); ++i) {
        EXPECT_NEAR(from_wav[i], TONE, 0.01) << "window " << i;
        const std::uint64_t first = i * 800; // 2048 samples from here
        const bool holds_gap = first < GAP_END && first + 2048 > GAP_BEGIN;
        gap_windows += holds_gap;
        EXPECT_TRUE(holds_gap ? std::isnan(from_csv[i]) : from_csv[i] == from_wav[i]) << i;
    }
    EXPECT_GT(gap_windows, 0u);
}

// The trace reads as the conversation: numbered lines from PLUGIN_INIT to
// PLUGIN_FINISH, each with its answer, and the sample blocks written carry
// exactly the table's values.
TEST(RunCommand, TraceShowsTheConversationInOrder)
{
    const fs::path dir = folderWithTone();
    ASSERT_EQ(runSim(dir, "tone.wav --trace trace.txt -o table.csv"), 0);
    std::istringstream trace(readText(dir / "trace.txt"));
    const std::vector<std::string> order = {"PLUGIN_INIT ", "PLUGIN_SOFTWARE_CHANNEL_CREATE ",
                                            "PLUGIN_TASK_PROCESS ", "HOST_WRITE_SAMPLES ",
                                            "PLUGIN_FINISH "};
    std::size_t next = 0, sequence = 0, written_values = 0;
    std::string line;
    while (std::getline(trace, line)) {
        if (line.rfind("# ", 0) == 0) {
            continue;
        }
        EXPECT_EQ(std::stoul(line), ++sequence) << line;
        EXPECT_NE(line.find("  answer 0  "), std::string::npos) << line;
        next += next < order.size() && line.find(order[next]) != std::string::npos;
        if (const auto bytes = line.find("HOST_WRITE_SAMPLES (0x3000602)  key 1  answer 0  bytes[");
            bytes != std::string::npos) {
            written_values += (std::stoul(line.substr(line.find('[', bytes) + 1)) - 8) / 8;
        }
    }
    EXPECT_EQ(next, order.size());
    EXPECT_EQ(written_values, frequencies(readText(dir / "table.csv")).size());
}

// Settings kept in a file come back whole: a run that loads them without
// options gives the edited run's table, not the default one (the minimum
// above the tone makes every value NaN, and the step differs).
TEST(RunCommand, SavedSettingsLoadIntoTheNextRun)
{
    const fs::path dir = folderWithTone();
    ASSERT_EQ(runSim(dir, "tone.wav --window-length 0.1 --overlap 25 --min-frequency 450 "
                          "--max-frequency 3000 --save-config rig.xml -o edited.csv"), 0);
    ASSERT_EQ(runSim(dir, "tone.wav --load-config rig.xml -o loaded.csv"), 0);
    ASSERT_EQ(runSim(dir, "tone.wav -o default.csv"), 0);
    const std::string edited = readText(dir / "edited.csv");
    EXPECT_EQ(readText(dir / "loaded.csv"), edited);
    EXPECT_NE(readText(dir / "default.csv"), edited);
    EXPECT_NE(edited.find("tone,10,0.75125,nan\n"), std::string::npos) << edited;
    std::ofstream(dir / "not_settings.xml") << "<Channels/>";
    EXPECT_EQ(runSim(dir, "tone.wav --load-config not_settings.xml"), 2);
    EXPECT_NE(readText(dir / "stderr.txt").find("not_settings.xml"), std::string::npos);
}

// Files run side by side in child processes give the table of one after
// the other, in the order given; a failing file ends the run as alone.
TEST(RunCommand, JobsGiveTheTableOfOneAfterTheOther)
{
    const fs::path dir = folderWithTone();
    fs::copy_file(dir / "tone.wav", dir / "again.wav", fs::copy_options::overwrite_existing);
    const std::string files = "tone.csv tone.wav again.wav --sample-rate 8000 --channels 0 ";
    ASSERT_EQ(runSim(dir, files + "--jobs 1 -o one.csv"), 0);
    ASSERT_EQ(runSim(dir, files + "--jobs 2 -o two.csv"), 0);
    const std::string table = readText(dir / "one.csv");
    EXPECT_EQ(readText(dir / "two.csv"), table);
    EXPECT_LT(table.find("\ntone.csv,tone,"), table.find("\ntone.wav,tone_2,"));
    EXPECT_LT(table.find("\ntone.wav,tone_2,"), table.find("\nagain.wav,again,"));
    // One file's channels split over the jobs: the same table and summaries.
    const std::string channels = "tone.csv --sample-rate 8000 --channels other,tone,0 ";
    ASSERT_EQ(runSim(dir, channels + "--jobs 1 -o one.csv"), 0);
    const std::string summaries = readText(dir / "stdout.txt");
    for (const char* jobs : {"--jobs 2", "--jobs 3"}) {
        ASSERT_EQ(runSim(dir, channels + jobs + " -o split.csv"), 0);
        EXPECT_EQ(readText(dir / "split.csv"), readText(dir / "one.csv")) << jobs;
        EXPECT_EQ(readText(dir / "stdout.txt"), summaries) << jobs;
    }
    EXPECT_NE(readText(dir / "one.csv").find("\ntone_2,"), std::string::npos);
    EXPECT_EQ(runSim(dir, "tone.wav again.wav --jobs 2 --max-frequency 4500 -o refused.csv"), 3);
    EXPECT_EQ(readText(dir / "stderr.txt").find("zelvar-sim: setting not taken"), 0u);
    EXPECT_FALSE(fs::exists(dir / "refused.csv"));
}

// One row for each way the command refuses: a file (each file refusal has
// its own test), a line of a file, an option, a setting.
TEST(RunCommand, BadInputIsOneLineAndWritesNothing)
{
    const fs::path dir = folderWithTone();
    std::ofstream(dir / "bad.csv") << "a\n1\n2\n3x\n";
    const struct { std::string args; int status; std::string message; } cases[] = {
        {"missing.wav", 2, "missing.wav"}, {"bad.csv --sample-rate 100", 2, "bad.csv:4"},
        {"tone.wav --channels 7", 2, "7"}, {"tone.wav --block-duration x", 2, "--block-duration"},
        {"tone.wav --min-frequency 3000 --max-frequency 1000", 3,
         "Minimum frequency is larger than maximum frequency"},
        {"tone.wav --max-frequency 4500", 3, "MaxFrequency"},
    };
    for (const auto& bad : cases) {
        fs::remove(dir / "refused.csv");
        EXPECT_EQ(runSim(dir, bad.args + " -o refused.csv"), bad.status) << bad.args;
        const std::string err = readText(dir / "stderr.txt");
        EXPECT_NE(err.find(bad.message), std::string::npos) << bad.args << ": " << err;
        EXPECT_EQ(err.find('\n'), err.size() - 1) << bad.args << ": " << err;
        EXPECT_FALSE(fs::exists(dir / "refused.csv")) << bad.args;
    }
}

} // namespace
