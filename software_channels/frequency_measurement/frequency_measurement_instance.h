// One "Frequency Measurement" channel: a root channel with six settings and,
// under it, one output channel per selected input that carries the dominant
// frequency of that input, one value per step of a sliding window.
//
// The configuration half (settings, checks, derived window, outputs) runs in
// the host's configuration calls; the run half (prepare, process, stop) and
// the estimator run on the host's processing thread, one call at a time.
#pragma once

#include "zfft/zfft_real_fft.h"
#include "zlrfw_properties.h"
#include "zlrfw_software_channel_instance.h"

#include <cstdint>
#include <memory>
#include <vector>

class FrequencyMeasurementInstance : public zlr::framework::SoftwareChannelInstance {
public:
    static constexpr const char* INPUT_CHANNELS_KEY = "FREQUENCY_MEASUREMENT/InputChannels";
    static constexpr const char* WINDOW_OVERLAP_KEY = "FREQUENCY_MEASUREMENT/WindowOverlap";
    static constexpr const char* WINDOW_LENGTH_KEY = "FREQUENCY_MEASUREMENT/WindowLength";
    static constexpr const char* MIN_FREQUENCY_KEY = "FREQUENCY_MEASUREMENT/MinFrequency";
    static constexpr const char* MAX_FREQUENCY_KEY = "FREQUENCY_MEASUREMENT/MaxFrequency";
    static constexpr const char* STATUS_TEXT_KEY = "FREQUENCY_MEASUREMENT/StatusText";

    // The six settings at their defaults; nothing of the host is touched.
    FrequencyMeasurementInstance();
    ~FrequencyMeasurementInstance() override;

    // Configuration, called by the framework from the host's configuration
    // messages.
    void initInstance(zlr::IfHost* host) override;
    zlr::framework::InitResult init(const zlr::framework::InitParams& params) override;
    bool update() override;
    void onChannelIdsMapped(const zlr::framework::ChannelIdMap& channel_map) override;
    bool restoreInstance(const std::vector<zlr::PluginChannelInfo>& channels,
                         zlr::framework::LocalIdMap& channel_map) override;

    // The run, called by the framework's task wrappers, which catch what
    // these throw.
    void prepareProcessing(zlr::IfHost* host) override;
    void process(zlr::framework::ProcessContext& context, zlr::IfHost* host) override;
    void stopProcessing(zlr::IfHost* host) override;

    // The frequency in Hz of the strongest component of one window of
    // `samples`, searched up to the MaxFrequency setting; a quiet NaN when
    // the window is not m_window_size samples long, holds a NaN, or is too
    // short to carry a frequency. The result may lie outside 0 .. rate/2;
    // the range test of the processing loop refuses it then. Allocates
    // nothing; not reentrant, as all inputs share the transform.
    double estimateFrequency(const std::vector<double>& samples, double sample_rate);
    // The same for the `count` samples from `samples` on, so that a window
    // can be read where it lies in a longer buffer.
    double estimateFrequency(const double* samples, std::uint64_t count, double sample_rate);

    // The transform and the spectrum for windows of `window_size` samples,
    // replacing what was there; prepareProcessing calls it with the derived
    // size. Public so that the estimator can be measured on its own.
    void prepareEstimator(std::uint64_t window_size);
    void releaseEstimator();

    std::uint64_t getWindowSize() const { return m_window_size; }
    std::uint64_t getWindowStep() const { return m_window_step; }
    std::shared_ptr<zlr::framework::EditableScalarProperty> getMaxFrequencySetting() const
    {
        return m_max_frequency;
    }
    // The whole spectrum of the last window transformed; no meaning between calls.
    const std::vector<ZFFT::complex_t>& getSpectrum() const { return m_spectrum; }

private:
    // The run-time record of one input channel.
    struct ChannelContext {
        // Rate of the input in Hz, from its timebase at prepareProcessing.
        double sample_rate = 0.0;
        // The samples collected so far, oldest first, from `window_begin`
        // on: a slide only moves that index, and the live samples go back
        // to the front only when the room behind them runs out.
        std::vector<double> window;
        std::size_t window_begin = 0;
        // Index of the next value on the output channel; all ones: not yet set.
        std::uint64_t next_output_sample = ~std::uint64_t{0};
        // Index at which the next process step must begin; all ones: not yet set.
        std::uint64_t next_sample = ~std::uint64_t{0};
    };

    // Reports of broken invariants carry the plug-in's chief source as their path.
    static constexpr const char* ASSERTION_PATH = "frequency_measurement";

    // One step of one input: its samples into the window, the estimates of
    // every full window into `results`, and those to the host.
    void processChannel(ChannelContext& ch_context, zlr::framework::StreamIterator& samples,
                        const zlr::framework::ProcessContext& context, double min_frequency,
                        double max_frequency, std::vector<double>& results);
    // Samples that a window of `window_size` can take before it reaches the
    // next size at which it estimates or slides; at least 1.
    std::uint64_t samplesToNextEvent(std::uint64_t window_size) const;
    // Window size and step for inputs at `sample_rate`; limits on first use.
    void deriveWindow(double sample_rate, double window_length);
    // One output per input proxy, found again by key; outputs of inputs no
    // longer there are removed.
    void updateOutputChannels();

    std::shared_ptr<zlr::framework::EditableChannelIDListProperty> m_input_channels_property;
    std::shared_ptr<zlr::framework::EditableScalarProperty> m_window_overlap;
    std::shared_ptr<zlr::framework::EditableScalarProperty> m_min_frequency;
    std::shared_ptr<zlr::framework::EditableScalarProperty> m_max_frequency;
    std::shared_ptr<zlr::framework::EditableScalarProperty> m_window_length;
    std::shared_ptr<zlr::framework::StringProperty> m_status_text;
    // The two frequency limits follow the first usable input once.
    bool m_first_configuration = true;

    std::vector<ChannelContext> m_channel_contexts;
    // Samples by which the window advances, and samples per estimate.
    std::uint64_t m_window_step = 0;
    std::uint64_t m_window_size = 0;
    std::vector<ZFFT::complex_t> m_spectrum;
    ZFFT::RealFFTPtr m_fft;
};
