#include "zlrapi_property.h"

#include "zlrapi_numbers.h"
#include "zlruni_logger.h"

#include <locale>
#include <sstream>
#include <stdexcept>

namespace zlr {

std::string numberText(double value)
{
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text.precision(17);
    text << value;
    return text.str();
}

Property::Property(const std::string& name) : m_name(name) {}

Property::Property(const std::string& name, const std::string& value)
    : m_name(name), m_type(STRING_VALUE), m_value(value)
{
}

Property::Property(const std::string& name, const char* value)
    : Property(name, std::string(value))
{
}

Property::Property(const std::string& name, std::int32_t value)
    : m_name(name), m_type(SIGNED_VALUE), m_value(std::to_string(value))
{
}

Property::Property(const std::string& name, std::uint32_t value)
    : m_name(name), m_type(UNSIGNED_VALUE), m_value(std::to_string(value))
{
}

Property::Property(const std::string& name, bool value)
    : m_name(name), m_type(BOOLEAN_VALUE), m_value(value ? "True" : "False")
{
}

Property::Property(const std::string& name, const std::string& value,
                   const std::string& enumeration)
    : m_name(name), m_type(ENUM_VALUE), m_type_detail(enumeration), m_value(value)
{
}

void Property::setName(const std::string& name)
{
    m_name = name;
}

void Property::setSimple(Type type, const std::string& text)
{
    m_type = type;
    m_value = text;
    m_complex_value.reset();
}

void Property::setValue(const std::string& value)
{
    setSimple(STRING_VALUE, value);
    m_type_detail.clear();
}

void Property::setValue(const char* value)
{
    setValue(std::string(value));
}

void Property::setValue(double value)
{
    setSimple(DOUBLE_VALUE, numberText(value));
}

void Property::setValue(bool value)
{
    setSimple(BOOLEAN_VALUE, value ? "True" : "False");
}

void Property::setValue(const Range& value)
{
    setComplex(RANGE_VALUE, value);
}

void Property::setValue(const Scalar& value)
{
    m_type = SCALAR_VALUE;
    m_complex_value = std::make_shared<Scalar>(value);
}

void Property::setChannelIDList(const ValueList<std::uint64_t>& value)
{
    setComplex(CHANNEL_ID_LIST, value);
}

void Property::setTextValue(Type type, const std::string& value)
{
    setSimple(type, value);
}

void Property::setEnumValue(const std::string& value, const std::string& enumeration)
{
    setSimple(ENUM_VALUE, value);
    m_type_detail = enumeration;
}

void Property::setValue(const Rational& value)
{
    setComplex(RATIONAL_VALUE, value);
}

void Property::setValue(const DecoratedNumber& value)
{
    setComplex(DECORATED_NUMBER, value);
}

void Property::setValue(const PropertyList& value)
{
    setComplex(PROPERTY_LIST_VALUE, value);
}

void Property::setPointValue(const Point& value)
{
    setComplex(POINT, value);
}

void Property::setDoubleList(const ValueList<double>& value)
{
    setComplex(DOUBLE_LIST_VALUE, value);
}

void Property::setStringList(const ValueList<std::string>& value)
{
    setComplex(STRING_LIST_VALUE, value);
}

void Property::setPointList(const ValueList<Point>& value)
{
    setComplex(POINT_LIST_VALUE, value);
}

void Property::typeMismatch(const char* suffix) const
{
    // Formatted once, logged and thrown with the same words.
    const std::string text = "property " + m_name + suffix;
    ZLR_LOG(UniLogSeverityLevel::Error, text);
    throw std::runtime_error(text);
}

void Property::requireType(Type type, const char* suffix) const
{
    if (m_type != type) {
        typeMismatch(suffix);
    }
}

long Property::getIntValue() const
{
    requireType(SIGNED_VALUE, " is not of type int");
    return stolChecked(m_value, 0);
}

unsigned long Property::getUnsignedIntValue() const
{
    requireType(UNSIGNED_VALUE, " is not of type unsigned int");
    return stoulChecked(m_value, 0);
}

double Property::getDoubleValue() const
{
    requireType(DOUBLE_VALUE, " is not of type double");
    return stodChecked(m_value);
}

bool Property::getBoolValue() const
{
    requireType(BOOLEAN_VALUE, " is not of type bool");
    return m_value == "True";
}

Scalar Property::getScalarValue() const
{
    requireType(SCALAR_VALUE, " is not of type scalar");
    return complexAs<Scalar>();
}

DecoratedNumber Property::getDecoratedNumberValue() const
{
    requireType(DECORATED_NUMBER, " is not of type decorated_number");
    return complexAs<DecoratedNumber>();
}

Range Property::getRangeValue() const
{
    requireType(RANGE_VALUE, " is not of type range");
    return complexAs<Range>();
}

std::vector<double> Property::getDoubleListValue() const
{
    requireType(DOUBLE_LIST_VALUE, " is not of type realnumberlist");
    return complexAs<ValueList<double>>().m_values;
}

std::vector<std::string> Property::getStringListValue() const
{
    requireType(STRING_LIST_VALUE, " is not of type stringlist");
    return complexAs<ValueList<std::string>>().m_values;
}

Rational Property::getRationalValue() const
{
    requireType(RATIONAL_VALUE, " is not of type rational");
    return complexAs<Rational>();
}

Point Property::getPointValue() const
{
    requireType(POINT, " is not of type point");
    return complexAs<Point>();
}

std::vector<std::uint64_t> Property::getChannelIDListValue() const
{
    requireType(CHANNEL_ID_LIST, " is not of type channel id list");
    return complexAs<ValueList<std::uint64_t>>().m_values;
}

std::vector<Point> Property::getPointListValue() const
{
    requireType(POINT_LIST_VALUE, " is not of type pointlist");
    return complexAs<ValueList<Point>>().m_values;
}

PropertyList Property::getPropertyListValue() const
{
    requireType(PROPERTY_LIST_VALUE, " is not of type propertylist");
    return complexAs<PropertyList>();
}

std::string Property::getStringValue() const
{
    if (m_type == RANGE_VALUE) {
        typeMismatch(" is type Range");
    }
    if (m_type == SCALAR_VALUE) {
        typeMismatch(" is type Scalar");
    }
    return m_value;
}

bool Property::operator==(const Property& other) const
{
    return m_name == other.m_name && m_type == other.m_type &&
           m_type_detail == other.m_type_detail && m_value == other.m_value &&
           static_cast<bool>(m_complex_value) == static_cast<bool>(other.m_complex_value);
}

Property& PropertyList::operator[](std::size_t index)
{
    if (index >= m_properties.size()) {
        throw std::out_of_range("invalid vector subscript");
    }
    return m_properties[index];
}

const Property& PropertyList::operator[](std::size_t index) const
{
    if (index >= m_properties.size()) {
        throw std::out_of_range("invalid vector subscript");
    }
    return m_properties[index];
}

Property PropertyList::getProperty(const std::string& name) const
{
    for (const Property& property : m_properties) {
        if (property.getName() == name) {
            return property;
        }
    }
    return Property();
}

bool PropertyList::operator==(const PropertyList& other) const
{
    return m_properties == other.m_properties;
}

} // namespace zlr
