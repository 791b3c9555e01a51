#include "zlrfw_properties.h"

#include "zlrapi_constraint.h"
#include "zlrapi_utils.h"
#include "zlrbase_assert.h"

#include <exception>
#include <string>

namespace zlr::framework {
namespace {

Property stringOption(const std::string& text)
{
    return Property("option", text);
}

Property doubleProperty(const std::string& name, double value)
{
    Property property(name);
    property.setValue(value);
    return property;
}

const char* channelTypeText(std::uint8_t channel_type)
{
    switch (channel_type) {
    case EditableChannelIDListProperty::CHANNEL_TYPE_SYNC:
        return "SYNC";
    case EditableChannelIDListProperty::CHANNEL_TYPE_ASYNC:
        return "ASYNC";
    default:
        return "ALL";
    }
}

// A typed property made from a raw holder takes the held value as update
// would; a value that does not convert leaves the defaults, as a refused
// update leaves the old value.
template <typename Typed>
void adoptHeldValue(Typed& typed, const RawPropertyHolder& holder)
{
    const Property held = holder.getProperty();
    if (!held.isValid()) {
        return;
    }
    try {
        typed.update(held);
    } catch (const std::exception&) {
    }
}

} // namespace

// ---------------------------------------------------------------- PropertyBase

void PropertyBase::setChangeListener(IfChannelPropertyChangeListener* listener)
{
    m_change_listener = listener;
}

void PropertyBase::updateTelegram(ChannelConfig& config, const std::string& name) const
{
    if (!m_active) {
        return;
    }
    toTelegram(config, name);
    if (!m_visibility.empty()) {
        config.addConstraint(name, Constraint::visibility(m_visibility));
    }
}

void PropertyBase::setVisibility(const std::string& visibility)
{
    m_visibility = visibility;
    notifyChanged();
}

void PropertyBase::notifyChanged()
{
    if (m_change_listener) {
        m_change_listener->onChannelPropertyChanged(this);
    }
}

// ----------------------------------------------------------- RawPropertyHolder

RawPropertyHolder::RawPropertyHolder(const Property& property) : m_property(property) {}

bool RawPropertyHolder::update(const Property& property)
{
    m_property = property;
    return true;
}

void RawPropertyHolder::toTelegram(ChannelConfig& config, const std::string& name) const
{
    config.addProperty(name, m_property);
}

// -------------------------------------------------------------- StringProperty

StringProperty::StringProperty(const std::string& value) : m_value(value) {}

bool StringProperty::update(const Property& property)
{
    m_value = property.getStringValue();
    return true;
}

void StringProperty::setValue(const std::string& value)
{
    if (value == m_value) {
        return;
    }
    m_value = value;
    notifyChanged();
}

void StringProperty::toTelegram(ChannelConfig& config, const std::string& name) const
{
    config.addProperty(name, Property(name, m_value));
}

// ------------------------------------------------------ EditableStringProperty

EditableStringProperty::EditableStringProperty(const std::string& value) : StringProperty(value)
{
}

EditableStringProperty::EditableStringProperty(const RawPropertyHolder& holder)
{
    adoptHeldValue(*this, holder);
}

void EditableStringProperty::setRegexPattern(const std::string& pattern)
{
    m_regex_pattern = pattern;
    m_regex.reset();
    if (pattern.empty()) {
        return;
    }
    try {
        m_regex.emplace(pattern, std::regex::ECMAScript);
    } catch (const std::regex_error&) {
        m_regex.reset();
    }
}

bool EditableStringProperty::update(const Property& property)
{
    const std::string value = property.getStringValue();
    if (!m_regex_pattern.empty()) {
        // A pattern without a compiled expression refuses everything.
        if (!m_regex) {
            return false;
        }
        try {
            if (!std::regex_match(value, *m_regex)) {
                return false;
            }
        } catch (const std::regex_error&) {
            // An expression that cannot be evaluated must not block the value.
            reportAssertion("Invalid Regex", ZLR_SOURCE_PATH, __LINE__);
        }
    }
    m_value = value;
    return true;
}

void EditableStringProperty::toTelegram(ChannelConfig& config, const std::string& name) const
{
    StringProperty::toTelegram(config, name);
    if (m_is_free_text) {
        config.addConstraint(name, Constraint::freeText());
    }
    if (!m_regex_pattern.empty()) {
        config.addConstraint(name, Constraint::regularExpression(m_regex_pattern));
    }
    for (const std::string& option : m_options) {
        config.addConstraint(name, Constraint::options({stringOption(option)}));
    }
}

// ------------------------------------------------------------- BooleanProperty

BooleanProperty::BooleanProperty(bool value) : m_value(value) {}

bool BooleanProperty::update(const Property& property)
{
    m_value = property.getBoolValue();
    return true;
}

void BooleanProperty::setValue(bool value)
{
    if (value == m_value) {
        return;
    }
    m_value = value;
    notifyChanged();
}

void BooleanProperty::toTelegram(ChannelConfig& config, const std::string& name) const
{
    config.addProperty(name, Property(name, m_value));
    if (m_offer_options) {
        config.addConstraint(name, Constraint::options({Property("option", false),
                                                        Property("option", true)}));
    }
}

// ------------------------------------------------------ EditableScalarProperty

EditableScalarProperty::EditableScalarProperty(double value, const std::string& unit, double min,
                                               double max)
    : m_value(value), m_unit(unit), m_min(min), m_max(max)
{
}

EditableScalarProperty::EditableScalarProperty(const RawPropertyHolder& holder)
{
    adoptHeldValue(*this, holder);
}

bool EditableScalarProperty::update(const Property& property)
{
    double value = 0.0;
    switch (property.getType()) {
    case Property::DOUBLE_VALUE:
        value = property.getDoubleValue();
        break;
    case Property::SCALAR_VALUE: {
        const Scalar scalar = property.getScalarValue();
        // No conversion of units: another unit is refused.
        if (!m_unit.empty() && m_unit != scalar.m_unit) {
            return false;
        }
        // A property without a unit adopts the host's before the limits are
        // looked at, so even a refused value leaves its unit behind.
        if (m_unit.empty()) {
            m_unit = scalar.m_unit;
        }
        value = scalar.m_val;
        break;
    }
    default:
        return false;
    }
    if (hasLimits() && (value < m_min || value > m_max)) {
        return false;
    }
    m_value = value;
    return true;
}

void EditableScalarProperty::setValue(const Scalar& value)
{
    if (getScalar() == value) {
        return;
    }
    m_value = value.m_val;
    m_unit = value.m_unit;
    notifyChanged();
}

void EditableScalarProperty::setValue(double value)
{
    setValue(Scalar(value, m_unit));
}

void EditableScalarProperty::setMinMax(double min, double max)
{
    if (min == m_min && max == m_max) {
        return;
    }
    m_min = min;
    m_max = max;
    notifyChanged();
}

void EditableScalarProperty::toTelegram(ChannelConfig& config, const std::string& name) const
{
    Property property(name);
    property.setValue(getScalar());
    config.addProperty(name, property);
    if (hasLimits()) {
        config.addConstraint(name, Constraint::range(doubleProperty("min", m_min),
                                                     doubleProperty("max", m_max)));
    }
    for (const std::string& option : m_text_options) {
        config.addConstraint(name, Constraint::options({stringOption(option)}));
    }
    if (!m_scalar_options.empty()) {
        std::vector<Property> options;
        for (const double option : m_scalar_options) {
            Property scalar("option");
            scalar.setValue(Scalar(option, m_unit));
            options.push_back(scalar);
        }
        config.addConstraint(name, Constraint::options(options));
    }
}

// --------------------------------------------------- EditableChannelIDProperty

EditableChannelIDProperty::EditableChannelIDProperty(std::uint64_t value) : m_value(value) {}

bool EditableChannelIDProperty::update(const Property& property)
{
    if (property.getType() != Property::CHANNEL_ID) {
        return false;
    }
    const std::string text = property.getStringValue();
    if (text.empty()) {
        m_value.reset();
        return true;
    }
    const std::uint64_t id = std::stoull(text, nullptr, 0);
    if (id == NO_CHANNEL_ID) {
        m_value.reset();
    } else {
        m_value = id;
    }
    return true;
}

void EditableChannelIDProperty::setValue(std::uint64_t value)
{
    if (m_value && *m_value == value) {
        return;
    }
    m_value = value;
    notifyChanged();
}

void EditableChannelIDProperty::toTelegram(ChannelConfig& config, const std::string& name) const
{
    Property property(name);
    property.setTextValue(Property::CHANNEL_ID, std::to_string(m_value.value_or(NO_CHANNEL_ID)));
    config.addProperty(name, property);
}

// ----------------------------------------------- EditableChannelIDListProperty

EditableChannelIDListProperty::EditableChannelIDListProperty(
    const std::vector<std::uint64_t>& value)
    : m_value(value)
{
}

bool EditableChannelIDListProperty::update(const Property& property)
{
    m_value = property.getChannelIDListValue();
    return true;
}

void EditableChannelIDListProperty::setValue(const std::vector<std::uint64_t>& value)
{
    if (&value != &m_value) {
        if (value == m_value) {
            return;
        }
        m_value = value;
    }
    notifyChanged();
}

void EditableChannelIDListProperty::setChannelType(std::uint8_t channel_type)
{
    if (channel_type == m_channel_type) {
        return;
    }
    m_channel_type = static_cast<ChannelType>(channel_type);
    notifyChanged();
}

void EditableChannelIDListProperty::setMaxDimension(std::int32_t max_dimension)
{
    if (max_dimension == m_max_dimension) {
        return;
    }
    m_max_dimension = max_dimension;
    notifyChanged();
}

void EditableChannelIDListProperty::toTelegram(ChannelConfig& config,
                                               const std::string& name) const
{
    Property property(name);
    property.setChannelIDList(ValueList<std::uint64_t>{m_value});
    config.addProperty(name, property);
    config.addConstraint(name, Constraint::channelIds(m_max_items, m_max_dimension,
                                                      channelTypeText(m_channel_type)));
}

// --------------------------------------------------------------- RangeProperty

RangeProperty::RangeProperty(const Range& value) : m_value(value) {}

RangeProperty::RangeProperty(const RawPropertyHolder& holder)
{
    adoptHeldValue(*this, holder);
}

bool RangeProperty::update(const Property& property)
{
    m_value = property.getRangeValue();
    return true;
}

void RangeProperty::setValue(const Range& value)
{
    if (value == m_value) {
        return;
    }
    m_value = value;
    notifyChanged();
}

void RangeProperty::toTelegram(ChannelConfig& config, const std::string& name) const
{
    Property property(name);
    property.setValue(m_value);
    config.addProperty(name, property);
    for (const Range& option : m_options) {
        Property range("option");
        range.setValue(option);
        config.addConstraint(name, Constraint::options({range}));
    }
}

} // namespace zlr::framework
