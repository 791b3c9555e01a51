// The simulated host's side of the software channel dialogue: it writes the
// query and the creation request, and reads the plug-in's registration and
// its two answers.
#pragma once

#include "zlrapi_register_software_channel_xml.h"
#include "zlrapi_software_channel_request_xml.h"
#include "zlrapi_software_channel_response_xml.h"

#include <string>
#include <vector>

namespace zelvar_sim {

std::string writeCreateSoftwareChannel(const std::string& service_name,
                                       const std::vector<zlr::Property>& properties,
                                       const std::vector<zlr::InputChannelFormat>& inputs);
std::string writeQuerySoftwareChannelAction(const std::vector<zlr::InputChannelFormat>& inputs);

bool readRegisterSoftwareChannel(const std::string& text,
                                 zlr::RegisterSoftwareChannelTelegram& telegram);
bool readCreateSoftwareChannelResponse(const std::string& text,
                                       zlr::CreateSoftwareChannelResponseTelegram& telegram);
bool readQuerySoftwareChannelActionResponse(
    const std::string& text, zlr::QuerySoftwareChannelActionResponseTelegram& telegram);

namespace detail {
// Appends "Channels" with a "Channel" and its "DataFormat" for each input.
void appendInputChannels(pugi::xml_node root, const std::vector<zlr::InputChannelFormat>& inputs);
} // namespace detail

} // namespace zelvar_sim
