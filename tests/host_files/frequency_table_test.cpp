// The run's table reads back bit for bit, in index order per input, with
// "nan" for a refused window; the summary and the plot see the same values.
#include "sim_file_error.h"
#include "sim_frequency_plot.h"
#include "sim_frequency_table.h"
#include "test_files.h"
#include "zlr_random.h"

#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <sstream>

namespace zelvar_sim {
namespace {

std::vector<std::string> splitLine(const std::string& line)
{
    std::vector<std::string> fields;
    std::stringstream in(line);
    for (std::string field; std::getline(in, field, ',');) {
        fields.push_back(field);
    }
    return fields;
}

double readBack(const std::string& text)
{
    double value = 0.0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    EXPECT_TRUE(error == std::errc() && end == text.data() + text.size()) << text;
    return value;
}

TEST(FrequencyTable, ReadsBackBitForBitInIndexOrder)
{
    zlr::test::Random random(20261123);
    std::vector<FrequencySeries> series(2);
    series[0] = {"a.wav", "left", 44100.0, 441, {}};
    series[1] = {"b.csv", "right", 10000.0, 1000, {}};
    std::vector<std::vector<double>> values(2);
    for (std::size_t s = 0; s < 2; ++s) {
        // Blocks arrive out of order; the table is in index order.
        std::vector<double> first(50), second(70);
        for (double& v : first) v = random.finite();
        for (double& v : second) v = random.coin() ? random.finite() : std::nan("");
        second[3] = std::numeric_limits<double>::denorm_min();
        second[4] = -0.0;
        series[s].blocks = {{51, second}, {1, first}};
        values[s] = first;
        values[s].insert(values[s].end(), second.begin(), second.end());
    }
    std::ostringstream out;
    writeFrequencyTable(out, series);
    std::istringstream in(out.str());
    std::string line;
    std::getline(in, line);
    EXPECT_EQ(line, "file,channel,index,time_s,frequency_hz");
    for (std::size_t s = 0; s < 2; ++s) {
        for (std::size_t i = 0; i < values[s].size(); ++i) {
            ASSERT_TRUE(std::getline(in, line));
            const std::vector<std::string> fields = splitLine(line);
            ASSERT_EQ(fields.size(), 5u) << line;
            EXPECT_EQ(fields[0], series[s].file);
            EXPECT_EQ(fields[1], series[s].channel);
            EXPECT_EQ(fields[2], std::to_string(i + 1));
            const double time = static_cast<double>(i + 1) *
                                static_cast<double>(series[s].window_step) / series[s].sample_rate;
            EXPECT_EQ(std::bit_cast<std::uint64_t>(readBack(fields[3])),
                      std::bit_cast<std::uint64_t>(time));
            if (std::isnan(values[s][i])) {
                EXPECT_EQ(fields[4], "nan");
            } else {
                EXPECT_EQ(std::bit_cast<std::uint64_t>(readBack(fields[4])),
                          std::bit_cast<std::uint64_t>(values[s][i]))
                    << fields[4];
            }
        }
    }
    EXPECT_FALSE(std::getline(in, line)) << line;

    // One file: no file column, and a name that needs quotes gets them.
    std::ostringstream single;
    writeFrequencyTable(single, {{"a.wav", "x,y", 1000.0, 100, {{1, {5.5}}}}});
    EXPECT_EQ(single.str(), "channel,index,time_s,frequency_hz\n\"x,y\",1,0.1,5.5\n");
}

TEST(FrequencyTable, SummaryCountsAndMedians)
{
    const double nan = std::nan("");
    struct Row {
        std::vector<CapturedBlock> blocks;
        std::size_t values;
        std::size_t nan_values;
        double median;
    };
    const Row rows[] = {
        {{{1, {3, 1, 2}}}, 3, 0, 2},
        {{{1, {4, nan}}, {3, {1, 2, nan}}}, 5, 2, 2},
        {{{1, {10, 20}}}, 2, 0, 15},
        {{{1, {nan, nan}}}, 2, 2, nan},
        {{}, 0, 0, nan},
    };
    for (const Row& row : rows) {
        const FrequencySummary summary = summarise({"f", "c", 1000.0, 10, row.blocks});
        EXPECT_EQ(summary.values, row.values);
        EXPECT_EQ(summary.nan_values, row.nan_values);
        if (std::isnan(row.median)) {
            EXPECT_TRUE(std::isnan(summary.median_hz));
        } else {
            EXPECT_EQ(summary.median_hz, row.median);
        }
    }
}

TEST(FrequencyPlot, NanBreaksTheLineAndGnuplotDrawsTheFile)
{
    const auto folder = test::testFolder();
    const double nan = std::nan("");
    PlotRequest request;
    request.title = "window 0.2 s, overlap 50 %, 25 Hz to 5000 Hz";
    request.series = {{"rig.wav", "mic's_left", 10000.0, 1000, {{1, {100, 101, nan, nan, 103}}}},
                      {"rig.wav", "empty", 10000.0, 1000, {{1, {nan, nan}}}}};
    request.path = (folder / "plot.png").string();
    const std::string script = plotScript(request);
    EXPECT_NE(script.find("0.2 101\n\n0.5 103\n"), std::string::npos) << script;
    EXPECT_NE(script.find("'empty (no frequency)'"), std::string::npos) << script;

    if (std::system("command -v gnuplot > /dev/null 2>&1") == 0) {
        for (const char* name : {"plot.png", "plot.SVG"}) {
            request.path = (folder / name).string();
            plotFrequencies(request);
            std::ifstream in(request.path, std::ios::binary);
            std::string head(8, '\0');
            in.read(head.data(), 8);
            EXPECT_TRUE(head == "\x89PNG\r\n\x1a\n" || head.rfind("<?xml", 0) == 0) << name;
        }
    }
    request.gnuplot = "zelvar-no-such-gnuplot";
    try {
        plotFrequencies(request);
        ADD_FAILURE() << "a missing gnuplot drew a plot";
    } catch (const FileError& error) {
        EXPECT_NE(std::string(error.what()).find("gnuplot-nox"), std::string::npos)
            << error.what();
    }
}

} // namespace
} // namespace zelvar_sim
