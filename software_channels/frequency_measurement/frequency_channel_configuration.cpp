// The configuration half of the frequency channel: its six settings, the
// checks of the selected inputs, the window derived from them, and the
// output channels kept in step with the inputs.
#include "frequency_measurement_instance.h"

#include "zlrapi_data_format.h"
#include "zlrbase_assert.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <string>

using zlr::framework::EditableChannelIDListProperty;
using zlr::framework::EditableScalarProperty;
using zlr::framework::StringProperty;

namespace {

constexpr const char* VISIBILITY_PUBLIC = "PUBLIC";
constexpr std::uint64_t LARGEST_WINDOW = 0x100000;
constexpr std::uint64_t NO_CHANNEL_ID = ~std::uint64_t{0};

std::shared_ptr<EditableScalarProperty> publicScalar(double value, const char* unit, double min,
                                                     double max)
{
    auto property = std::make_shared<EditableScalarProperty>(value, unit, min, max);
    property->setVisibility(VISIBILITY_PUBLIC);
    return property;
}

bool isSynchronousScalar(const zlr::DataFormat& format)
{
    return format.m_sample_value_type == 1 && format.m_sample_occurrence == 0;
}

// A double converted to unsigned 64 bits, with what cannot be converted
// (NaN, negative, too large) pinned to the nearest end instead of undefined.
std::uint64_t toUnsigned(double value)
{
    if (!(value > 0.0)) {
        return 0;
    }
    if (value >= 18446744073709551616.0) {
        return ~std::uint64_t{0};
    }
    return static_cast<std::uint64_t>(value);
}

// The smallest power of two not below u, for u of 2 or more, capped.
std::uint64_t windowSizeFor(std::uint64_t u)
{
    if (u <= 1) {
        return 1;
    }
    std::uint64_t size = 1;
    while (size < u && size < LARGEST_WINDOW) {
        size <<= 1;
    }
    return std::min(size, LARGEST_WINDOW);
}

} // namespace

FrequencyMeasurementInstance::FrequencyMeasurementInstance()
    : m_input_channels_property(std::make_shared<EditableChannelIDListProperty>()),
      m_window_overlap(publicScalar(50.0, "%", 0.0, 90.0)),
      m_min_frequency(publicScalar(10.0, "Hz", 0.0, 10000000.0)),
      m_max_frequency(publicScalar(1000.0, "Hz", 0.0, 10000000.0)),
      m_window_length(publicScalar(0.2, "s", 0.01, 1.0)),
      m_status_text(std::make_shared<StringProperty>())
{
    m_input_channels_property->setVisibility(VISIBILITY_PUBLIC);
    m_input_channels_property->setChannelType(EditableChannelIDListProperty::CHANNEL_TYPE_SYNC);
    m_input_channels_property->setMaxDimension(1);
    for (const double suggested : {0.01, 0.02, 0.05, 0.1, 0.2, 0.5, 1.0}) {
        m_window_length->addOption(suggested);
    }
    m_status_text->setVisibility(VISIBILITY_PUBLIC);
}

FrequencyMeasurementInstance::~FrequencyMeasurementInstance() = default;

void FrequencyMeasurementInstance::initInstance(zlr::IfHost*)
{
    const std::shared_ptr<zlr::framework::PluginChannel> root = getRootChannel();
    if (!root) {
        return;
    }
    root->setDefaultName("Frequency");
    root->setDataFormat(3, 1, 1);
    root->setDeletable(true);
    root->addProperty(INPUT_CHANNELS_KEY, m_input_channels_property);
    root->addProperty(WINDOW_OVERLAP_KEY, m_window_overlap);
    root->addProperty(WINDOW_LENGTH_KEY, m_window_length);
    root->addProperty(MIN_FREQUENCY_KEY, m_min_frequency);
    root->addProperty(MAX_FREQUENCY_KEY, m_max_frequency);
    root->addProperty(STATUS_TEXT_KEY, m_status_text);
}

zlr::framework::InitResult
FrequencyMeasurementInstance::init(const zlr::framework::InitParams& params)
{
    if (params.m_candidates.empty()) {
        return {true, 0, -1};
    }
    std::vector<std::uint64_t> inputs;
    for (const zlr::InputChannelFormat& candidate : params.m_candidates) {
        if (candidate.m_dataformat.m_sample_occurrence == 0 &&
            candidate.m_dataformat.m_sample_dimension == 1) {
            inputs.push_back(candidate.m_channel_id);
        }
    }
    m_input_channels_property->setValue(inputs);
    return {true, 2, -1};
}

