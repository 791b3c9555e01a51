// A WAV and a CSV given to the simulated host as input channels: what the
// host delivers in its blocks, walked with the kit's stream reader, is what
// the files hold, as doubles whatever type a file stores, with a gap where a
// CSV field was empty.
#include "plugin_side.h"
#include "sim_acquisition.h"
#include "sim_frequency_table.h"
#include "sim_recording_file.h"
#include "test_files.h"
#include "zlrfw_sample_position.h"

#include <gtest/gtest.h>

#include <cstring>
#include <sstream>

namespace zelvar_sim {
namespace {

using host_data_test::WalkedSample;

template <typename T>
WalkedSample sampleOf(std::uint64_t tick, std::optional<T> value)
{
    WalkedSample sample;
    sample.tick = tick;
    if (value) {
        sample.value = std::vector<unsigned char>(sizeof(T));
        std::memcpy(sample.value->data(), &*value, sizeof(T));
    }
    return sample;
}

TEST(HostDelivery, FilesReachThePlugInAsWritten)
{
    const auto folder = test::testFolder();
    const std::uint64_t frames = 1500;
    const double rate = 1000.0;
    std::map<std::uint64_t, std::vector<WalkedSample>> expected;
    std::ostringstream csv;
    csv << "speed,torque\n";
    std::vector<std::int16_t> wav(frames * 2);
    for (std::uint64_t i = 0; i < frames; ++i) {
        const double speed = 0.5 + static_cast<double>(i) / 3.0;
        const bool torque_missing = (i >= 200 && i < 260) || i >= 1400;
        const std::optional<double> torque =
            torque_missing ? std::nullopt : std::optional<double>(-1e5 / static_cast<double>(i + 1));
        csv << (i < 10 ? std::string() : numberText(speed)) << ','
            << (torque ? numberText(*torque) : std::string(i % 2 ? "nan" : "")) << '\n';
        expected[1].push_back(sampleOf(i, i < 10 ? std::nullopt : std::optional<double>(speed)));
        expected[2].push_back(sampleOf(i, torque));
        for (std::uint64_t c = 0; c < 2; ++c) {
            wav[2 * i + c] = static_cast<std::int16_t>(i * 977 + c * 31);
            expected[3 + c].push_back(
                sampleOf(i, std::optional<double>(static_cast<double>(wav[2 * i + c]))));
        }
    }
    test::writeText(folder / "rig.csv", csv.str());
    test::writeSoundFile(folder / "rig.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 2,
                         static_cast<int>(rate), wav);
    std::vector<RecordingFile> files{openRecordingFile((folder / "rig.csv").string(), rate),
                                     openRecordingFile((folder / "rig.wav").string(), {})};

    SimHost host;
    {
        Acquisition acquisition(host);
        std::map<std::uint64_t, double> rates;
        std::vector<std::uint64_t> ids;
        for (const RecordingFile& file : files) {
            for (const FileInput& input : file.inputs) {
                InputChannelSetup setup;
                setup.id = ids.size() + 1;
                setup.long_name = input.long_name;
                setup.sample_rate = file.sample_rate;
                acquisition.addInputChannel(setup, input.recording);
                rates[setup.id] = file.sample_rate;
                ids.push_back(setup.id);
            }
        }
        host_data_test::PluginSide side(host);
        const std::uint64_t key = 5;
        ASSERT_EQ(side.registerDataSet(key, ids), 0u);
        ASSERT_EQ(side.startStream(key, 0.05), 0u);
        MasterClock& clock = acquisition.clock();
        const std::uint64_t end_ticks = clock.ticksAtOrAfter(static_cast<double>(frames) / rate);
        std::map<std::uint64_t, std::vector<WalkedSample>> walked;
        while (clock.now().ticks < end_ticks) {
            clock.setTicks(std::min(clock.now().ticks + clock.ticksAtOrAfter(0.13), end_ticks));
            for (;;) {
                const auto delivery = side.nextBlocks(key, rates);
                ASSERT_TRUE(delivery);
                if (delivery->block_count == 0) {
                    break;
                }
                for (auto& [id, samples] : delivery->channels) {
                    walked[id].insert(walked[id].end(), samples.begin(), samples.end());
                }
            }
        }
        for (std::uint64_t id : ids) {
            ASSERT_EQ(walked[id].size(), expected[id].size()) << "channel " << id;
            for (std::size_t i = 0; i < frames; ++i) {
                ASSERT_EQ(walked[id][i], expected[id][i]) << "channel " << id << " sample " << i;
            }
        }
        EXPECT_TRUE(host.faults().empty());
    }
    for (const RecordingFile& file : files) {
        EXPECT_EQ(file.reader->fault(), "") << file.path;
    }
}

} // namespace
} // namespace zelvar_sim
