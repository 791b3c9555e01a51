// The scenario fixture with what every test of the frequency channel does:
// inputs with recordings, a channel made through the host's dialogue, its
// settings as the host shows them, and runs whose every message must be
// answered with 0 and leave no host value behind.
#pragma once

#include "sim_scenario.h"

#include "sim_recording.h"
#include "zlrapi_data_format.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace frequency_test {

inline constexpr const char* INPUTS = "FREQUENCY_MEASUREMENT/InputChannels";
inline constexpr const char* OVERLAP = "FREQUENCY_MEASUREMENT/WindowOverlap";
inline constexpr const char* LENGTH = "FREQUENCY_MEASUREMENT/WindowLength";
inline constexpr const char* MIN_FREQUENCY = "FREQUENCY_MEASUREMENT/MinFrequency";
inline constexpr const char* MAX_FREQUENCY = "FREQUENCY_MEASUREMENT/MaxFrequency";
inline constexpr const char* STATUS = "FREQUENCY_MEASUREMENT/StatusText";

// amplitude * sin(2 pi f i / rate), i from 0 to count - 1.
inline std::vector<double> tone(double frequency, double rate, std::size_t count,
                                double amplitude = 1.0)
{
    std::vector<double> samples(count);
    for (std::size_t i = 0; i < count; ++i) {
        samples[i] = amplitude * std::sin(2.0 * M_PI * frequency * static_cast<double>(i) / rate);
    }
    return samples;
}

class FrequencyScenario : public zelvar_sim::test::SimScenario {
protected:
    void addInput(std::uint64_t id, const std::string& name, double rate,
                  std::shared_ptr<const zelvar_sim::Recording> recording, bool usable = true,
                  zlr::SampleOccurrence occurrence = zlr::SAMPLE_OCCURRENCE_SYNC)
    {
        acquisition().addInputChannel({.id = id, .long_name = name, .sample_rate = rate,
                                       .occurrence = occurrence, .usable = usable},
                                      std::move(recording));
    }

    // The root of a new channel over `inputs`, or 0 with a failure.
    std::uint32_t createChannel(const std::vector<std::uint64_t>& inputs)
    {
        std::vector<zlr::InputChannelFormat> candidates;
        for (const std::uint64_t id : inputs) {
            candidates.push_back({static_cast<std::uint32_t>(id), zelvar_sim::synchronousScalar()});
        }
        const auto created = model().createSoftwareChannel(candidates);
        EXPECT_TRUE(created.response && !created.response->m_created_channels.empty())
            << model().dump();
        return created.response && !created.response->m_created_channels.empty()
                   ? created.response->m_created_channels.front()
                   : 0;
    }

    void edit(std::uint32_t root, const std::string& key, const std::string& text)
    {
        EXPECT_EQ(model().editProperty(root, key, text), 0u) << key << " = " << text;
    }

    std::optional<zlr::Property> shown(std::uint32_t local_id, const std::string& key)
    {
        const auto property = model().channels().property(local_id, key);
        return property ? std::optional<zlr::Property>(property->value) : std::nullopt;
    }
    double shownScalar(std::uint32_t local_id, const std::string& key)
    {
        const auto property = shown(local_id, key);
        return property ? property->getScalarValue().m_val : std::nan("");
    }
    std::string status(std::uint32_t root)
    {
        const auto property = shown(root, STATUS);
        return property ? property->getStringValue() : "(no status)";
    }

    // Whether the host holds a task that writes to `root`'s channels.
    bool taskRegistered(std::uint32_t root)
    {
        for (const auto& task : acquisition().tasks().tasks()) {
            for (const std::uint64_t output : task.output_channels) {
                if (output == root) {
                    return true;
                }
            }
        }
        return false;
    }

    // A run from time 0 with fresh output capture.
    zelvar_sim::RunReport run(const zelvar_sim::RunOptions& options = {})
    {
        acquisition().output().clear();
        const zelvar_sim::RunReport report = acquisition().run(session(), options);
        EXPECT_TRUE(report.failures().empty()) << model().dump();
        EXPECT_EQ(host().valuesOutsideTree(), 0) << "value objects held after the run";
        return report;
    }

    const std::vector<zelvar_sim::CapturedBlock>& blocks(std::uint32_t output)
    {
        return acquisition().outputBlocks(output);
    }
};

} // namespace frequency_test
