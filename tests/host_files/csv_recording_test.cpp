// CSV columns come back through the recordings as written, a missing field
// as a gap in the host's data; the same signal as WAV and as CSV delivers the
// same values.
#include "sim_csv_recording.h"
#include "sim_frequency_table.h"
#include "test_files.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

namespace zelvar_sim {
namespace {

struct ChannelExpectation {
    std::string name;
    std::vector<SampleSpan> spans;
    std::vector<double> values; // NaN where no sample is
};

struct CsvCase {
    const char* label;
    std::string text;
    std::vector<ChannelExpectation> channels;
};

constexpr double gap = std::numeric_limits<double>::quiet_NaN();

TEST(CsvRecording, DeliversColumnsWithTheirGaps)
{
    const CsvCase cases[] = {
        {"header and a gap",
         "left,right\n1.5,-2\n2.5,\n3.5,nan\n4.5,1e-300\n",
         {{"left", {{0, 4}}, {1.5, 2.5, 3.5, 4.5}}, {"right", {{0, 1}, {3, 4}}, {-2, gap, gap, 1e-300}}}},
        {"no header, gaps at both ends",
         ",7\n0.25,8\n0.5,NaN\n",
         {{"ch0", {{1, 3}}, {gap, 0.25, 0.5}}, {"ch1", {{0, 2}}, {7, 8, gap}}}},
        {"quoted names, semicolons, CRLF, blanks",
         "\"Voltage (V)\"; \"a;b\"\r\n +1 ; 2 \r\n3;-4\r\n",
         {{"Voltage (V)", {{0, 2}}, {1, 3}}, {"a;b", {{0, 2}}, {2, -4}}}},
        {"one column, a blank line is a gap, trailing blanks are not rows",
         "x\n1\n\n2\n\n\n",
         {{"x", {{0, 1}, {2, 3}}, {1, gap, 2}}}},
        {"byte order mark, decimal commas, tabs",
         "\xEF\xBB\xBF" "0,5\t-1,25\n2\t\n",
         {{"ch0", {{0, 2}}, {0.5, 2}}, {"ch1", {{0, 1}}, {-1.25, gap}}}},
        {"all missing",
         "a,b\n,\nnan,nan\n",
         {{"a", {}, {gap, gap}}, {"b", {}, {gap, gap}}}},
    };
    const auto folder = test::testFolder();
    for (const CsvCase& row : cases) {
        SCOPED_TRACE(row.label);
        const auto path = folder / "input.csv";
        test::writeText(path, row.text);
        const RecordingFile file = CsvRecording::open(path.string(), 250.0);
        EXPECT_EQ(file.sample_rate, 250.0);
        ASSERT_EQ(file.inputs.size(), row.channels.size());
        for (std::size_t c = file.inputs.size(); c-- > 0;) {
            const ChannelExpectation& expected = row.channels[c];
            const Recording& recording = *file.inputs[c].recording;
            EXPECT_EQ(file.inputs[c].long_name, expected.name);
            EXPECT_EQ(recording.encoding(), SampleEncoding::float64);
            EXPECT_EQ(recording.length(), expected.values.size());
            EXPECT_EQ(recording.dataSpans(), expected.spans);
            for (std::uint64_t i = 0; i < expected.values.size(); ++i) {
                double value = 0.0;
                const bool delivered =
                    recording.read(i, 1, reinterpret_cast<unsigned char*>(&value));
                EXPECT_EQ(delivered, !std::isnan(expected.values[i])) << "sample " << i;
                if (delivered) {
                    EXPECT_EQ(value, expected.values[i]) << "sample " << i;
                }
            }
            for (const SampleSpan& span : expected.spans) {
                std::vector<double> whole(span.end - span.begin + 1);
                EXPECT_TRUE(recording.read(span.begin, span.end - span.begin,
                                           reinterpret_cast<unsigned char*>(whole.data())));
                EXPECT_FALSE(recording.read(span.begin, span.end - span.begin + 1,
                                            reinterpret_cast<unsigned char*>(whole.data())))
                    << "a read into the gap behind a span";
            }
        }
    }
}

// A long CSV is read whole, out of order too, while the reader keeps its
// read-ahead and a mark every 1024 rows, not the file.
TEST(CsvRecording, MemoryStaysFlatOverALongFile)
{
    const auto folder = test::testFolder();
    const std::uint64_t rows = 200000;
    {
        std::ofstream out(folder / "long.csv");
        out << "t,v\n";
        for (std::uint64_t i = 0; i < rows; ++i) {
            out << i << ',' << (i % 1000 == 999 ? std::string() : std::to_string(i * 3)) << '\n';
        }
    }
    const std::size_t read_ahead = 8 * 1024;
    const RecordingFile file =
        CsvRecording::open((folder / "long.csv").string(), 100.0, {.bytes = read_ahead});
    EXPECT_EQ(file.inputs[1].recording->dataSpans().size(), rows / 1000);
    std::vector<double> piece(700);
    for (std::uint64_t first : {rows - 700, std::uint64_t{0}, rows / 2, std::uint64_t{4100}}) {
        ASSERT_TRUE(file.inputs[0].recording->read(first, piece.size(),
                                                   reinterpret_cast<unsigned char*>(piece.data())));
        for (std::uint64_t i = 0; i < piece.size(); ++i) {
            ASSERT_EQ(piece[i], static_cast<double>(first + i));
        }
    }
    const std::uint64_t file_bytes = std::filesystem::file_size(folder / "long.csv");
    EXPECT_LT(file.reader->memoryBytes(), read_ahead + (rows / 1024 + 1) * 8 + 4096);
    EXPECT_LT(file.reader->memoryBytes() * 50, file_bytes);
}

} // namespace
} // namespace zelvar_sim
