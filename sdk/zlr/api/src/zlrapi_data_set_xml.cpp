#include "zlrapi_data_set_xml.h"

#include "xpugixml.h"

namespace zlr {
namespace {

void appendChannelList(pugi::xml_node parent, const char* name,
                       const std::vector<std::uint64_t>& ids)
{
    const pugi::xml_node list = xpugi::append_child_element(parent, name);
    for (const std::uint64_t id : ids) {
        xpugi::set_attribute(xpugi::append_child_element(list, "Channel"), "channel_id", id);
    }
}

} // namespace

std::string RegisterDataSetTelegram::generate() const
{
    pugi::xml_document document;
    const pugi::xml_node root = xpugi::append_child_element(document, "RegisterDataSet");
    xpugi::set_protocol_version(root);
    xpugi::set_attribute(root, "data_set_key", m_data_set_key);
    xpugi::set_attribute(root, "type", toText(m_type));
    appendChannelList(root, "Channels", m_channels);
    // The host's order: mode and policy follow the channels in the code, and
    // being attributes they still print right after "type".
    xpugi::set_attribute(root, "mode", toText(m_mode));
    xpugi::set_attribute(root, "policy", toText(m_policy));
    return xpugi::to_xml(document, false);
}

std::string AcquisitionTaskAddTelegram::generate() const
{
    pugi::xml_document document;
    const pugi::xml_node root = xpugi::append_child_element(document, "AcquisitionTaskAdd");
    xpugi::set_protocol_version(root);
    xpugi::set_attribute(root, "acquisition_task_key", m_acquisition_task_key);
    xpugi::set_attribute(root, "block_duration", m_block_duration);
    appendChannelList(root, "InputChannels", m_input_channels);
    appendChannelList(root, "OutputChannels", m_output_channels);
    return xpugi::to_xml(document, false);
}

} // namespace zlr
