#include "frequency_measurement_plugin.h"

#include "frequency_measurement_resources.h"
#include "zlrapi_utils.h"
#include "zlrbase_messages.h"


void FrequencyMeasurementPlugin::registerTranslations()
{
    // A refused catalogue changes nothing for the channel: its keys then show as they are.
    zlr::addTranslation(m_host, frequency_measurement::TRANSLATIONS_EN);
    zlr::addTranslation(m_host, frequency_measurement::TRANSLATIONS_DE);
}

zlr::RegisterSoftwareChannelTelegram FrequencyMeasurementPlugin::getSoftwareChannelInfo()
{
    zlr::RegisterSoftwareChannelTelegram info;
    info.m_display_group = "Advanced Math";
    info.m_service_name = "FrequencyMeasurement";
    info.m_display_name = "Frequency Measurement";
    info.m_description = "Adds a channel that calculates the signal frequency of an input channel";
    info.m_analysis_capable = true;
    return info;
}

bool FrequencyMeasurementPlugin::checkInputChannelsFormat(
    const std::vector<zlr::InputChannelFormat>& candidates, std::vector<std::uint64_t>& invalid)
{
    for (const zlr::InputChannelFormat& candidate : candidates) {
        if (candidate.m_dataformat.m_sample_occurrence != 0 ||
            candidate.m_dataformat.m_sample_dimension != 1) {
            invalid.push_back(candidate.m_channel_id);
        }
    }
    return candidates.empty() || invalid.empty();
}
