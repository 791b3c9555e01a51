// The run half of the frequency channel: each input's samples go into a
// sliding window, every full window gives one estimate, and the estimates of
// a step go to the host in one block per output channel.
#include "frequency_measurement_instance.h"

#include "zlrapi_utils.h"
#include "zlrbase_assert.h"
#include "zlrfw_sample_position.h"

#include <algorithm>
#include <limits>

using zlr::framework::timeToSampleIndex;

namespace {

constexpr std::uint64_t NOT_SET = ~std::uint64_t{0};

// A channel without a "Used" property counts as used.
bool isUsed(const std::shared_ptr<zlr::framework::PluginChannel>& channel)
{
    if (!channel) {
        return false;
    }
    const std::shared_ptr<zlr::framework::BooleanProperty> used = channel->getUsedProperty();
    return !used || used->getValue();
}

} // namespace

void FrequencyMeasurementInstance::prepareProcessing(zlr::IfHost*)
{
    const std::vector<std::shared_ptr<zlr::framework::InputChannel>>& input_channels =
        m_input_channels;
    if (m_output_channels.size() != input_channels.size() + 1) {
        zlr::reportComparison("m_output_channels.size()", " != ", "input_channels.size() + 1",
                              m_output_channels.size(), input_channels.size() + 1,
                              ASSERTION_PATH, __LINE__);
    }
    m_channel_contexts.resize(input_channels.size());
    for (std::size_t i = 0; i < input_channels.size(); ++i) {
        ChannelContext& ch_context = m_channel_contexts[i];
        ch_context.sample_rate = input_channels[i]->getTimebase().m_frequency;
        ch_context.next_output_sample = NOT_SET;
        ch_context.next_sample = NOT_SET;
        ch_context.window.clear();
        ch_context.window_begin = 0;
        // Appends during the run must never allocate. Room for one step
        // beyond the window lets every other slide move the index only; room
        // for two whole windows was slower with eight inputs, whose buffers
        // then no longer stayed in the caches.
        ch_context.window.reserve(m_window_size + m_window_step);
    }
    prepareEstimator(m_window_size);
}

void FrequencyMeasurementInstance::stopProcessing(zlr::IfHost*)
{
    releaseEstimator();
    m_channel_contexts.clear();
}

void FrequencyMeasurementInstance::process(zlr::framework::ProcessContext& context,
                                           zlr::IfHost* host)
{
    if (m_output_channels.empty() || !isUsed(m_output_channels.front())) {
        return;
    }
    const std::vector<std::uint64_t> input_ids = m_input_channels_property->getValue();
    if (input_ids.empty()) {
        return;
    }
    // Without a window there is nothing to fill; settings that allow none
    // are refused at configuration, and the host does not prepare them.
    if (m_window_size == 0 || m_window_step == 0) {
        return;
    }
    const double min_frequency = m_min_frequency->getValue();
    const double max_frequency = m_max_frequency->getValue();
    std::vector<double> results;
    results.reserve(16);

    for (std::size_t i = 0; i < input_ids.size(); ++i) {
        // An input list longer than the outputs (an id twice, two inputs of
        // one name) has no place for the surplus; prepareProcessing has
        // reported it already.
        if (i + 1 >= m_output_channels.size() || i >= m_channel_contexts.size()) {
            break;
        }
        const std::shared_ptr<zlr::framework::PluginChannel>& output = m_output_channels[i + 1];
        if (!isUsed(output)) {
            continue;
        }
        const auto found = context.channel_iterators.find(input_ids[i]);
        if (found == context.channel_iterators.end()) {
            continue;
        }
        zlr::framework::StreamIterator& samples = found->second;
        samples.setSkipGaps(false);

        ChannelContext& ch_context = m_channel_contexts[i];
        processChannel(ch_context, samples, context, min_frequency, max_frequency, results);
        if (!results.empty()) {
            zlr::writeSamples(host, output->getLocalId(), ch_context.next_output_sample,
                              results.data(), results.size() * sizeof(double));
            ch_context.next_output_sample += results.size();
            results.clear();
        }
    }
}

std::uint64_t FrequencyMeasurementInstance::samplesToNextEvent(std::uint64_t window_size) const
{
    if (window_size < m_window_size) {
        return m_window_size - window_size;
    }
    if (m_window_step > m_window_size && window_size < m_window_step) {
        return m_window_step - window_size;
    }
    // A window already past its size (the settings changed under a run)
    // goes one sample at a time, as every size is an event then.
    return 1;
}

void FrequencyMeasurementInstance::processChannel(ChannelContext& ch_context,
                                                  zlr::framework::StreamIterator& samples,
                                                  const zlr::framework::ProcessContext& context,
                                                  double min_frequency, double max_frequency,
                                                  std::vector<double>& results)
{
    std::uint64_t start_sample = timeToSampleIndex(context.window_start, ch_context.sample_rate);
    const std::uint64_t end_sample = timeToSampleIndex(context.window_end, ch_context.sample_rate);
    if (!(start_sample <= end_sample)) {
        zlr::reportComparison("start_sample", " <= ", "end_sample", start_sample, end_sample,
                              ASSERTION_PATH, __LINE__);
    }
    // Consecutive steps adjoin, without gap or overlap.
    if (ch_context.next_sample != NOT_SET && start_sample != ch_context.next_sample) {
        zlr::reportComparison("start_sample", " != ", "ch_context.next_sample", start_sample,
                              ch_context.next_sample, ASSERTION_PATH, __LINE__);
    }

    std::vector<double>& window = ch_context.window;
    std::size_t& begin = ch_context.window_begin;
    while (start_sample < end_sample) {
        if (!samples.valid()) {
            break;
        }
        // Samples go over in runs up to the next size at which the window
        // estimates or slides, so that the checks below see every such size.
        // A gap reads as NaN and still counts as a sample, so that indices
        // stay aligned with time.
        const std::uint64_t wanted = std::min(samplesToNextEvent(window.size() - begin),
                                              end_sample - start_sample);
        if (window.size() + wanted > window.capacity()) {
            window.erase(window.begin(), window.begin() + static_cast<std::ptrdiff_t>(begin));
            begin = 0;
        }
        start_sample += samples.appendValues(window, wanted);

        const std::uint64_t current_window_size = window.size() - begin;
        if (current_window_size < m_window_size) {
            continue;
        }
        if (current_window_size == m_window_size) {
            double frequency =
                estimateFrequency(window.data() + begin, current_window_size, ch_context.sample_rate);
            // Both limits are inclusive.
            if (min_frequency > frequency || frequency > max_frequency) {
                frequency = std::numeric_limits<double>::quiet_NaN();
            }
            results.push_back(frequency);
        }
        if (m_window_step <= m_window_size) {
            if (!(current_window_size >= m_window_step)) {
                zlr::reportAssertion("current_window_size >= m_window_step", ASSERTION_PATH,
                                     __LINE__);
            }
            begin += std::min(current_window_size, m_window_step);
            if (begin == window.size()) {
                window.clear();
                begin = 0;
            }
        } else if (current_window_size == m_window_step) {
            // A step longer than the window: the samples past the window
            // are dropped before the next one starts.
            window.clear();
            begin = 0;
        }
    }
    ch_context.next_sample = end_sample;

    if (ch_context.next_output_sample == NOT_SET) {
        ch_context.next_output_sample =
            timeToSampleIndex(context.window_start,
                              ch_context.sample_rate / static_cast<double>(m_window_step)) +
            1;
    }
}
