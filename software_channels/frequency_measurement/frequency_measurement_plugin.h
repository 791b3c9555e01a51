// The plug-in object that zvCreatePlugin makes.
#pragma once

#include "zlrfw_custom_request_handler.h"
#include "zlrfw_plugin_base.h"

#include <memory>

namespace frequency_measurement {

class FrequencyMeasurementPlugin : public zlr::framework::PluginBase {
public:
    FrequencyMeasurementPlugin();

    std::uint64_t init(std::string& error_text) override;
    bool deinit() override;

private:
    std::shared_ptr<zlr::framework::CustomRequestHandler> m_custom_requests;
};

} // namespace frequency_measurement
