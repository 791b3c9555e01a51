#include "zlrapi_timebase.h"

#include "xpugixml.h"

#include <cmath>
#include <string_view>

namespace zlr {
namespace {

double frequencyOf(pugi::xml_node element)
{
    return element.attribute("frequency").as_double(std::numeric_limits<double>::quiet_NaN());
}

} // namespace

bool Timebase::operator==(const Timebase& other) const
{
    const bool same_frequency = m_frequency == other.m_frequency ||
                                (std::isnan(m_frequency) && std::isnan(other.m_frequency));
    return m_type == other.m_type && same_frequency && m_offset == other.m_offset;
}

bool writeTimebase(pugi::xml_node parent, const Timebase& timebase)
{
    switch (timebase.m_type) {
    case Timebase::TYPE_SIMPLE: {
        pugi::xml_node element = parent.append_child("SimpleTimebase");
        element.append_attribute("frequency") = timebase.m_frequency;
        return true;
    }
    case Timebase::TYPE_WITH_OFFSET: {
        pugi::xml_node element = parent.append_child("TimebaseWithOffset");
        element.append_attribute("frequency") = timebase.m_frequency;
        element.append_attribute("offset") = timebase.m_offset;
        return true;
    }
    default:
        return false;
    }
}

bool readTimebase(pugi::xml_node parent, Timebase& timebase)
{
    const pugi::xml_node simple = xpugi::find_child(parent, "SimpleTimebase");
    if (simple) {
        const double frequency = frequencyOf(simple);
        if (!std::isnan(frequency)) {
            timebase.m_type = Timebase::TYPE_SIMPLE;
            timebase.m_frequency = frequency;
            timebase.m_offset = 0.0;
            return true;
        }
    }
    const pugi::xml_node with_offset = xpugi::find_child(parent, "TimebaseWithOffset");
    if (!with_offset) {
        return false;
    }
    const double frequency = frequencyOf(with_offset);
    if (std::isnan(frequency)) {
        return false;
    }
    timebase.m_type = Timebase::TYPE_WITH_OFFSET;
    timebase.m_frequency = frequency;
    timebase.m_offset = with_offset.attribute("offset").as_double(0.0);
    return true;
}

} // namespace zlr
