// Sound files that libsndfile writes here come back through the recordings
// sample for sample, in the file's own type, whichever channel is read first
// and in whatever pieces.
#include "sim_double_recording.h"
#include "sim_sound_file_recording.h"
#include "test_files.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>

namespace zelvar_sim {
namespace {

struct SoundCase {
    const char* label;
    int format;
    int channels;
    SampleEncoding delivered;
    int low_bits_zero; // integers below the file's width arrive full scale
};

template <typename T>
std::vector<T> randomSamples(std::size_t count, int low_bits_zero, std::mt19937_64& random)
{
    std::vector<T> values(count);
    for (T& value : values) {
        if constexpr (std::is_floating_point_v<T>) {
            value = std::uniform_real_distribution<T>(-1, 1)(random);
        } else {
            const auto full = static_cast<T>(random());
            value = static_cast<T>(full & ~static_cast<T>((T(1) << low_bits_zero) - 1));
        }
    }
    return values;
}

template <typename T>
void checkRoundTrip(const SoundCase& row, const std::filesystem::path& path)
{
    std::mt19937_64 random(0x5eed);
    const std::size_t frames = 10007;
    const std::vector<T> written =
        randomSamples<T>(frames * static_cast<std::size_t>(row.channels), row.low_bits_zero,
                         random);
    test::writeSoundFile(path, row.format, row.channels, 48000, written);

    const RecordingFile file = SoundFileRecording::open(path.string(), {.bytes = 3000});
    ASSERT_EQ(file.inputs.size(), static_cast<std::size_t>(row.channels));
    EXPECT_EQ(file.sample_rate, 48000.0);
    EXPECT_EQ(file.encoding, row.delivered);
    const std::vector<std::vector<std::uint64_t>> pieces{{7, 1000, 3}, {4096}, {1}};
    // The last channel first, so that the shared read-ahead is crossed both ways.
    for (int c = row.channels - 1; c >= 0; --c) {
        const Recording& recording = *file.inputs[static_cast<std::size_t>(c)].recording;
        EXPECT_EQ(recording.encoding(), row.delivered);
        EXPECT_EQ(recording.length(), frames);
        EXPECT_EQ(recording.dataSpans(), (std::vector<SampleSpan>{{0, frames}}));
        const std::vector<T> delivered =
            test::readAll<T>(recording, pieces[static_cast<std::size_t>(c) % pieces.size()]);
        // As doubles too, the way the host hands them out: the same values.
        const auto as_doubles = asDoubles(file.inputs[static_cast<std::size_t>(c)].recording);
        EXPECT_EQ(as_doubles->encoding(), SampleEncoding::float64);
        const std::vector<double> widened = test::readAll<double>(*as_doubles, {999});
        for (std::size_t i = 0; i < frames; ++i) {
            const T value = written[i * static_cast<std::size_t>(row.channels) + static_cast<std::size_t>(c)];
            ASSERT_EQ(delivered[i], value) << row.label << " channel " << c << " sample " << i;
            ASSERT_EQ(widened[i], static_cast<double>(value)) << row.label << " channel " << c << " as double";
        }
    }
    EXPECT_EQ(file.reader->fault(), "");
}

// What the recording decides by is the sample type; the containers (FLAC,
// AIFF) are libsndfile's business.
TEST(SoundFileRecording, DeliversWhatWasWrittenInTheFilesOwnType)
{
    const SoundCase cases[] = {
        {"wav16", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 2, SampleEncoding::int16, 0},
        {"wav8", SF_FORMAT_WAV | SF_FORMAT_PCM_U8, 1, SampleEncoding::int16, 8},
        {"wav24", SF_FORMAT_WAV | SF_FORMAT_PCM_24, 3, SampleEncoding::int32, 8},
        {"wav32", SF_FORMAT_WAV | SF_FORMAT_PCM_32, 2, SampleEncoding::int32, 0},
        {"wavfloat", SF_FORMAT_WAV | SF_FORMAT_FLOAT, 2, SampleEncoding::float32, 0},
        {"wavdouble", SF_FORMAT_WAV | SF_FORMAT_DOUBLE, 1, SampleEncoding::float64, 0},
    };
    const auto folder = test::testFolder();
    for (const SoundCase& row : cases) {
        SCOPED_TRACE(row.label);
        const auto path = folder / (std::string(row.label) + ".wav");
        switch (row.delivered) {
        case SampleEncoding::int16:
            checkRoundTrip<std::int16_t>(row, path);
            break;
        case SampleEncoding::int32:
            checkRoundTrip<std::int32_t>(row, path);
            break;
        case SampleEncoding::float32:
            checkRoundTrip<float>(row, path);
            break;
        case SampleEncoding::float64:
            checkRoundTrip<double>(row, path);
            break;
        }
    }
}

TEST(SoundFileRecording, NamesItsChannelsAfterTheFile)
{
    const auto folder = test::testFolder();
    test::writeSoundFile(folder / "rig.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 2, 8000,
                         std::vector<std::int16_t>(20, 1));
    test::writeSoundFile(folder / "mic.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 1, 8000,
                         std::vector<std::int16_t>(10, 1));
    std::vector<RecordingFile> files{SoundFileRecording::open((folder / "rig.wav").string()),
                                     SoundFileRecording::open((folder / "mic.wav").string()),
                                     SoundFileRecording::open((folder / "rig.wav").string())};
    makeLongNamesUnique(files);
    std::vector<std::string> names;
    for (const RecordingFile& file : files) {
        for (const FileInput& input : file.inputs) {
            names.push_back(input.long_name);
        }
    }
    EXPECT_EQ(names, (std::vector<std::string>{"rig_ch0", "rig_ch1", "mic", "rig_ch0_2",
                                               "rig_ch1_2"}));
}

// A recording far longer than the read-ahead is read whole while the reader
// keeps no more than its read-ahead.
TEST(SoundFileRecording, MemoryStaysFlatOverALongFile)
{
    const auto folder = test::testFolder();
    const std::size_t frames = 1 << 20;
    std::vector<std::int16_t> ramp(frames * 2);
    for (std::size_t i = 0; i < ramp.size(); ++i) {
        ramp[i] = static_cast<std::int16_t>(i * 7919);
    }
    test::writeSoundFile(folder / "long.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 2, 48000, ramp);
    ramp = {};

    const std::size_t read_ahead = 16 * 1024;
    const RecordingFile file =
        SoundFileRecording::open((folder / "long.wav").string(), {.bytes = read_ahead});
    std::vector<std::int16_t> piece(5000);
    for (std::uint64_t first = 0; first < frames; first += piece.size()) {
        const std::uint64_t count = std::min<std::uint64_t>(piece.size(), frames - first);
        for (std::size_t c = 0; c < 2; ++c) {
            ASSERT_TRUE(file.inputs[c].recording->read(
                first, count, reinterpret_cast<unsigned char*>(piece.data())));
            for (std::uint64_t i = 0; i < count; ++i) {
                ASSERT_EQ(piece[i], static_cast<std::int16_t>(((first + i) * 2 + c) * 7919))
                    << "frame " << first + i;
            }
        }
    }
    EXPECT_LE(file.reader->memoryBytes(), read_ahead + sizeof(double));
}

} // namespace
} // namespace zelvar_sim
