#include "zlrfw_input_channel.h"

#include "xpugixml.h"
#include "zlrapi_utils.h"

#include <pugixml.hpp>

namespace zlr::framework {
namespace {

// The DataFormat element of a ChannelDataFormat document, printed as a
// document of its own; empty when there is none.
std::string unwrapDataFormat(const char* text, std::size_t length)
{
    pugi::xml_document document;
    if (!xpugi::parse(document, text, length)) {
        return {};
    }
    const pugi::xpath_node found = document.select_node("ChannelDataFormat/Channel/DataFormat");
    if (!found) {
        return {};
    }
    return xpugi::to_xml(found.node(), false);
}

} // namespace

InputChannel::InputChannel(IfHost* host, std::uint64_t channel_id)
    : m_channel_id(channel_id), m_host(host)
{
}

bool InputChannel::isUsable() const
{
    const auto usable = queryChannelBooleanValue(m_host, m_channel_id, tree::USABLE);
    return usable ? usable->get() : false;
}

std::string InputChannel::getLongName() const
{
    const auto name = queryChannelStringValue(m_host, m_channel_id, tree::LONG_NAME);
    const char* text = name ? name->getData() : nullptr;
    return text ? text : "";
}

Scalar InputChannel::getSampleRate() const
{
    if (m_dataformat.m_sample_occurrence != SAMPLE_OCCURRENCE_SYNC) {
        return {};
    }
    const auto rate = queryChannelScalarValue(m_host, m_channel_id, tree::SAMPLE_RATE);
    if (!rate) {
        return {};
    }
    const char* unit = rate->getUnit();
    return Scalar(rate->getValue(), unit ? unit : "");
}

bool InputChannel::updateDataFormat()
{
    const auto value = queryChannelXmlValue(m_host, m_channel_id, tree::DATA_FORMAT);
    if (!value) {
        return false;
    }
    const DataFormat remembered = m_dataformat;
    const char* text = value->getData();
    const auto length = static_cast<std::size_t>(std::max(value->getLength(), 0));
    if (text && parseDataFormat(text, length, m_dataformat)) {
        return true;
    }
    const std::string unwrapped = text ? unwrapDataFormat(text, length) : std::string();
    if (parseDataFormat(unwrapped.c_str(), unwrapped.size(), m_dataformat)) {
        return true;
    }
    // A half-filled result never stays.
    m_dataformat = remembered;
    return false;
}

bool InputChannel::updateTimebase()
{
    const auto value = queryChannelXmlValue(m_host, m_channel_id, tree::TIMEBASE);
    if (!value || !value->getData()) {
        return false;
    }
    pugi::xml_document document;
    if (!xpugi::parse(document, value->getData(),
                      static_cast<std::size_t>(std::max(value->getLength(), 0)))) {
        return false;
    }
    Timebase fresh;
    if (!readTimebase(document, fresh)) {
        return false;
    }
    m_timebase = fresh;
    return true;
}

} // namespace zlr::framework
