// Every file a run cannot take is refused with one line that names it, and
// with its line where the fault is on one.
#include "sim_file_error.h"
#include "sim_frequency_plot.h"
#include "sim_frequency_table.h"
#include "sim_recording_file.h"
#include "test_files.h"

#include <gtest/gtest.h>

#include <optional>

namespace zelvar_sim {
namespace {

struct Refusal {
    const char* label;
    std::string file_name;
    std::optional<std::string> content; // none: the file is not made
    std::optional<double> csv_rate;
    std::string message_after_path;
};

TEST(FileRefusals, AnswerWithOneLineNamingTheFile)
{
    const Refusal refusals[] = {
        {"missing", "absent.wav", std::nullopt, std::nullopt, ": no such file"},
        {"unknown format", "noise.wav", "this is not a sound file at all", std::nullopt,
         ": not a sound file that libsndfile reads ("},
        {"bad number", "bad.csv", "a,b\n1,2\n3,x4\n", 100.0,
         ":3: \"x4\" in column 2 (b) is not a number"},
        {"number out of range", "huge.csv", "1\n1e999\n", 100.0,
         ":2: \"1e999\" in column 1 (ch0) is not a number"},
        {"row too short", "short.csv", "1,2\n3\n", 100.0, ":2: 1 fields where the first line has 2"},
        {"blank line inside", "blank.csv", "a,b\n1,2\n\n3,4\n", 100.0,
         ":3: blank line among the rows of 2 columns"},
        {"header only", "empty.csv", "a,b\n", 100.0, ": holds no rows of samples"},
        {"rate of 0", "zero.csv", "1\n", 0.0, ": sample rate must be above 0 Hz"},
        {"no rate", "norate.csv", "1\n", std::nullopt, ": a CSV file needs its sample rate given"},
        {"folder", "folder.wav", std::nullopt, std::nullopt, ": is a folder, not a recording"},
    };
    const auto folder = test::testFolder();
    std::filesystem::create_directory(folder / "folder.wav");
    for (const Refusal& refusal : refusals) {
        SCOPED_TRACE(refusal.label);
        const std::string path = (folder / refusal.file_name).string();
        if (refusal.content) {
            test::writeText(path, *refusal.content);
        }
        try {
            openRecordingFile(path, refusal.csv_rate);
            ADD_FAILURE() << "taken";
        } catch (const FileError& error) {
            const std::string text = error.what();
            EXPECT_EQ(text.rfind(path + refusal.message_after_path, 0), 0u) << text;
            EXPECT_EQ(text.find('\n'), std::string::npos) << text;
        }
    }
}

// A file that changes under a run is no longer read: the host gets no data
// for it, and the reader keeps the first fault for the command to tell.
TEST(FileRefusals, AFileChangedAfterOpeningFailsItsReadsAndSaysWhy)
{
    const auto folder = test::testFolder();
    const auto csv = folder / "changed.csv";
    const auto wav = folder / "changed.wav";
    test::writeText(csv, "a\n1\n2\n3\n");
    test::writeSoundFile(wav, SF_FORMAT_WAV | SF_FORMAT_FLOAT, 1, 100, std::vector<float>(5000, 1));
    const RecordingFile files[] = {openRecordingFile(csv.string(), 100.0, {.bytes = 8}),
                                   openRecordingFile(wav.string(), {}, {.bytes = 4})};
    test::writeText(csv, "a\n1\nx\n3\n");
    std::filesystem::resize_file(wav, 1000);
    for (const RecordingFile& file : files) {
        SCOPED_TRACE(file.path);
        double sink[8]{};
        const auto* recording = file.inputs[0].recording.get();
        EXPECT_TRUE(recording->read(0, 1, reinterpret_cast<unsigned char*>(sink)));
        EXPECT_FALSE(recording->read(recording->length() - 2, 2,
                                     reinterpret_cast<unsigned char*>(sink)));
        const std::string fault = file.reader->fault();
        EXPECT_EQ(fault.rfind(file.path + ":", 0), 0u) << fault;
    }
}

TEST(FileRefusals, OutputsThatCannotBeWritten)
{
    const auto folder = test::testFolder();
    const std::string in_missing_folder = (folder / "no" / "such" / "out.csv").string();
    EXPECT_THROW(writeFrequencyTable(in_missing_folder, {}), FileError);
    PlotRequest request;
    request.path = (folder / "plot.pdf").string();
    EXPECT_THROW(plotScript(request), FileError);
}

} // namespace
} // namespace zelvar_sim
