#include "sim_config_telegrams.h"

#include "sim_xml_reading.h"
#include "xpugixml.h"
#include "zlrapi_property_xml.h"

#include <cstring>
#include <exception>
#include <set>
#include <sstream>

namespace zelvar_sim {
namespace {

enum class Form { text, number, unsigned32, signed32, boolean, channel_type };

struct AttributeRule {
    const char* name;
    Form form;
    bool required;
};

struct ConstraintRule {
    const char* kind;
    std::vector<AttributeRule> attributes;
    bool has_options = false;
    bool has_filters = false;
};

// The constraints this host knows, with the attributes each may carry.
const std::vector<ConstraintRule>& constraintRules()
{
    static const std::vector<ConstraintRule> rules = {
        {"OptionConstraint", {}, true, false},
        {"DoubleRangeConstraint", {{"min", Form::number, true}, {"max", Form::number, true}}},
        {"ScalarRangeConstraint",
         {{"min", Form::number, true},
          {"max", Form::number, true},
          {"min_unit", Form::text, false},
          {"max_unit", Form::text, false}}},
        {"RegularExpressionConstraint", {{"expression", Form::text, true}}},
        {"StringConstraint", {}},
        {"ChannelIdsConstraint",
         {{"max_items", Form::unsigned32, true},
          {"max_dimension", Form::signed32, true},
          {"channel_type", Form::channel_type, true}}},
        {"VisibilityConstraint", {{"visibility", Form::text, true}}},
        {"FilePathConstraint",
         {{"file_type", Form::text, true},
          {"dialog_title", Form::text, false},
          {"default_path", Form::text, false},
          {"multi_select", Form::boolean, true}},
         false,
         true},
    };
    return rules;
}

bool fitsForm(const char* text, Form form)
{
    switch (form) {
    case Form::text:
        return true;
    case Form::number:
        return doubleOf(text).has_value();
    case Form::unsigned32:
        return decimalOf(text, 0xFFFFFFFFu).has_value();
    case Form::signed32:
        return signed32Of(text).has_value();
    case Form::boolean:
        return booleanOf(text).has_value();
    case Form::channel_type:
        return std::strcmp(text, "SYNC") == 0 || std::strcmp(text, "ASYNC") == 0 ||
               std::strcmp(text, "ALL") == 0;
    }
    return false;
}

// Reads one type-defining node into a property of `name`; the kit's number
// conversions may throw on a malformed number, which the host takes as a
// refusal like any other.
bool readValue(pugi::xml_node node, const std::string& name, zlr::Property& value)
{
    if (zlr::propertyTypeFromElementName(node.name()) == zlr::Property::NONE) {
        return false;
    }
    value = zlr::Property(name);
    try {
        return value.readTypeDefiningNode(node, 0.0) && value.isValid();
    } catch (const std::exception&) {
        return false;
    }
}

bool hasText(pugi::xml_node element)
{
    for (pugi::xml_node child : element.children()) {
        if (child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata) {
            return true;
        }
    }
    return false;
}

bool readConstraint(pugi::xml_node element, HostConstraint& constraint, std::string& why)
{
    const ConstraintRule* rule = nullptr;
    for (const ConstraintRule& candidate : constraintRules()) {
        if (std::strcmp(candidate.kind, element.name()) == 0) {
            rule = &candidate;
        }
    }
    if (!rule) {
        why = std::string("unknown constraint ") + element.name();
        return false;
    }
    constraint = {};
    constraint.kind = rule->kind;
    for (pugi::xml_attribute attribute : element.attributes()) {
        const AttributeRule* known = nullptr;
        for (const AttributeRule& candidate : rule->attributes) {
            if (std::strcmp(candidate.name, attribute.name()) == 0) {
                known = &candidate;
            }
        }
        if (!known) {
            why = constraint.kind + " with unknown attribute " + attribute.name();
            return false;
        }
        if (!fitsForm(attribute.value(), known->form)) {
            why = constraint.kind + " with malformed " + attribute.name() + " \"" +
                  attribute.value() + "\"";
            return false;
        }
        constraint.attributes.emplace_back(attribute.name(), attribute.value());
    }
    for (const AttributeRule& attribute : rule->attributes) {
        if (attribute.required && !element.attribute(attribute.name)) {
            why = constraint.kind + " without " + attribute.name;
            return false;
        }
    }
    if (hasText(element)) {
        why = constraint.kind + " with text content";
        return false;
    }
    for (pugi::xml_node child : element.children()) {
        if (rule->has_options) {
            zlr::Property option;
            if (!readValue(child, "option", option)) {
                why = constraint.kind + " with an unreadable option " + child.name();
                return false;
            }
            constraint.options.push_back(option);
        } else if (rule->has_filters && std::strcmp(child.name(), "NameFilters") == 0) {
            for (pugi::xml_node filter : child.children()) {
                if (std::strcmp(filter.name(), "Filter") != 0 || !filter.attribute("name")) {
                    why = constraint.kind + " with a malformed filter";
                    return false;
                }
                constraint.filters.emplace_back(filter.attribute("name").value());
            }
        } else {
            why = constraint.kind + " with unexpected child " + child.name();
            return false;
        }
    }
    return true;
}

bool readProperty(pugi::xml_node element, HostProperty& property, std::string& why)
{
    const std::string name = element.attribute("name").value();
    if (name.empty()) {
        why = "a property without a name";
        return false;
    }
    if (hasText(element)) {
        why = "property " + name + " with text outside its value";
        return false;
    }
    pugi::xml_node child = element.first_child();
    if (!child) {
        why = "property " + name + " has no value";
        return false;
    }
    if (!readValue(child, name, property.value)) {
        why = "property " + name + " has no readable value in " + child.name();
        return false;
    }
    child = child.next_sibling();
    if (child && std::strcmp(child.name(), "Constraints") == 0) {
        if (hasText(child)) {
            why = "property " + name + " with text among its constraints";
            return false;
        }
        for (pugi::xml_node element_of_constraint : child.children()) {
            HostConstraint constraint;
            if (!readConstraint(element_of_constraint, constraint, why)) {
                why = "property " + name + ": " + why;
                return false;
            }
            property.constraints.push_back(std::move(constraint));
        }
        child = child.next_sibling();
    }
    if (child) {
        why = "property " + name + " with unexpected " + child.name() + " after its value";
        return false;
    }
    return true;
}

std::string xmlOf(pugi::xml_node node)
{
    std::ostringstream out;
    node.print(out, "", pugi::format_raw);
    return out.str();
}

} // namespace

std::string HostConstraint::attribute(const std::string& name) const
{
    for (const auto& [key, value] : attributes) {
        if (key == name) {
            return value;
        }
    }
    return {};
}

bool readHostProperties(pugi::xml_node parent, std::vector<HostProperty>& properties,
                        std::string& why)
{
    std::set<std::string> names;
    for (pugi::xml_node element : parent.children("Property")) {
        HostProperty property;
        if (!readProperty(element, property, why)) {
            return false;
        }
        if (!names.insert(property.value.getName()).second) {
            why = "property " + property.value.getName() + " twice in one channel";
            return false;
        }
        properties.push_back(std::move(property));
    }
    return true;
}

bool readUpdateConfig(const std::string& text, std::vector<HostChannelConfig>& channels,
                      std::string& why)
{
    channels.clear();
    pugi::xml_document document;
    const pugi::xml_node root = strictRoot(document, text, "UpdateConfig", true);
    if (!root) {
        why = "not an UpdateConfig of version 1.0";
        return false;
    }
    std::set<std::uint32_t> seen;
    for (pugi::xml_node element : root.children()) {
        if (std::strcmp(element.name(), "Channel") != 0) {
            why = std::string("unexpected ") + (element.type() == pugi::node_element
                                                    ? element.name()
                                                    : "text") +
                  " in UpdateConfig";
            return false;
        }
        const auto local_id = decimalOf(element.attribute("local_id").value(), 0xFFFFFFFEu);
        if (!local_id) {
            why = std::string("a Channel with local_id \"") +
                  element.attribute("local_id").value() + "\"";
            return false;
        }
        if (!seen.insert(static_cast<std::uint32_t>(*local_id)).second) {
            why = "channel " + std::to_string(*local_id) + " twice";
            return false;
        }
        for (pugi::xml_node child : element.children()) {
            if (std::strcmp(child.name(), "Property") != 0) {
                why = "channel " + std::to_string(*local_id) + " with unexpected " +
                      (child.type() == pugi::node_element ? child.name() : "text");
                return false;
            }
        }
        HostChannelConfig channel;
        channel.local_id = static_cast<std::uint32_t>(*local_id);
        if (!readHostProperties(element, channel.properties, why)) {
            why = "channel " + std::to_string(*local_id) + ": " + why;
            return false;
        }
        channels.push_back(std::move(channel));
    }
    return true;
}

void writeHostProperties(pugi::xml_node parent, const std::vector<HostProperty>& properties)
{
    for (const HostProperty& property : properties) {
        pugi::xml_node element = property.value.writeTo(parent);
        if (property.constraints.empty()) {
            continue;
        }
        pugi::xml_node constraints = element.append_child("Constraints");
        for (const HostConstraint& constraint : property.constraints) {
            pugi::xml_node written = constraints.append_child(constraint.kind.c_str());
            for (const auto& [name, value] : constraint.attributes) {
                written.append_attribute(name.c_str()) = value.c_str();
            }
            for (const zlr::Property& option : constraint.options) {
                pugi::xml_document scratch;
                const pugi::xml_node holder = option.writeTo(scratch);
                written.append_copy(holder.first_child());
            }
            if (!constraint.filters.empty()) {
                pugi::xml_node filters = written.append_child("NameFilters");
                for (const std::string& filter : constraint.filters) {
                    filters.append_child("Filter").append_attribute("name") = filter.c_str();
                }
            }
        }
    }
}

std::string writeUpdateConfig(std::uint32_t local_id, const zlr::Property& property)
{
    pugi::xml_document document;
    pugi::xml_node root = document.append_child("UpdateConfig");
    root.append_attribute("protocol_version") = "1.0";
    pugi::xml_node channel = root.append_child("Channel");
    channel.append_attribute("local_id") = local_id;
    property.writeTo(channel);
    return xpugi::to_xml(document, false);
}

std::string describeValue(const zlr::Property& property)
{
    pugi::xml_document scratch;
    const pugi::xml_node type_node = property.writeTo(scratch).first_child();
    if (!type_node) {
        return "(no value)";
    }
    const pugi::xml_node content = type_node.first_child();
    if (!content) {
        return std::string(type_node.name()) + " (empty)";
    }
    if (content.type() == pugi::node_pcdata && !content.next_sibling()) {
        return std::string(type_node.name()) + " " + content.value();
    }
    std::string inner;
    for (pugi::xml_node child : type_node.children()) {
        inner += xmlOf(child);
    }
    return std::string(type_node.name()) + " " + inner;
}

std::string describeConstraint(const HostConstraint& constraint)
{
    std::string line = constraint.kind;
    for (const auto& [name, value] : constraint.attributes) {
        line += " " + name + "=\"" + value + "\"";
    }
    for (const zlr::Property& option : constraint.options) {
        line += " [" + describeValue(option) + "]";
    }
    for (const std::string& filter : constraint.filters) {
        line += " filter=\"" + filter + "\"";
    }
    return line;
}

} // namespace zelvar_sim
