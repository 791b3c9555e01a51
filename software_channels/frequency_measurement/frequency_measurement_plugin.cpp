#include "frequency_measurement_plugin.h"

#include "frequency_measurement_resources.h"
#include "zlrapi_utils.h"
#include "zlrbase_messages.h"
#include "zlrfw_host_version.h"

#include <exception>

namespace frequency_measurement {

namespace {
constexpr const char* VERSION_REFUSED_TEXT = "Current version of Zelvar is not supported.";
}

FrequencyMeasurementPlugin::FrequencyMeasurementPlugin()
    : m_custom_requests(std::make_shared<zlr::framework::CustomRequestHandler>())
{
    addMessageHandler(m_custom_requests);
}

std::uint64_t FrequencyMeasurementPlugin::init(std::string& error_text)
{
    bool supported = false;
    try {
        supported = zlr::framework::checkHostVersion(m_host);
    } catch (const std::exception&) {
        // A version text that holds no number cannot be compared: the host
        // is refused like any unsupported version, and nothing escapes.
        supported = false;
    }
    if (!supported) {
        error_text = VERSION_REFUSED_TEXT;
        return zlr::RESULT_HOST_VERSION_REFUSED;
    }
    zlr::addTranslation(m_host, TRANSLATIONS_EN);
    zlr::addTranslation(m_host, TRANSLATIONS_DE);
    return zlr::RESULT_OK;
}

bool FrequencyMeasurementPlugin::deinit()
{
    return true;
}

} // namespace frequency_measurement
