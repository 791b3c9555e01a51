// What the host delivers, read back with the kit's stream reader, equals the
// recording's values converted to double, bit for bit, in every sample type
// the recording stores and every record shape, with gaps where the recording
// has them, whatever the block duration.
#include "plugin_side.h"
#include "sim_acquisition.h"
#include "zlr_assert_capture.h"
#include "zlrfw_sample_position.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <sstream>

namespace {

using namespace zelvar_sim;
using host_data_test::PluginSide;
using host_data_test::WalkedSample;

struct ChannelCase {
    std::uint64_t id;
    SampleEncoding encoding;
    RecordShape shape;
    double rate;
    std::uint64_t length;
    std::vector<SampleSpan> gaps;
};

struct RoundTripCase {
    const char* name;
    std::vector<ChannelCase> channels;
    double block_duration; // seconds
    double step;           // seconds of host time between requests
    bool window_form;      // time-stamped requests instead of the stream
};

const RoundTripCase CASES[] = {
    {"double, synchronous, whole blocks",
     {{4, SampleEncoding::float64, RecordShape::synchronous, 1000.0, 1000, {}}}, 0.01, 0.1, false},
    {"float, synchronous, gaps, last block cut",
     {{4, SampleEncoding::float32, RecordShape::synchronous, 1000.0, 1234, {{100, 150}, {900, 1000}}}},
     0.013, 0.05, false},
    {"int16, timestamped, gaps at both ends",
     {{9, SampleEncoding::int16, RecordShape::timestamped, 8000.0, 4000, {{0, 10}, {3990, 4100}}}},
     0.0071, 0.1, false},
    {"int32, variable size, gaps inside blocks",
     {{2, SampleEncoding::int32, RecordShape::variable_size, 500.0, 777, {{300, 301}, {400, 460}}}},
     0.02, 0.1, false},
    {"double, variable size, steps shorter than blocks",
     {{2, SampleEncoding::float64, RecordShape::variable_size, 44100.0, 10000, {}}}, 0.1, 0.03,
     false},
    {"one block longer than the recording",
     {{5, SampleEncoding::int16, RecordShape::synchronous, 100.0, 250, {{10, 20}}}}, 10.0, 0.5,
     false},
    {"three channels, shared and own streams",
     {{1, SampleEncoding::float64, RecordShape::synchronous, 1000.0, 1500, {{200, 260}}},
      {7, SampleEncoding::int16, RecordShape::timestamped, 2000.0, 2600, {{1000, 1100}}},
      {3, SampleEncoding::float32, RecordShape::variable_size, 1000.0, 1400, {{5, 7}, {999, 1003}}}},
     0.05, 0.1, false},
    {"three channels, time-stamped windows",
     {{1, SampleEncoding::float64, RecordShape::synchronous, 1000.0, 1500, {{200, 260}}},
      {7, SampleEncoding::int16, RecordShape::timestamped, 2000.0, 2600, {{1000, 1100}}},
      {3, SampleEncoding::float32, RecordShape::variable_size, 1000.0, 1400, {{5, 7}, {999, 1003}}}},
     0.05, 0.07, true},
    {"int32, synchronous, time-stamped windows shorter than a sample",
     {{8, SampleEncoding::int32, RecordShape::synchronous, 300.0, 400, {{50, 60}}}}, 0.01, 0.002,
     true},
};

void PrintTo(const RoundTripCase& test, std::ostream* out)
{
    *out << test.name;
}

std::shared_ptr<MemoryRecording> randomRecording(const ChannelCase& channel, std::mt19937_64& random)
{
    std::vector<unsigned char> bytes(channel.length * sampleBytes(channel.encoding));
    for (unsigned char& byte : bytes) {
        byte = static_cast<unsigned char>(random());
    }
    return std::make_shared<MemoryRecording>(channel.encoding, std::move(bytes), channel.gaps);
}

// One stored value as the double it stands for.
std::vector<unsigned char> asDoubleBytes(SampleEncoding encoding, const unsigned char* stored)
{
    double value = 0.0;
    const auto load = [&](auto narrow) {
        std::memcpy(&narrow, stored, sizeof narrow);
        value = static_cast<double>(narrow);
    };
    switch (encoding) {
    case SampleEncoding::float64:
        load(double{});
        break;
    case SampleEncoding::float32:
        load(float{});
        break;
    case SampleEncoding::int16:
        load(std::int16_t{});
        break;
    case SampleEncoding::int32:
        load(std::int32_t{});
        break;
    }
    std::vector<unsigned char> bytes(sizeof value);
    std::memcpy(bytes.data(), &value, sizeof value);
    return bytes;
}

// Every tick from 0 up to `ticks`: the recording's value as a double, or
// none in a gap and behind the recording's end.
std::vector<WalkedSample> expectedWalk(const ChannelCase& channel, const Recording& recording,
                                       std::uint64_t ticks)
{
    std::vector<WalkedSample> walk(ticks);
    std::vector<unsigned char> stored(sampleBytes(channel.encoding));
    for (std::uint64_t tick = 0; tick < ticks; ++tick) {
        walk[tick].tick = tick;
        if (recording.read(tick, 1, stored.data())) {
            walk[tick].value = asDoubleBytes(channel.encoding, stored.data());
        }
    }
    return walk;
}

// Every channel is described as doubles, unscaled.
void expectDoubleLayouts(const zlr::StreamDescriptors& descriptors,
                         const std::vector<ChannelCase>& channels)
{
    std::size_t described = 0;
    for (const zlr::StreamDescriptor& stream : descriptors.m_stream_descriptors) {
        for (const zlr::ChannelDescriptor& layout : stream.m_channels) {
            ++described;
            const auto channel = std::find_if(channels.begin(), channels.end(), [&](const ChannelCase& c) {
                return c.id == layout.m_channel_id;
            });
            ASSERT_NE(channel, channels.end()) << "channel " << layout.m_channel_id;
            EXPECT_EQ(layout.m_sample_type, zlr::SAMPLE_TYPE_DOUBLE) << channel->id;
            EXPECT_EQ(layout.m_size, 64u) << channel->id;
            EXPECT_EQ(layout.m_dimension, 1u) << channel->id;
            EXPECT_EQ(layout.m_scale_factor, 1.0) << channel->id;
            EXPECT_EQ(layout.m_scale_offset, 0.0) << channel->id;
            // Stride and shape are read by the walk: a wrong one fails it.
        }
    }
    EXPECT_EQ(described, channels.size());
}

std::string firstDifference(const std::vector<WalkedSample>& got,
                            const std::vector<WalkedSample>& expected)
{
    std::ostringstream out;
    out << got.size() << " samples walked, " << expected.size() << " expected";
    for (std::size_t i = 0; i < std::min(got.size(), expected.size()); ++i) {
        if (got[i].tick != expected[i].tick || got[i].value != expected[i].value) {
            out << "; first difference at " << i << ": tick " << got[i].tick << " against "
                << expected[i].tick << ", " << (got[i].value ? "data" : "gap") << " against "
                << (expected[i].value ? "data" : "gap");
            break;
        }
    }
    return out.str();
}

class SamplesRoundTrip : public ::testing::TestWithParam<RoundTripCase> {};

TEST_P(SamplesRoundTrip, ReadBackEqualsTheRecording)
{
    const RoundTripCase& test = GetParam();
    zlr::test::AssertCapture assertions;
    SimHost host;
    {
        Acquisition acquisition(host);
        std::mt19937_64 random(0x5eed + test.channels.size());
        std::map<std::uint64_t, double> rates;
        std::vector<std::uint64_t> ids;
        std::map<std::uint64_t, std::shared_ptr<MemoryRecording>> recordings;
        double end = 0.0;
        for (const ChannelCase& channel : test.channels) {
            recordings[channel.id] = randomRecording(channel, random);
            InputChannelSetup setup;
            setup.id = channel.id;
            setup.sample_rate = channel.rate;
            setup.shape = channel.shape;
            acquisition.addInputChannel(setup, recordings[channel.id]);
            rates[channel.id] = channel.rate;
            ids.push_back(channel.id);
            end = std::max(end, static_cast<double>(channel.length) / channel.rate);
        }

        PluginSide side(host);
        const std::uint64_t key = 11;
        ASSERT_EQ(side.registerDataSet(key, ids), 0u);
        expectDoubleLayouts(side.descriptors(), test.channels);
        MasterClock& clock = acquisition.clock();
        if (!test.window_form) {
            ASSERT_EQ(side.startStream(key, test.block_duration), 0u);
        } else {
            acquisition.dataSets().setBlockDuration(test.block_duration);
        }

        std::map<std::uint64_t, std::vector<WalkedSample>> walked;
        const std::uint64_t step = clock.ticksAtOrAfter(test.step);
        const std::uint64_t end_ticks = clock.ticksAtOrAfter(end);
        double reached = 0.0;
        std::size_t requests = 0;
        while (clock.now().ticks < end_ticks) {
            const std::uint64_t from = clock.now().ticks;
            clock.setTicks(std::min(from + step, end_ticks));
            std::optional<host_data_test::Delivery> delivery;
            do {
                delivery = test.window_form
                               ? side.window(key, static_cast<double>(from) / clock.frequency(),
                                             clock.seconds(), rates)
                               : side.nextBlocks(key, rates);
                ASSERT_TRUE(delivery) << "request " << requests;
                ++requests;
                if (delivery->block_count == 0) {
                    break;
                }
                EXPECT_EQ(delivery->begin, reached) << "request " << requests;
                reached = delivery->end;
                for (auto& [id, samples] : delivery->channels) {
                    walked[id].insert(walked[id].end(), samples.begin(), samples.end());
                }
            } while (!test.window_form);
        }
        // Windows end on whole ticks of the clock, and so may pass the end.
        if (test.window_form) {
            EXPECT_GE(reached, end);
        } else {
            EXPECT_EQ(reached, end);
        }

        for (const ChannelCase& channel : test.channels) {
            const auto expected = expectedWalk(channel, *recordings[channel.id],
                                               zlr::framework::timeToSampleIndex(reached, channel.rate));
            EXPECT_TRUE(walked[channel.id] == expected)
                << "channel " << channel.id << ": " << firstDifference(walked[channel.id], expected);
        }
        if (!test.window_form) {
            EXPECT_TRUE(acquisition.dataSets().allStreamsDelivered());
            EXPECT_EQ(side.stopStream(key), 0u);
        }
        EXPECT_EQ(side.unregisterDataSet(key), 0u);
        EXPECT_TRUE(host.faults().empty()) << host.faults().front().reason;
    }
    EXPECT_TRUE(assertions.reported().empty()) << assertions.reported().front();
    EXPECT_EQ(host.valuesOutsideTree(), 0);
}

INSTANTIATE_TEST_SUITE_P(HostData, SamplesRoundTrip, ::testing::ValuesIn(CASES),
                         [](const ::testing::TestParamInfo<RoundTripCase>& info) {
                             std::string name = info.param.name;
                             std::replace_if(name.begin(), name.end(),
                                             [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); }, '_');
                             return name;
                         });

} // namespace
