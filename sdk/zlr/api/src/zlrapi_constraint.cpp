#include "zlrapi_constraint.h"

#include <stdexcept>

namespace zlr {
namespace {

PropertyList listOf(std::initializer_list<Property> properties)
{
    PropertyList list;
    for (const Property& property : properties) {
        list.push_back(property);
    }
    return list;
}

Property named(Property property, const char* name)
{
    property.setName(name);
    return property;
}

} // namespace

Constraint::Constraint(Kind kind, PropertyList parameters)
    : m_kind(kind), m_parameters(std::move(parameters))
{
}

Constraint Constraint::range(Property min, Property max)
{
    return {RANGE, listOf({named(std::move(min), "min"), named(std::move(max), "max")})};
}

Constraint Constraint::options(const std::vector<Property>& options)
{
    PropertyList list;
    for (const Property& option : options) {
        list.push_back(named(option, "option"));
    }
    return {OPTION, list};
}

Constraint Constraint::regularExpression(const std::string& regex)
{
    return {REGULAR_EXPRESSION, listOf({Property("regex", regex)})};
}

Constraint Constraint::freeText()
{
    return {STRING, {}};
}

Constraint Constraint::channelIds(std::uint32_t max_items, std::int32_t max_dimension,
                                  const std::string& channel_type)
{
    return {CHANNEL_IDS, listOf({Property("max_items", max_items),
                                 Property("max_dimension", max_dimension),
                                 Property("channel_type", channel_type)})};
}

Constraint Constraint::visibility(const std::string& visibility)
{
    return {VISIBILITY, listOf({Property("visibility", visibility)})};
}

Constraint Constraint::filePath(const FilePath& file_path)
{
    Property filters("name_filters");
    filters.setStringList(ValueList<std::string>{file_path.m_name_filters});
    return {FILE_PATH,
            listOf({Property("file_type", file_path.m_file_type, "DialogFileType"),
                    Property("dialog_title", file_path.m_dialog_title),
                    Property("default_path", file_path.m_default_path), filters,
                    Property("multi_select", file_path.m_multi_select)})};
}

void Constraint::requireKind(Kind kind, const char* text) const
{
    if (m_kind != kind) {
        throw std::runtime_error(text);
    }
}

std::pair<Property, Property> Constraint::getRange() const
{
    requireKind(RANGE, "constraint is not of type range");
    return {m_parameters.getProperty("min"), m_parameters.getProperty("max")};
}

std::string Constraint::getRegularExpression() const
{
    requireKind(REGULAR_EXPRESSION, "constraint is not of type regex");
    return m_parameters.getProperty("regex").getStringValue();
}

std::string Constraint::getVisibility() const
{
    requireKind(VISIBILITY, "constraint is not of type visibility");
    return m_parameters.getProperty("visibility").getStringValue();
}

Constraint::FilePath Constraint::getFilePath() const
{
    requireKind(FILE_PATH, "constraint is not of type file path");
    FilePath file_path;
    file_path.m_file_type = m_parameters.getProperty("file_type").getStringValue();
    file_path.m_dialog_title = m_parameters.getProperty("dialog_title").getStringValue();
    file_path.m_default_path = m_parameters.getProperty("default_path").getStringValue();
    const Property filters = m_parameters.getProperty("name_filters");
    if (filters.getType() == Property::STRING_LIST_VALUE) {
        file_path.m_name_filters = filters.getStringListValue();
    }
    const Property multi_select = m_parameters.getProperty("multi_select");
    file_path.m_multi_select =
        multi_select.getType() == Property::BOOLEAN_VALUE && multi_select.getBoolValue();
    return file_path;
}

Constraint::ChannelIds Constraint::getChannelIds() const
{
    requireKind(CHANNEL_IDS, "constraint is not of type channel_ids");
    ChannelIds ids;
    const Property max_items = m_parameters.getProperty("max_items");
    if (max_items.getType() == Property::UNSIGNED_VALUE) {
        ids.m_max_items = static_cast<std::uint32_t>(max_items.getUnsignedIntValue());
    }
    const Property max_dimension = m_parameters.getProperty("max_dimension");
    if (max_dimension.getType() == Property::SIGNED_VALUE) {
        ids.m_max_dimension = static_cast<std::int32_t>(max_dimension.getIntValue());
    }
    ids.m_channel_type = m_parameters.getProperty("channel_type").getStringValue();
    return ids;
}

} // namespace zlr
