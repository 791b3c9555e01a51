// Property: the kit's universal named value. Simple values are kept as the
// text that the XML carries; structured values live in a shared object that a
// copy shares, and that a setter always replaces by a fresh one.
#pragma once

#include "zlrapi_property_values.h"

#include <pugixml.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace zlr {

class PropertyList;

// Text of a double that strtod reads back to the same value: precision 17 in
// the stream's default float format.
std::string numberText(double value);

class Property {
public:
    // The code of each type; the XML element of each is named in
    // zlrapi_property_xml.h.
    enum Type : std::int32_t {
        NONE = 0,
        STRING_VALUE = 1,
        SIGNED_VALUE = 2,
        UNSIGNED_VALUE = 3,
        UNSIGNED_INT64 = 4,
        DOUBLE_VALUE = 5,
        BOOLEAN_VALUE = 6,
        COLOR_VALUE = 7,
        DATE_VALUE = 8,
        DATE_TIME_VALUE = 9,
        RANGE_VALUE = 10,
        ENUM_VALUE = 11,
        PROPERTY_LIST_VALUE = 12,
        SCALAR_VALUE = 13,
        STRING_LIST_VALUE = 14,
        POINT_LIST_VALUE = 15,
        DECORATED_NUMBER = 16,
        CHANNEL_ID = 17,
        DOUBLE_LIST_VALUE = 18,
        RATIONAL_VALUE = 19,
        GEO_COORDINATE_VALUE = 20,
        POINT = 21,
        CHANNEL_ID_LIST = 22,
        SIGNED_VALUE64 = 23,
    };

    Property() = default;
    explicit Property(const std::string& name);
    Property(const std::string& name, const std::string& value);
    Property(const std::string& name, const char* value);
    Property(const std::string& name, std::int32_t value);
    Property(const std::string& name, std::uint32_t value);
    Property(const std::string& name, bool value);
    // An enumeration key with the enumeration's name.
    Property(const std::string& name, const std::string& value, const std::string& enumeration);

    virtual ~Property() = default;
    Property(const Property&) = default;
    Property& operator=(const Property&) = default;

    // Appends a "Property" element to `parent` and answers it.
    virtual pugi::xml_node writeTo(pugi::xml_node parent) const;
    // Reads a "Property" element. False on a malformed one; throws the
    // number-text exceptions where a number does not convert. `context` is
    // handed to nested reads unchanged.
    virtual bool readFrom(const pugi::xml_node& node, double context);

    // Reads one type-defining node (e.g. <DoubleValue>1.5</DoubleValue>)
    // into this property, keeping its name. Used by readFrom, and by
    // telegrams that carry type nodes without a "Property" wrapper.
    bool readTypeDefiningNode(const pugi::xml_node& node, double context);

    const std::string& getName() const { return m_name; }
    Type getType() const { return m_type; }
    bool isValid() const { return m_type != NONE; }
    // The enumeration's name with ENUM_VALUE, the "format" with STRING_VALUE.
    const std::string& getTypeDetail() const { return m_type_detail; }

    void setName(const std::string& name);
    void setValue(const std::string& value);
    void setValue(const char* value);
    void setValue(double value);
    void setValue(bool value);
    void setValue(const Range& value);
    // Keeps a former text in m_value; only the structure is written out.
    void setValue(const Scalar& value);
    void setChannelIDList(const ValueList<std::uint64_t>& value);

    // Setters of the remaining types, each with its type code.
    void setTextValue(Type type, const std::string& value);
    void setEnumValue(const std::string& value, const std::string& enumeration);
    void setValue(const Rational& value);
    void setValue(const DecoratedNumber& value);
    void setValue(const PropertyList& value);
    void setPointValue(const Point& value);
    void setDoubleList(const ValueList<double>& value);
    void setStringList(const ValueList<std::string>& value);
    void setPointList(const ValueList<Point>& value);

    // Each getter requires its one type; on any other it logs and throws
    // std::runtime_error("property <name> is not of type ...").
    long getIntValue() const;
    unsigned long getUnsignedIntValue() const;
    double getDoubleValue() const;
    // True only for the exact text "True".
    bool getBoolValue() const;
    Scalar getScalarValue() const;
    DecoratedNumber getDecoratedNumberValue() const;
    Range getRangeValue() const;
    std::vector<double> getDoubleListValue() const;
    std::vector<std::string> getStringListValue() const;
    Rational getRationalValue() const;
    Point getPointValue() const;
    std::vector<std::uint64_t> getChannelIDListValue() const;
    std::vector<Point> getPointListValue() const;
    PropertyList getPropertyListValue() const;
    // The text of every type but RANGE_VALUE and SCALAR_VALUE, which throw;
    // other structured types answer an empty text.
    std::string getStringValue() const;

    // Shallow on purpose: structured values count only as present or absent.
    bool operator==(const Property& other) const;

private:
    void setSimple(Type type, const std::string& text);
    template <typename T>
    void setComplex(Type type, const T& value);
    template <typename T>
    const T& complexAs() const;
    [[noreturn]] void typeMismatch(const char* suffix) const;
    void requireType(Type type, const char* suffix) const;

    bool readSimpleNode(const pugi::xml_node& node, Type type);
    bool readStringNode(const pugi::xml_node& node);
    bool readEnumNode(const pugi::xml_node& node);
    bool readRangeNode(const pugi::xml_node& node);
    bool readScalarNode(const pugi::xml_node& node);
    bool readRationalNode(const pugi::xml_node& node);
    bool readDecoratedNumberNode(const pugi::xml_node& node);
    bool readPointNode(const pugi::xml_node& node);
    bool readDoubleListNode(const pugi::xml_node& node);
    bool readStringListNode(const pugi::xml_node& node);
    bool readPointListNode(const pugi::xml_node& node);
    bool readChannelIDListNode(const pugi::xml_node& node);
    bool readPropertyListNode(const pugi::xml_node& node, double context);
    void writeValue(pugi::xml_node type) const;

    std::string m_name;
    Type m_type = NONE;
    std::string m_type_detail;
    std::string m_value;
    std::shared_ptr<void> m_complex_value;
};

class PropertyList {
public:
    std::size_t size() const { return m_properties.size(); }
    bool empty() const { return m_properties.empty(); }
    // Bounds-checked: throws std::out_of_range("invalid vector subscript").
    Property& operator[](std::size_t index);
    const Property& operator[](std::size_t index) const;
    // The first property of that exact name, as a copy; an invalid default
    // Property when there is none.
    Property getProperty(const std::string& name) const;

    void push_back(const Property& property) { m_properties.push_back(property); }
    void clear() { m_properties.clear(); }
    std::vector<Property>::const_iterator begin() const { return m_properties.begin(); }
    std::vector<Property>::const_iterator end() const { return m_properties.end(); }

    bool operator==(const PropertyList& other) const;

private:
    std::vector<Property> m_properties;
};

// A structured value is always a fresh object, so that no copy that shares
// the former one sees the change.
template <typename T>
void Property::setComplex(Type type, const T& value)
{
    m_type = type;
    m_value.clear();
    m_complex_value = std::make_shared<T>(value);
}

template <typename T>
const T& Property::complexAs() const
{
    static const T empty{};
    return m_complex_value ? *static_cast<const T*>(m_complex_value.get()) : empty;
}

} // namespace zlr
