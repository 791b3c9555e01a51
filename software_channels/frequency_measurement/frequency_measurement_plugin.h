// The plug-in object that zvCreatePlugin makes: the framework's software
// channel plug-in over FrequencyMeasurementInstance, with the registration
// data, the translation catalogues and the filter of input candidates.
#pragma once

#include "frequency_measurement_instance.h"
#include "zlrfw_software_channel_plugin.h"

#include <cstdint>
#include <string>
#include <vector>

class FrequencyMeasurementPlugin
    : public zlr::framework::SoftwareChannelPlugin<FrequencyMeasurementInstance> {
public:
    // The English catalogue, then the German one.
    void registerTranslations() override;
    zlr::RegisterSoftwareChannelTelegram getSoftwareChannelInfo() override;
    // Only synchronous channels of one dimension can be inputs.
    bool checkInputChannelsFormat(const std::vector<zlr::InputChannelFormat>& candidates,
                                  std::vector<std::uint64_t>& invalid) override;
};
