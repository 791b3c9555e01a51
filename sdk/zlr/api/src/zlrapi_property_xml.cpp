// Writing and reading a Property as XML. Reader and writer differ on purpose
// in places: the reader accepts unquoted strings and children in any order,
// the writer always quotes and always writes one order.
#include "zlrapi_property_xml.h"

#include "xpugixml.h"
#include "zlrapi_numbers.h"
#include "zlrbase_assert.h"
#include "zlruni_logger.h"

#include <array>
#include <cstring>
#include <exception>

namespace zlr {
namespace {

constexpr std::array<const char*, 24> TYPE_ELEMENT_NAMES = {
    nullptr,           "StringValue",    "SignedValue",       "UnsignedValue",
    "UnsignedInt64",   "DoubleValue",    "BooleanValue",      "ColorValue",
    "DateValue",       "DateTimeValue",  "RangeValue",        "EnumValue",
    "PropertyListValue", "ScalarValue",  "StringListValue",   "PointListValue",
    "DecoratedNumber", "ChannelID",      "DoubleListValue",   "RationalValue",
    "GeoCoordinateValue", "Point",       "ChannelIDList",     "SignedValue64",
};

bool isElement(const pugi::xml_node& node)
{
    return node.type() == pugi::node_element;
}

bool named(const pugi::xml_node& node, const char* name)
{
    return std::strcmp(node.name(), name) == 0;
}

double readDouble(const pugi::xml_node& node)
{
    return stodChecked(xpugi::trimmed_text(node));
}

std::int64_t readInt64(const pugi::xml_node& node)
{
    return stollChecked(xpugi::trimmed_text(node), 0);
}

void warnUnknownChild(const pugi::xml_node& parent, const pugi::xml_node& child)
{
    ZLR_LOG(UniLogSeverityLevel::Note,
            "Warning: " << parent.name() << " has unknown node " << child.name());
}

// Walks the element children; `fill` answers false for a name it does not
// know, which is noted and passed over.
template <typename Fill>
void readNamedChildren(const pugi::xml_node& node, Fill fill)
{
    for (const pugi::xml_node& child : node.children()) {
        if (isElement(child) && !fill(child)) {
            warnUnknownChild(node, child);
        }
    }
}

// The list element inside a list node, or null after noting its absence.
pugi::xml_node listElement(const pugi::xml_node& node, const char* list_name, const char* tail)
{
    const pugi::xml_node list = node.child(list_name);
    if (!list) {
        ZLR_LOG(UniLogSeverityLevel::Note, "Warning: " << node.name() << tail);
    }
    return list;
}

std::string unquoted(std::string text)
{
    if (!text.empty() && text.front() == '"') {
        text.erase(0, 1);
        if (!text.empty() && text.back() == '"') {
            text.pop_back();
        }
    } else if (!text.empty() && text.back() == '"') {
        text.pop_back();
    }
    return text;
}

} // namespace

const char* propertyTypeElementName(Property::Type type)
{
    if (type < 0 || static_cast<std::size_t>(type) >= TYPE_ELEMENT_NAMES.size()) {
        return nullptr;
    }
    return TYPE_ELEMENT_NAMES[static_cast<std::size_t>(type)];
}

Property::Type propertyTypeFromElementName(const std::string& name)
{
    for (std::size_t code = 1; code < TYPE_ELEMENT_NAMES.size(); ++code) {
        if (name == TYPE_ELEMENT_NAMES[code]) {
            return static_cast<Property::Type>(code);
        }
    }
    return Property::NONE;
}

pugi::xml_node Property::writeTo(pugi::xml_node parent) const
{
    const xpugi::xml_element element = xpugi::append_child_element(parent, "Property");
    ZLR_ASSERT(element);
    xpugi::set_attribute(element, "name", m_name);

    const char* type_name = propertyTypeElementName(m_type);
    if (type_name == nullptr) {
        if (m_type != NONE) {
            ZLR_LOG(UniLogSeverityLevel::Failure, "Unknown property data type " << m_type);
        }
        return element;
    }
    const xpugi::xml_element type = xpugi::append_child_element(element, type_name);
    ZLR_ASSERT(type);
    writeValue(type);
    return element;
}

void Property::writeValue(pugi::xml_node type) const
{
    switch (m_type) {
    case STRING_VALUE:
        if (!m_type_detail.empty()) {
            xpugi::set_attribute(type, "format", m_type_detail);
        }
        xpugi::set_text(type, "\"" + m_value + "\"");
        break;
    case ENUM_VALUE:
        xpugi::set_attribute(type, "enum", m_type_detail);
        xpugi::set_text(type, m_value);
        break;
    case RANGE_VALUE: {
        const Range& range = complexAs<Range>();
        const std::pair<const char*, std::string> children[] = {
            {"RangeMin", numberText(range.m_min)},
            {"RangeMinUnit", range.m_min_unit},
            {"RangeMax", numberText(range.m_max)},
            {"RangeMaxUnit", range.m_max_unit},
        };
        for (const auto& [name, text] : children) {
            const xpugi::xml_element range_element = xpugi::append_child_element(type, name);
            ZLR_ASSERT(range_element);
            xpugi::set_text(range_element, text);
        }
        break;
    }
    case SCALAR_VALUE: {
        const Scalar& scalar = complexAs<Scalar>();
        const xpugi::xml_element value_node = xpugi::append_child_element(type, "Value");
        ZLR_ASSERT(value_node);
        xpugi::set_text(value_node, numberText(scalar.m_val));
        const xpugi::xml_element unit_node = xpugi::append_child_element(type, "Unit");
        ZLR_ASSERT(unit_node);
        xpugi::set_text(unit_node, scalar.m_unit);
        break;
    }
    case RATIONAL_VALUE: {
        const Rational& rational = complexAs<Rational>();
        const xpugi::xml_element num_node = xpugi::append_child_element(type, "Numerator");
        ZLR_ASSERT(num_node);
        xpugi::set_text(num_node, std::to_string(rational.m_numerator));
        const xpugi::xml_element den_node = xpugi::append_child_element(type, "Denominator");
        ZLR_ASSERT(den_node);
        xpugi::set_text(den_node, std::to_string(rational.m_denominator));
        const xpugi::xml_element unit_node = xpugi::append_child_element(type, "Unit");
        ZLR_ASSERT(unit_node);
        xpugi::set_text(unit_node, rational.m_unit);
        break;
    }
    case DECORATED_NUMBER: {
        const DecoratedNumber& number = complexAs<DecoratedNumber>();
        if (!number.m_prefix.empty()) {
            const xpugi::xml_element prefix_element = xpugi::append_child_element(type, "Prefix");
            ZLR_ASSERT(prefix_element);
            xpugi::set_text(prefix_element, number.m_prefix);
        }
        const xpugi::xml_element value_element = xpugi::append_child_element(type, "Value");
        ZLR_ASSERT(value_element);
        xpugi::set_text(value_element, numberText(number.m_val));
        if (!number.m_suffix.empty()) {
            const xpugi::xml_element suffix_element = xpugi::append_child_element(type, "Suffix");
            ZLR_ASSERT(suffix_element);
            xpugi::set_text(suffix_element, number.m_suffix);
        }
        break;
    }
    case POINT: {
        const Point& point = complexAs<Point>();
        const xpugi::xml_element x_element = xpugi::append_child_element(type, "x");
        ZLR_ASSERT(x_element);
        xpugi::set_text(x_element, numberText(point.first));
        const xpugi::xml_element y_element = xpugi::append_child_element(type, "y");
        ZLR_ASSERT(y_element);
        xpugi::set_text(y_element, numberText(point.second));
        break;
    }
    case DOUBLE_LIST_VALUE: {
        const xpugi::xml_element list_element = xpugi::append_child_element(type, "DoubleList");
        ZLR_ASSERT(list_element);
        for (const double value : complexAs<ValueList<double>>().m_values) {
            const xpugi::xml_element item_element = xpugi::append_child_element(list_element, "Item");
            ZLR_ASSERT(item_element);
            xpugi::set_text(item_element, numberText(value));
        }
        break;
    }
    case STRING_LIST_VALUE: {
        const xpugi::xml_element list_element = xpugi::append_child_element(type, "StringList");
        ZLR_ASSERT(list_element);
        for (const std::string& value : complexAs<ValueList<std::string>>().m_values) {
            const xpugi::xml_element item_element = xpugi::append_child_element(list_element, "Item");
            ZLR_ASSERT(item_element);
            xpugi::set_text(item_element, value);
        }
        break;
    }
    case POINT_LIST_VALUE: {
        const xpugi::xml_element list_element = xpugi::append_child_element(type, "PointList");
        ZLR_ASSERT(list_element);
        for (const Point& point : complexAs<ValueList<Point>>().m_values) {
            const xpugi::xml_element point_element =
                xpugi::append_child_element(list_element, "Point");
            ZLR_ASSERT(point_element);
            const xpugi::xml_element x_element = xpugi::append_child_element(point_element, "x");
            ZLR_ASSERT(x_element);
            xpugi::set_text(x_element, numberText(point.first));
            const xpugi::xml_element y_element = xpugi::append_child_element(point_element, "y");
            ZLR_ASSERT(y_element);
            xpugi::set_text(y_element, numberText(point.second));
        }
        break;
    }
    case CHANNEL_ID_LIST: {
        const xpugi::xml_element list_element = xpugi::append_child_element(type, "ChannelIDList");
        ZLR_ASSERT(list_element);
        for (const std::uint64_t id : complexAs<ValueList<std::uint64_t>>().m_values) {
            const xpugi::xml_element id_element =
                xpugi::append_child_element(list_element, "ChannelID");
            ZLR_ASSERT(id_element);
            xpugi::set_text(id_element, std::to_string(id));
        }
        break;
    }
    case PROPERTY_LIST_VALUE:
        for (const Property& item : complexAs<PropertyList>()) {
            item.writeTo(type);
        }
        break;
    default:
        // The simple types carry their text as it stands, nothing when empty.
        xpugi::set_text(type, m_value);
        break;
    }
}

bool Property::readFrom(const pugi::xml_node& node, double context)
{
    if (!isElement(node) || !named(node, "Property")) {
        ZLR_LOG(UniLogSeverityLevel::Error, "Error parsing Property");
        return false;
    }
    const pugi::xml_attribute name = node.attribute("name");
    if (!name) {
        ZLR_LOG(UniLogSeverityLevel::Error, "Error parsing name attribute from Property");
        return false;
    }
    m_name = name.value();

    // Every element child is read in turn, and the last one decides.
    bool result = false;
    for (const pugi::xml_node& child : node.children()) {
        if (isElement(child)) {
            result = readTypeDefiningNode(child, context);
        }
    }
    if (!result) {
        ZLR_LOG(UniLogSeverityLevel::Error,
                "Error: Property " << m_name << " has no supported type defining node");
    }
    return result;
}

bool Property::readTypeDefiningNode(const pugi::xml_node& node, double context)
{
    const Type type = propertyTypeFromElementName(node.name());
    if (type == NONE) {
        ZLR_LOG(UniLogSeverityLevel::Failure, "Unknown property data type " << node.name());
    }
    m_type = NONE;
    m_value.clear();
    m_complex_value.reset();

    switch (type) {
    case NONE:
        ZLR_LOG(UniLogSeverityLevel::Note, "Warning: Property has unknown type " << node.name());
        return false;
    case STRING_VALUE:
        return readStringNode(node);
    case ENUM_VALUE:
        return readEnumNode(node);
    case RANGE_VALUE:
        return readRangeNode(node);
    case SCALAR_VALUE:
        return readScalarNode(node);
    case RATIONAL_VALUE:
        return readRationalNode(node);
    case DECORATED_NUMBER:
        return readDecoratedNumberNode(node);
    case POINT:
        return readPointNode(node);
    case DOUBLE_LIST_VALUE:
        return readDoubleListNode(node);
    case STRING_LIST_VALUE:
        return readStringListNode(node);
    case POINT_LIST_VALUE:
        return readPointListNode(node);
    case CHANNEL_ID_LIST:
        return readChannelIDListNode(node);
    case PROPERTY_LIST_VALUE:
        return readPropertyListNode(node, context);
    default:
        return readSimpleNode(node, type);
    }
}

bool Property::readSimpleNode(const pugi::xml_node& node, Type type)
{
    const pugi::xml_node first = node.first_child();
    if (!first) {
        return false;
    }
    m_value = xpugi::trimmed_text(first);
    m_type = type;
    return true;
}

bool Property::readStringNode(const pugi::xml_node& node)
{
    bool result = false;
    const pugi::xml_node first = node.first_child();
    if (first) {
        m_value = unquoted(xpugi::trimmed_text(first));
        m_type = STRING_VALUE;
        result = true;
    }
    m_type_detail = node.attribute("format").value();
    return result;
}

bool Property::readEnumNode(const pugi::xml_node& node)
{
    const pugi::xml_attribute enumeration = node.attribute("enum");
    if (!enumeration) {
        ZLR_LOG(UniLogSeverityLevel::Error, "Error parsing enum attribute from Property");
        return false;
    }
    const pugi::xml_node first = node.first_child();
    if (!first) {
        return false;
    }
    m_type_detail = xpugi::trim(enumeration.value());
    m_value = xpugi::trimmed_text(first);
    m_type = ENUM_VALUE;
    return true;
}

bool Property::readRangeNode(const pugi::xml_node& node)
{
    Range range;
    readNamedChildren(node, [&range](const pugi::xml_node& child) {
        if (named(child, "RangeMin")) {
            range.m_min = readDouble(child);
        } else if (named(child, "RangeMinUnit")) {
            range.m_min_unit = xpugi::trimmed_text(child);
        } else if (named(child, "RangeMax")) {
            range.m_max = readDouble(child);
        } else if (named(child, "RangeMaxUnit")) {
            range.m_max_unit = xpugi::trimmed_text(child);
        } else {
            return false;
        }
        return true;
    });
    setComplex(RANGE_VALUE, range);
    return true;
}

bool Property::readScalarNode(const pugi::xml_node& node)
{
    Scalar scalar;
    readNamedChildren(node, [&scalar](const pugi::xml_node& child) {
        if (named(child, "Value")) {
            scalar.m_val = readDouble(child);
        } else if (named(child, "Unit")) {
            scalar.m_unit = xpugi::trimmed_text(child);
        } else {
            return false;
        }
        return true;
    });
    setComplex(SCALAR_VALUE, scalar);
    return true;
}

bool Property::readRationalNode(const pugi::xml_node& node)
{
    // Read as written: the fields are taken as they stand, not reduced again.
    Rational rational;
    readNamedChildren(node, [&rational](const pugi::xml_node& child) {
        if (named(child, "Numerator")) {
            rational.m_numerator = readInt64(child);
        } else if (named(child, "Denominator")) {
            rational.m_denominator = readInt64(child);
        } else if (named(child, "Unit")) {
            rational.m_unit = xpugi::trimmed_text(child);
        } else {
            return false;
        }
        return true;
    });
    setComplex(RATIONAL_VALUE, rational);
    return true;
}

bool Property::readDecoratedNumberNode(const pugi::xml_node& node)
{
    DecoratedNumber number;
    readNamedChildren(node, [&number](const pugi::xml_node& child) {
        if (named(child, "Prefix")) {
            number.m_prefix = xpugi::trimmed_text(child);
        } else if (named(child, "Value")) {
            number.m_val = readDouble(child);
        } else if (named(child, "Suffix")) {
            number.m_suffix = xpugi::trimmed_text(child);
        } else {
            return false;
        }
        return true;
    });
    setComplex(DECORATED_NUMBER, number);
    return true;
}

bool Property::readPointNode(const pugi::xml_node& node)
{
    Point point{0.0, 0.0};
    readNamedChildren(node, [&point](const pugi::xml_node& child) {
        if (named(child, "x")) {
            point.first = readDouble(child);
        } else if (named(child, "y")) {
            point.second = readDouble(child);
        } else {
            return false;
        }
        return true;
    });
    setComplex(POINT, point);
    return true;
}

bool Property::readDoubleListNode(const pugi::xml_node& node)
{
    // The double list notes its absence with the string list's words.
    ValueList<double> list;
    for (const pugi::xml_node& item :
         listElement(node, "DoubleList", " has no StringList node").children("Item")) {
        list.m_values.push_back(readDouble(item));
    }
    setComplex(DOUBLE_LIST_VALUE, list);
    return true;
}

bool Property::readStringListNode(const pugi::xml_node& node)
{
    ValueList<std::string> list;
    for (const pugi::xml_node& item :
         listElement(node, "StringList", " has no StringList node").children("Item")) {
        list.m_values.push_back(xpugi::trimmed_text(item));
    }
    setComplex(STRING_LIST_VALUE, list);
    return true;
}

bool Property::readPointListNode(const pugi::xml_node& node)
{
    ValueList<Point> list;
    const pugi::xml_node points = listElement(node, "PointList", " has no PointList node");
    readNamedChildren(points, [&list](const pugi::xml_node& child) {
        if (!named(child, "Point")) {
            return false;
        }
        const xpugi::xml_element x = xpugi::first_child_element(child, "x");
        const xpugi::xml_element y = xpugi::first_child_element(child, "y");
        bool okay = x && y;
        Point point{0.0, 0.0};
        if (okay) {
            // Unlike every other reader, a bad number here only drops the point.
            try {
                point = {readDouble(x), readDouble(y)};
            } catch (const std::exception&) {
                okay = false;
            }
        }
        ZLR_ASSERT(okay);
        if (!okay) {
            ZLR_LOG(UniLogSeverityLevel::Failure, "PointList::Point has incompatible content");
            return true;
        }
        list.m_values.push_back(point);
        return true;
    });
    setComplex(POINT_LIST_VALUE, list);
    return true;
}

bool Property::readChannelIDListNode(const pugi::xml_node& node)
{
    ValueList<std::uint64_t> list;
    for (const pugi::xml_node& item :
         listElement(node, "ChannelIDList", " has no ChannelIDList node").children("ChannelID")) {
        list.m_values.push_back(item.text().as_ullong(0));
    }
    setComplex(CHANNEL_ID_LIST, list);
    return true;
}

bool Property::readPropertyListNode(const pugi::xml_node& node, double context)
{
    PropertyList list;
    list.clear();
    for (const pugi::xml_node& child : node.children()) {
        if (!isElement(child)) {
            continue;
        }
        if (named(child, "Property")) {
            Property item;
            if (item.readFrom(child, context)) {
                list.push_back(item);
            }
        } else {
            ZLR_LOG(UniLogSeverityLevel::Failure,
                    "Warning: " << node.name() << " has unknown node " << child.name());
        }
    }
    setComplex(PROPERTY_LIST_VALUE, list);
    return true;
}

} // namespace zlr
