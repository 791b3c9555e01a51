#include "sim_channel_tree_telegrams.h"

#include "sim_xml_reading.h"
#include "xpugixml.h"

#include <cmath>
#include <cstdio>
#include <cstring>
#include <set>

namespace zelvar_sim {
namespace {

bool lookUp(const zlr::StringBimap& map, pugi::xml_attribute attribute, std::uint32_t& number)
{
    return map.findNumber(attribute.value(), number);
}

bool readTimebaseElement(pugi::xml_node element, zlr::Timebase& timebase, std::string& why)
{
    const bool with_offset = std::strcmp(element.name(), "TimebaseWithOffset") == 0;
    for (pugi::xml_attribute attribute : element.attributes()) {
        const bool known = std::strcmp(attribute.name(), "frequency") == 0 ||
                           (with_offset && std::strcmp(attribute.name(), "offset") == 0);
        if (!known) {
            why = std::string(element.name()) + " with unknown attribute " + attribute.name();
            return false;
        }
    }
    const auto frequency = doubleOf(element.attribute("frequency").value());
    if (!frequency) {
        why = std::string(element.name()) + " without a frequency";
        return false;
    }
    // A rate not known yet goes out as NaN; the host shows no timebase then.
    if (std::isnan(*frequency)) {
        timebase = {};
        return true;
    }
    timebase.m_frequency = *frequency;
    timebase.m_offset = 0.0;
    timebase.m_type = zlr::Timebase::TYPE_SIMPLE;
    if (with_offset) {
        const auto offset = doubleOf(element.attribute("offset").value());
        if (!offset) {
            why = "TimebaseWithOffset without an offset";
            return false;
        }
        timebase.m_offset = *offset;
        timebase.m_type = zlr::Timebase::TYPE_WITH_OFFSET;
    }
    return true;
}

bool readChannel(pugi::xml_node element, HostChannel& channel, std::string& why)
{
    const auto local_id = decimalOf(element.attribute("local_id").value(), 0xFFFFFFFEu);
    if (!local_id) {
        why = std::string("a Channel with local_id \"") + element.attribute("local_id").value() +
              "\"";
        return false;
    }
    channel.local_id = static_cast<std::uint32_t>(*local_id);
    const std::string which = "channel " + std::to_string(channel.local_id);
    for (pugi::xml_attribute attribute : element.attributes()) {
        const std::string name = attribute.name();
        if (name == "local_id") {
            continue;
        }
        if (name == "default_name") {
            channel.default_name = attribute.value();
        } else if (name == "domain") {
            channel.domain = attribute.value();
        } else if (name == "deletable" || name == "valid") {
            const auto flag = booleanOf(attribute.value());
            if (!flag) {
                why = which + " with " + name + " \"" + attribute.value() + "\"";
                return false;
            }
            (name == "valid" ? channel.valid : channel.deletable) = *flag;
        } else {
            why = which + " with unknown attribute " + name;
            return false;
        }
    }
    if (!element.attribute("valid")) {
        why = which + " without valid";
        return false;
    }
    bool has_timebase = false;
    for (pugi::xml_node child : element.children()) {
        const std::string name = child.name();
        if (child.type() != pugi::node_element) {
            why = which + " with text content";
            return false;
        }
        if (name == "DataFormat") {
            zlr::DataFormat format;
            if (channel.data_format || !readHostDataFormat(child, format, why)) {
                why = which + (channel.data_format ? " with two data formats" : ": " + why);
                return false;
            }
            channel.data_format = format;
        } else if (name == "SimpleTimebase" || name == "TimebaseWithOffset") {
            if (has_timebase || !readTimebaseElement(child, channel.timebase, why)) {
                why = which + (has_timebase ? " with two timebases" : ": " + why);
                return false;
            }
            has_timebase = true;
        } else if (name == "Parent") {
            const auto parent = decimalOf(child.attribute("local_id").value(), 0xFFFFFFFEu);
            if (!parent || channel.parent != NO_PARENT) {
                why = which + " with a malformed Parent";
                return false;
            }
            channel.parent = static_cast<std::uint32_t>(*parent);
        } else if (name != "Property") {
            why = which + " with unknown element " + name;
            return false;
        }
    }
    if (!readHostProperties(element, channel.properties, why)) {
        why = which + ": " + why;
        return false;
    }
    return true;
}

// "ListTopology" holds "Channel" (by local id) and "Group" (by name) nodes.
bool readTopology(pugi::xml_node node, std::string& why)
{
    for (pugi::xml_node child : node.children()) {
        const bool channel = std::strcmp(child.name(), "Channel") == 0 &&
                             decimalOf(child.attribute("local_id").value(), 0xFFFFFFFEu);
        const bool group = std::strcmp(child.name(), "Group") == 0 && child.attribute("name");
        if (!channel && !group) {
            why = std::string("ListTopology with a malformed ") + child.name();
            return false;
        }
        if (!readTopology(child, why)) {
            return false;
        }
    }
    return true;
}

} // namespace

bool readHostDataFormat(pugi::xml_node element, zlr::DataFormat& format, std::string& why)
{
    format = {};
    for (pugi::xml_attribute attribute : element.attributes()) {
        const std::string name = attribute.name();
        bool known = true;
        if (name == "sample_occurrence") {
            known = lookUp(zlr::sampleOccurrenceMap(), attribute, format.m_sample_occurrence);
        } else if (name == "sample_format") {
            known = lookUp(zlr::sampleFormatMap(), attribute, format.m_sample_format);
        } else if (name == "sample_value_type") {
            known = lookUp(zlr::sampleValueTypeMap(), attribute, format.m_sample_value_type);
        } else if (name == "reduced_format") {
            known = lookUp(zlr::reducedFormatMap(), attribute, format.m_reduced_format);
        } else if (name == "sample_dimension") {
            const auto dimension = decimalOf(attribute.value(), 0xFFFFFFFFu);
            known = dimension.has_value();
            format.m_sample_dimension = dimension ? static_cast<std::uint32_t>(*dimension) : 0;
        } else {
            why = "DataFormat with unknown attribute " + name;
            return false;
        }
        if (!known) {
            why = "DataFormat with " + name + " \"" + attribute.value() + "\"";
            return false;
        }
    }
    if (!element.attribute("sample_occurrence") || !element.attribute("sample_format")) {
        why = "DataFormat without sample_occurrence or sample_format";
        return false;
    }
    if (element.first_child()) {
        why = "DataFormat with content";
        return false;
    }
    return true;
}

bool readUpdatePluginChannels(const std::string& text, std::vector<HostChannel>& channels,
                              std::string& why)
{
    channels.clear();
    pugi::xml_document document;
    const pugi::xml_node root = strictRoot(document, text, "UpdatePluginChannels", true);
    if (!root) {
        why = "not an UpdatePluginChannels of version 1.0";
        return false;
    }
    std::set<std::uint32_t> seen;
    bool has_topology = false;
    for (pugi::xml_node element : root.children()) {
        const std::string name = element.type() == pugi::node_element ? element.name() : "text";
        if (name == "ListTopology" && !has_topology) {
            has_topology = true;
            if (!readTopology(element, why)) {
                return false;
            }
            continue;
        }
        if (name != "Channel") {
            why = "unexpected " + name + " in UpdatePluginChannels";
            return false;
        }
        HostChannel channel;
        if (!readChannel(element, channel, why)) {
            return false;
        }
        if (!seen.insert(channel.local_id).second) {
            why = "channel " + std::to_string(channel.local_id) + " twice";
            return false;
        }
        channels.push_back(std::move(channel));
    }
    return true;
}

std::string writeUpdatePluginChannels(const std::vector<HostChannel>& channels)
{
    pugi::xml_document document;
    pugi::xml_node root = document.append_child("UpdatePluginChannels");
    root.append_attribute("protocol_version") = "1.0";
    for (const HostChannel& channel : channels) {
        pugi::xml_node element = root.append_child("Channel");
        element.append_attribute("local_id") = channel.local_id;
        if (!channel.default_name.empty()) {
            element.append_attribute("default_name") = channel.default_name.c_str();
        }
        if (!channel.domain.empty()) {
            element.append_attribute("domain") = channel.domain.c_str();
        }
        if (channel.deletable) {
            element.append_attribute("deletable") = "true";
        }
        element.append_attribute("valid") = channel.valid ? "true" : "false";
        if (channel.data_format) {
            zlr::writeDataFormat(element, *channel.data_format);
        }
        zlr::writeTimebase(element, channel.timebase);
        if (channel.parent != NO_PARENT) {
            element.append_child("Parent").append_attribute("local_id") = channel.parent;
        }
        writeHostProperties(element, channel.properties);
    }
    return xpugi::to_xml(document, false);
}

bool readChannelIdMap(const std::string& text, std::map<std::uint64_t, std::uint64_t>& map,
                      std::string& why)
{
    map.clear();
    pugi::xml_document document;
    const pugi::xml_node root = strictRoot(document, text, "ChannelIDMap", false);
    if (!root) {
        why = "not a ChannelIDMap";
        return false;
    }
    for (pugi::xml_node pair : root.children()) {
        const auto first = decimalOf(pair.attribute("first").value());
        const auto second = decimalOf(pair.attribute("second").value());
        if (std::strcmp(pair.name(), "ChannelMappingPair") != 0 || !first || !second) {
            why = "a malformed ChannelMappingPair";
            return false;
        }
        if (!map.emplace(*first, *second).second) {
            why = "channel " + std::to_string(*first) + " mapped twice";
            return false;
        }
    }
    return true;
}

std::string writeChannelIdMap(const std::map<std::uint64_t, std::uint64_t>& map)
{
    pugi::xml_document document;
    pugi::xml_node root = document.append_child("ChannelIDMap");
    for (const auto& [first, second] : map) {
        pugi::xml_node pair = root.append_child("ChannelMappingPair");
        pair.append_attribute("first") = first;
        pair.append_attribute("second") = second;
    }
    return xpugi::to_xml(document, false);
}

std::string describeDataFormat(const zlr::DataFormat& format)
{
    auto textOf = [](const zlr::StringBimap& map, std::uint32_t number) -> std::string {
        try {
            return map.textOf(number);
        } catch (const std::out_of_range&) {
            return std::to_string(number);
        }
    };
    std::string line = textOf(zlr::sampleOccurrenceMap(), format.m_sample_occurrence) + " " +
                       textOf(zlr::sampleFormatMap(), format.m_sample_format) + " dimension " +
                       std::to_string(format.m_sample_dimension);
    if (format.m_sample_value_type) {
        line += " " + textOf(zlr::sampleValueTypeMap(), format.m_sample_value_type);
    }
    if (format.m_reduced_format) {
        line += " reduced " + textOf(zlr::reducedFormatMap(), format.m_reduced_format);
    }
    return line;
}

std::string describeTimebase(const zlr::Timebase& timebase)
{
    char text[96];
    switch (timebase.m_type) {
    case zlr::Timebase::TYPE_SIMPLE:
        std::snprintf(text, sizeof text, "%.17g Hz", timebase.m_frequency);
        return text;
    case zlr::Timebase::TYPE_WITH_OFFSET:
        std::snprintf(text, sizeof text, "%.17g Hz offset %.17g", timebase.m_frequency,
                      timebase.m_offset);
        return text;
    default:
        return "none";
    }
}

} // namespace zelvar_sim
