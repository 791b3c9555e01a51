#include "zlrapi_update_config_xml.h"

#include "xpugixml.h"
#include "zlrbase_assert.h"

#include <exception>
#include <set>
#include <string_view>

namespace zlr {
namespace {

void report(const char* text)
{
    reportAssertion(text, ZLR_SOURCE_PATH, __LINE__);
}

// The type-defining node of `property` alone, without its "Property" wrapper.
void appendTypeNode(pugi::xml_node parent, const Property& property)
{
    pugi::xml_document scratch;
    const pugi::xml_node wrapper = property.writeTo(scratch);
    for (pugi::xml_node child : wrapper.children()) {
        if (child.type() == pugi::node_element) {
            parent.append_copy(child);
            return;
        }
    }
}

void writeRange(pugi::xml_node parent, const Constraint& constraint)
{
    const auto [min, max] = constraint.getRange();
    if (min.getType() != max.getType()) {
        report("Mixed ranges not supported");
        return;
    }
    if (min.getType() == Property::DOUBLE_VALUE) {
        const pugi::xml_node element = xpugi::append_child_element(parent, "DoubleRangeConstraint");
        xpugi::set_attribute(element, "min", min.getDoubleValue());
        xpugi::set_attribute(element, "max", max.getDoubleValue());
    } else if (min.getType() == Property::SCALAR_VALUE) {
        const Scalar low = min.getScalarValue();
        const Scalar high = max.getScalarValue();
        const pugi::xml_node element = xpugi::append_child_element(parent, "ScalarRangeConstraint");
        xpugi::set_attribute(element, "min", low.m_val);
        xpugi::set_attribute(element, "max", high.m_val);
        xpugi::set_attribute(element, "min_unit", low.m_unit);
        xpugi::set_attribute(element, "max_unit", high.m_unit);
    } else {
        report("Unimplemented range type");
    }
}

void writeFilePath(pugi::xml_node parent, const Constraint& constraint)
{
    const Constraint::FilePath file_path = constraint.getFilePath();
    const pugi::xml_node element = xpugi::append_child_element(parent, "FilePathConstraint");
    xpugi::set_attribute(element, "file_type", file_path.m_file_type);
    xpugi::set_attribute(element, "dialog_title", file_path.m_dialog_title);
    xpugi::set_attribute(element, "default_path", file_path.m_default_path);
    const pugi::xml_node filters = xpugi::append_child_element(element, "NameFilters");
    for (const std::string& filter : file_path.m_name_filters) {
        xpugi::set_attribute(xpugi::append_child_element(filters, "Filter"), "name", filter);
    }
    xpugi::set_attribute(element, "multi_select", file_path.m_multi_select ? "true" : "false");
}

Property doubleProperty(const char* name, double value)
{
    Property property(name);
    property.setValue(value);
    return property;
}

Property scalarProperty(const char* name, double value, const std::string& unit)
{
    Property property(name);
    property.setValue(Scalar(value, unit));
    return property;
}

Constraint readOptions(pugi::xml_node element)
{
    std::vector<Property> options;
    for (pugi::xml_node child : element.children()) {
        if (child.type() != pugi::node_element) {
            continue;
        }
        Property option("option");
        try {
            if (option.readTypeDefiningNode(child, 0.0)) {
                options.push_back(option);
            }
        } catch (const std::exception&) {
            // An option whose number does not convert is left out like any
            // other that does not read.
        }
    }
    return Constraint::options(options);
}

Constraint readFilePath(pugi::xml_node element)
{
    Constraint::FilePath file_path;
    file_path.m_file_type = element.attribute("file_type").value();
    file_path.m_dialog_title = element.attribute("dialog_title").value();
    file_path.m_default_path = element.attribute("default_path").value();
    for (pugi::xml_node filter : element.child("NameFilters").children("Filter")) {
        file_path.m_name_filters.emplace_back(filter.attribute("name").value());
    }
    file_path.m_multi_select = element.attribute("multi_select").as_bool(false);
    return Constraint::filePath(file_path);
}

// Reads one "Property" element; false ends the list.
bool readProperty(pugi::xml_node element, std::vector<Property>& properties,
                  ConstraintMap& constraints)
{
    const std::string name = element.attribute("name").value();
    if (name.empty()) {
        return false;
    }
    std::vector<Constraint> gathered;
    for (pugi::xml_node child : element.children()) {
        if (std::string_view(child.name()) == "Constraints") {
            for (pugi::xml_node constraint : child.children()) {
                if (constraint.type() == pugi::node_element) {
                    gathered.push_back(readConstraint(constraint));
                }
            }
            continue;
        }
        Property property(name);
        if (!property.readTypeDefiningNode(child, 0.0)) {
            return false;
        }
        properties.push_back(property);
    }
    std::vector<Constraint>& stored = constraints[name];
    stored.insert(stored.end(), gathered.begin(), gathered.end());
    return true;
}

} // namespace

void ChannelConfig::addProperty(const std::string& name, const Property& property)
{
    m_properties.push_back(property);
    m_properties.back().setName(name);
}

void ChannelConfig::addConstraint(const std::string& name, const Constraint& constraint)
{
    m_constraints[name].push_back(constraint);
}

ChannelConfig& UpdateConfigTelegram::getChannelConfig(std::uint32_t local_id)
{
    for (ChannelConfig& channel : m_channels) {
        if (channel.m_local_id == local_id) {
            return channel;
        }
    }
    m_channels.push_back(ChannelConfig{local_id, {}, {}});
    return m_channels.back();
}

void writeConstraint(pugi::xml_node parent, const Constraint& constraint)
{
    const PropertyList& parameters = constraint.getParameters();
    switch (constraint.getKind()) {
    case Constraint::OPTION: {
        const pugi::xml_node element = xpugi::append_child_element(parent, "OptionConstraint");
        for (const Property& option : parameters) {
            appendTypeNode(element, option);
        }
        break;
    }
    case Constraint::RANGE:
        writeRange(parent, constraint);
        break;
    case Constraint::REGULAR_EXPRESSION:
        xpugi::set_attribute(xpugi::append_child_element(parent, "RegularExpressionConstraint"),
                             "expression", constraint.getRegularExpression());
        break;
    case Constraint::STRING:
        xpugi::append_child_element(parent, "StringConstraint");
        break;
    case Constraint::CHANNEL_IDS: {
        const pugi::xml_node element = xpugi::append_child_element(parent, "ChannelIdsConstraint");
        xpugi::set_attribute(element, "max_items", parameters.getProperty("max_items").getStringValue());
        xpugi::set_attribute(element, "max_dimension",
                             parameters.getProperty("max_dimension").getStringValue());
        xpugi::set_attribute(element, "channel_type",
                             parameters.getProperty("channel_type").getStringValue());
        break;
    }
    case Constraint::VISIBILITY:
        xpugi::set_attribute(xpugi::append_child_element(parent, "VisibilityConstraint"),
                             "visibility", constraint.getVisibility());
        break;
    case Constraint::FILE_PATH:
        writeFilePath(parent, constraint);
        break;
    default:
        report("Unimplemented constraint type");
        break;
    }
}

Constraint readConstraint(pugi::xml_node element)
{
    const std::string_view name = element.name();
    if (name == "DoubleRangeConstraint") {
        return Constraint::range(doubleProperty("min", element.attribute("min").as_double(0.0)),
                                 doubleProperty("max", element.attribute("max").as_double(0.0)));
    }
    if (name == "ScalarRangeConstraint") {
        return Constraint::range(scalarProperty("min", element.attribute("min").as_double(0.0),
                                                element.attribute("min_unit").value()),
                                 scalarProperty("max", element.attribute("max").as_double(0.0),
                                                element.attribute("max_unit").value()));
    }
    if (name == "OptionConstraint") {
        return readOptions(element);
    }
    if (name == "StringConstraint") {
        return Constraint::freeText();
    }
    if (name == "ChannelIdsConstraint") {
        return Constraint::channelIds(element.attribute("max_items").as_uint(0),
                                      element.attribute("max_dimension").as_int(0),
                                      element.attribute("channel_type").value());
    }
    if (name == "RegularExpressionConstraint") {
        return Constraint::regularExpression(element.attribute("expression").value());
    }
    if (name == "VisibilityConstraint") {
        return Constraint::visibility(element.attribute("visibility").value());
    }
    if (name == "FilePathConstraint") {
        return readFilePath(element);
    }
    return Constraint();
}

void writePropertyList(pugi::xml_node parent, const std::vector<Property>& properties,
                       const ConstraintMap& constraints)
{
    std::set<std::string> written;
    for (const Property& property : properties) {
        written.insert(property.getName());
        const pugi::xml_node element = property.writeTo(parent);
        const auto found = constraints.find(property.getName());
        if (found == constraints.end() || found->second.empty()) {
            continue;
        }
        const pugi::xml_node list = xpugi::append_child_element(element, "Constraints");
        for (const Constraint& constraint : found->second) {
            writeConstraint(list, constraint);
        }
    }
    for (const auto& [name, list] : constraints) {
        if (written.count(name) == 0) {
            report("Orphaned constraints are not supported");
        }
    }
}

bool readPropertyList(pugi::xml_node parent, std::vector<Property>& properties,
                      ConstraintMap& constraints)
{
    try {
        for (pugi::xml_node element : parent.children("Property")) {
            if (!readProperty(element, properties, constraints)) {
                return false;
            }
        }
    } catch (const std::exception&) {
        // A number text that does not convert ends the list like any other
        // malformed property; what was read before it stays.
        return false;
    }
    return true;
}

std::string UpdateConfigTelegram::generate() const
{
    pugi::xml_document document;
    const pugi::xml_node root = xpugi::append_child_element(document, "UpdateConfig");
    xpugi::set_protocol_version(root);
    for (const ChannelConfig& channel : m_channels) {
        const pugi::xml_node element = xpugi::append_child_element(root, "Channel");
        xpugi::set_attribute(element, "local_id", std::uint64_t{channel.m_local_id});
        writePropertyList(element, channel.m_properties, channel.m_constraints);
    }
    return xpugi::to_xml(document, false);
}

bool UpdateConfigTelegram::parse(const char* text, std::size_t length)
{
    m_channels.clear();
    pugi::xml_document document;
    if (!xpugi::parse(document, text, length)) {
        return false;
    }
    const pugi::xml_node root = document.document_element();
    if (std::string_view(root.name()) != "UpdateConfig" ||
        !xpugi::has_supported_protocol_version(root)) {
        return false;
    }
    constexpr std::uint32_t missing = ~std::uint32_t{0};
    for (pugi::xml_node element : root.children()) {
        if (std::string_view(element.name()) != "Channel") {
            return false;
        }
        const std::uint32_t local_id = element.attribute("local_id").as_uint(missing);
        if (local_id == missing) {
            return false;
        }
        ChannelConfig& channel = getChannelConfig(local_id);
        readPropertyList(element, channel.m_properties, channel.m_constraints);
    }
    return true;
}

} // namespace zlr
