// The plug-in's offer of a software channel to the host's channel list,
// sent at start-up and again when the host asks for it.
#pragma once

#include <string>

namespace zlr {

struct RegisterSoftwareChannelTelegram {
    std::string m_display_group;
    std::string m_service_name;
    std::string m_display_name;
    std::string m_description;
    std::string m_ui_item_name;
    bool m_analysis_capable = false;
    bool m_acquisition_capable = true;

    std::string generate() const;

    bool operator==(const RegisterSoftwareChannelTelegram&) const = default;
};

} // namespace zlr