bool FrequencyMeasurementInstance::update()
{
    bool ok = true;
    std::string status;
    // The first failure found is the one the user is told.
    const auto report = [&status](const char* text) {
        if (status.empty()) {
            status = text;
        }
    };

    for (const std::shared_ptr<zlr::framework::InputChannel>& input : m_input_channels) {
        if (input->updateDataFormat() && !isSynchronousScalar(input->getDataFormat())) {
            ok = false;
            report("Input channel is not supported");
            break;
        }
    }

    bool any_usable = false;
    bool rates_differ = false;
    double sample_rate = 0.0;
    for (const std::shared_ptr<zlr::framework::InputChannel>& input : m_input_channels) {
        if (!input->isUsable()) {
            ok = false;
            report("Input channel is not usable");
            continue;
        }
        const double rate = input->getSampleRate().m_val;
        if (any_usable && rate != sample_rate) {
            ok = false;
            rates_differ = true;
        }
        sample_rate = rate;
        any_usable = true;
    }
    if (rates_differ) {
        report("All input channels must have the same sample rate");
    }

    const double window_length = m_window_length->getValue();
    if (any_usable) {
        deriveWindow(sample_rate, window_length);
        const double nyquist = sample_rate * 0.5;
        if (m_min_frequency->getValue() > nyquist || m_max_frequency->getValue() > nyquist) {
            ok = false;
            report("Min/Max frequency values are out of range");
        }
        const double overlap = m_window_overlap->getValue() * 0.01;
        m_window_step = toUnsigned(std::ceil(((1.0 - overlap) * window_length) * sample_rate));
        // Settings that are not numbers leave no window to run; there is
        // nothing the host could prepare.
        if (m_window_step == 0 || m_window_size == 0) {
            ok = false;
        }
    }

    if (!(m_max_frequency->getValue() >= m_min_frequency->getValue())) {
        ok = false;
        report("Minimum frequency is larger than maximum frequency");
    }

    updateOutputChannels();
    m_status_text->setValue(status);
    return ok;
}

void FrequencyMeasurementInstance::deriveWindow(double sample_rate, double window_length)
{
    const double nyquist = sample_rate * 0.5;
    if (m_first_configuration) {
        m_first_configuration = false;
        // Five periods per window at the least.
        m_min_frequency->setValue(5.0 / window_length);
        m_max_frequency->setValue(nyquist);
    }
    m_window_size = windowSizeFor(toUnsigned(sample_rate * window_length));
    m_min_frequency->setMinMax(0.0, nyquist);
    m_max_frequency->setMinMax(0.0, nyquist);
}

void FrequencyMeasurementInstance::updateOutputChannels()
{
    const zlr::Range range(m_min_frequency->getValue(), m_max_frequency->getValue(), "Hz");
    std::set<std::string> keep;
    for (const std::shared_ptr<zlr::framework::InputChannel>& input : m_input_channels) {
        const double rate = input->getSampleRate().m_val / static_cast<double>(m_window_step);
        const std::string name = input->getLongName();
        const std::string key = "Out_" + name;
        keep.insert(key);

        std::shared_ptr<zlr::framework::PluginChannel> channel = findOutputChannel(key);
        if (!channel) {
            channel = addOutputChannel(key);
            if (!channel) {
                zlr::reportAssertion("channel", ASSERTION_PATH, __LINE__);
                continue;
            }
            channel->setDataFormat(0, 13, 1);
        }
        channel->setDefaultName(name + "_Frequency");
        channel->setSimpleTimebase(rate);
        channel->setRange(range);
        channel->setUnit("Hz");
    }

    for (std::size_t i = 1; i < m_output_channels.size();) {
        const std::shared_ptr<zlr::framework::PluginChannel> channel = m_output_channels[i];
        const auto key = std::dynamic_pointer_cast<StringProperty>(
            channel ? channel->getProperty(zlr::framework::INSTANCE_KEY_PROPERTY) : nullptr);
        if (channel && (!key || keep.count(key->getValue()) == 0)) {
            removeOutputChannel(channel);
        } else {
            ++i;
        }
    }
}

void FrequencyMeasurementInstance::onChannelIdsMapped(const zlr::framework::ChannelIdMap&)
{
    std::vector<std::uint64_t> inputs = m_input_channels_property->getValue();
    inputs.erase(std::remove(inputs.begin(), inputs.end(), NO_CHANNEL_ID), inputs.end());
    m_input_channels_property->setValue(inputs);
}

bool FrequencyMeasurementInstance::restoreInstance(
    const std::vector<zlr::PluginChannelInfo>& channels, zlr::framework::LocalIdMap& channel_map)
{
    restoreChannels(channels, channel_map);
    restoreProperties(channels, channel_map);
    return true;
}
