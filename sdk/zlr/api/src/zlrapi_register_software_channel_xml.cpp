#include "zlrapi_register_software_channel_xml.h"

#include "xpugixml.h"

namespace zlr {
namespace {

void appendText(pugi::xml_node parent, const char* name, const std::string& text)
{
    xpugi::set_text(xpugi::append_child_element(parent, name), text);
}

// Capitalised, unlike the "true" and "false" of attributes: the host's form.
const char* booleanText(bool value)
{
    return value ? "True" : "False";
}

} // namespace

std::string RegisterSoftwareChannelTelegram::generate() const
{
    pugi::xml_document document;
    const pugi::xml_node root = xpugi::append_child_element(document, "RegisterSoftwareChannel");
    xpugi::set_protocol_version(root);
    appendText(root, "ServiceName", m_service_name);
    appendText(root, "DisplayName", m_display_name);
    appendText(root, "DisplayGroup", m_display_group);
    appendText(root, "AnalysisCapable", booleanText(m_analysis_capable));
    appendText(root, "AcquisitionCapable", booleanText(m_acquisition_capable));
    if (!m_description.empty()) {
        appendText(root, "Description", m_description);
    }
    if (!m_ui_item_name.empty()) {
        appendText(xpugi::append_child_element(root, "UIAdd"), "ItemName", m_ui_item_name);
    }
    return xpugi::to_xml(document, false);
}

} // namespace zlr
