#include "sim_channel_bench.h"

#include "sim_recording.h"
#include "zlrbase_messages.h"

#include <cmath>
#include <cstring>
#include <numbers>
#include <pugixml.hpp>
#include <random>
#include <sstream>

namespace zelvar_sim::validate {
namespace {

constexpr double SAMPLE_RATE = 10000.0;
constexpr std::size_t SAMPLES = 15000;

std::shared_ptr<const Recording> toneRecording(std::mt19937_64& random)
{
    std::uniform_real_distribution<double> frequency(50.0, 2000.0);
    std::normal_distribution<double> noise(0.0, 0.01);
    const double f = frequency(random);
    std::vector<double> samples(SAMPLES);
    for (std::size_t i = 0; i < SAMPLES; ++i) {
        samples[i] = std::sin(2.0 * std::numbers::pi * f * static_cast<double>(i) / SAMPLE_RATE) +
                     noise(random);
    }
    return MemoryRecording::of(samples);
}

std::vector<BenchInput> toneInputs(std::uint64_t seed)
{
    std::mt19937_64 random(seed);
    std::vector<BenchInput> inputs;
    for (std::uint64_t id = 1; id <= 2; ++id) {
        inputs.push_back({{.id = id, .long_name = "Tone " + std::to_string(id), .sample_rate = SAMPLE_RATE},
                          toneRecording(random)});
    }
    return inputs;
}

} // namespace

ChannelBench::ChannelBench(PluginLibrary& library, std::uint64_t seed)
    : ChannelBench(library, toneInputs(seed))
{
}

ChannelBench::ChannelBench(PluginLibrary& library, const std::vector<BenchInput>& inputs)
    : m_bench("Zelvar", library.manifestInfo().minimum_host_version)
{
    for (const BenchInput& input : inputs) {
        m_bench.addInput(input.setup, input.recording);
    }
    m_session = std::make_unique<PluginSession>(library, host());
    model().attach(*m_session);
    CheckContext::require(m_session->initOutcome().code == zlr::RESULT_OK,
                          "PLUGIN_INIT answers " + std::to_string(m_session->initOutcome().code));
    if (model().softwareChannels().registered().empty()) {
        throw CheckSkipped("the plug-in registers no software channel");
    }
}

ChannelBench::~ChannelBench()
{
    model().detach();
}

std::uint32_t ChannelBench::createChannel()
{
    const CreateOutcome created = m_bench.createChannel();
    CheckContext::require(created.response && !created.response->m_created_channels.empty(),
                          "PLUGIN_SOFTWARE_CHANNEL_CREATE over synchronous inputs made no "
                          "channel (answer " + std::to_string(created.code) + ")");
    return created.response->m_created_channels.front();
}

std::vector<OutputRun> ChannelBench::outputs(std::uint32_t root) const
{
    std::vector<OutputRun> runs;
    for (const HostChannel& channel : m_bench.outputsOf(root)) {
        runs.push_back({channel.default_name, m_bench.acquisition().outputBlocks(channel.local_id)});
    }
    return runs;
}

std::string ChannelBench::settingsText(std::uint32_t root) const
{
    std::string text;
    const auto channel = m_bench.model().channels().channel(root);
    if (!channel) {
        return text;
    }
    for (const HostProperty& property : channel->properties) {
        pugi::xml_document document;
        property.value.writeTo(document);
        std::ostringstream line;
        document.save(line, "", pugi::format_raw | pugi::format_no_declaration);
        text += line.str() + "\n";
    }
    return text;
}

void ChannelBench::finish()
{
    model().detach();
    m_session->finish();
    CheckContext::require(host().valuesOutsideTree() == 0,
                          std::to_string(host().valuesOutsideTree()) +
                              " host value objects still alive after the plug-in was deleted");
}

bool sameBits(const std::vector<OutputRun>& a, const std::vector<OutputRun>& b,
              std::string& difference)
{
    if (a.size() != b.size()) {
        difference = std::to_string(a.size()) + " outputs against " + std::to_string(b.size());
        return false;
    }
    for (std::size_t channel = 0; channel < a.size(); ++channel) {
        const auto& left = a[channel].blocks;
        const auto& right = b[channel].blocks;
        if (left.size() != right.size()) {
            difference = a[channel].name + ": " + std::to_string(left.size()) + " blocks against " +
                         std::to_string(right.size());
            return false;
        }
        for (std::size_t block = 0; block < left.size(); ++block) {
            const auto& x = left[block];
            const auto& y = right[block];
            if (x.first_index != y.first_index || x.values.size() != y.values.size() ||
                (!x.values.empty() &&
                 std::memcmp(x.values.data(), y.values.data(), x.values.size() * sizeof(double)) != 0)) {
                difference = a[channel].name + ": block " + std::to_string(block) + " differs";
                return false;
            }
        }
    }
    return true;
}

bool isResultCode(std::uint64_t answer)
{
    return answer == zlr::RESULT_OK || answer == zlr::RESULT_BAD_ARGUMENT ||
           answer == zlr::RESULT_FAILED || answer == zlr::RESULT_HOST_VERSION_REFUSED ||
           answer == zlr::RESULT_EXCEPTION || answer == zlr::RESULT_NOT_HANDLED;
}

} // namespace zelvar_sim::validate
