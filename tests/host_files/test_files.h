// Test helper: a folder of its own per test, and sound files written there
// by libsndfile.
#pragma once

#include "sim_recording.h"

#include <sndfile.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace zelvar_sim::test {

inline std::filesystem::path testFolder()
{
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    std::string name = std::string(info->test_suite_name()) + "_" + info->name();
    for (char& c : name) {
        if (c == '/') {
            c = '_';
        }
    }
    const auto folder = std::filesystem::temp_directory_path() / ("zelvar-files-" + name);
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    return folder;
}

inline void writeText(const std::filesystem::path& path, const std::string& text)
{
    std::ofstream(path, std::ios::binary) << text;
}

// Writes interleaved frames of `channels` channels in `format`.
template <typename T>
void writeSoundFile(const std::filesystem::path& path, int format, int channels, int rate,
                    const std::vector<T>& interleaved)
{
    SF_INFO info{};
    info.samplerate = rate;
    info.channels = channels;
    info.format = format;
    SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
    ASSERT_NE(file, nullptr) << sf_strerror(nullptr);
    const sf_count_t frames = static_cast<sf_count_t>(interleaved.size()) / channels;
    sf_count_t written = 0;
    if constexpr (std::is_same_v<T, std::int16_t>) {
        written = sf_writef_short(file, interleaved.data(), frames);
    } else if constexpr (std::is_same_v<T, std::int32_t>) {
        written = sf_writef_int(file, interleaved.data(), frames);
    } else if constexpr (std::is_same_v<T, float>) {
        written = sf_writef_float(file, interleaved.data(), frames);
    } else {
        written = sf_writef_double(file, interleaved.data(), frames);
    }
    EXPECT_EQ(written, frames);
    sf_close(file);
}

// Everything one channel delivers, read in pieces of the given sizes in turn.
template <typename T>
std::vector<T> readAll(const Recording& recording, const std::vector<std::uint64_t>& pieces)
{
    std::vector<T> values(recording.length());
    std::uint64_t first = 0;
    for (std::size_t p = 0; first < values.size(); ++p) {
        const std::uint64_t count =
            std::min<std::uint64_t>(pieces[p % pieces.size()], values.size() - first);
        EXPECT_TRUE(recording.read(first, count,
                                   reinterpret_cast<unsigned char*>(values.data() + first)))
            << "at " << first;
        first += count;
    }
    return values;
}

} // namespace zelvar_sim::test
