#include "zlrapi_property_xml.h"

#include "xpugixml.h"
#include "zlr_assert_capture.h"
#include "zlr_log_capture.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace zlr {
namespace {

using Messages = std::vector<std::pair<unsigned, std::string>>;

struct ReadResult {
    bool ok = false;
    Property property;
    Messages messages;
};

ReadResult read(const std::string& xml)
{
    pugi::xml_document document;
    EXPECT_TRUE(xpugi::parse(document, xml.c_str())) << xml;
    test::LogCapture capture;
    ReadResult result;
    result.ok = result.property.readFrom(document.first_child(), 0.0);
    result.messages = capture.messages();
    return result;
}

std::string property(const std::string& inner)
{
    return "<Property name=\"a\">" + inner + "</Property>";
}

TEST(PropertyXmlReader, SimpleValuesAndTheirQuirks)
{
    const struct {
        std::string xml;
        bool ok;
        Property::Type type;
        std::string value;
        std::string detail;
        Messages messages;
    } cases[] = {
        {"<Property name=\"a\"/>", false, Property::NONE, "", "",
         {{6, "Error: Property a has no supported type defining node"}}},
        {"<Other name=\"a\"><StringValue>x</StringValue></Other>", false, Property::NONE, "", "",
         {{6, "Error parsing Property"}}},
        {"<Property><StringValue>x</StringValue></Property>", false, Property::NONE, "", "",
         {{6, "Error parsing name attribute from Property"}}},
        {property("<DoubleValue> 1.5 </DoubleValue>"), true, Property::DOUBLE_VALUE, "1.5", "", {}},
        {property("<DoubleValue>1.5</DoubleValue><Foo/>"), false, Property::NONE, "", "",
         {{5, "Unknown property data type Foo"},
          {1, "Warning: Property has unknown type Foo"},
          {6, "Error: Property a has no supported type defining node"}}},
        {property("<Foo/><SignedValue>7</SignedValue>text"), true, Property::SIGNED_VALUE, "7", "",
         {{5, "Unknown property data type Foo"}, {1, "Warning: Property has unknown type Foo"}}},
        {property("<DoubleValue/>"), false, Property::NONE, "", "",
         {{6, "Error: Property a has no supported type defining node"}}},
        {property("<DoubleValue>not a number</DoubleValue>"), true, Property::DOUBLE_VALUE,
         "not a number", "", {}},
        {property("<BooleanValue>true</BooleanValue>"), true, Property::BOOLEAN_VALUE, "true", "", {}},
        {property("<ChannelID><x> 5 </x>6</ChannelID>"), true, Property::CHANNEL_ID, "5", "", {}},
        {property("<StringValue>\"</StringValue>"), true, Property::STRING_VALUE, "", "", {}},
        {property("<StringValue>  \" x \"  </StringValue>"), true, Property::STRING_VALUE, " x ",
         "", {}},
        {property("<StringValue>\"\"x\"\"</StringValue>"), true, Property::STRING_VALUE, "\"x\"",
         "", {}},
        {property("<StringValue>plain</StringValue>"), true, Property::STRING_VALUE, "plain", "", {}},
        {property("<StringValue format=\" f \">\"v\"</StringValue>"), true,
         Property::STRING_VALUE, "v", " f ", {}},
        {property("<StringValue format=\"f\"/>"), false, Property::NONE, "", "f",
         {{6, "Error: Property a has no supported type defining node"}}},
        {property("<EnumValue enum=\" Mode \"> Fast </EnumValue>"), true, Property::ENUM_VALUE,
         "Fast", "Mode", {}},
        {property("<EnumValue>Fast</EnumValue>"), false, Property::NONE, "", "",
         {{6, "Error parsing enum attribute from Property"},
          {6, "Error: Property a has no supported type defining node"}}},
        {property("<EnumValue enum=\"E\"/>"), false, Property::NONE, "", "",
         {{6, "Error: Property a has no supported type defining node"}}},
    };
    for (const auto& c : cases) {
        const ReadResult r = read(c.xml);
        EXPECT_EQ(r.ok, c.ok) << c.xml;
        EXPECT_EQ(r.property.getType(), c.type) << c.xml;
        EXPECT_EQ(r.property.getStringValue(), c.value) << c.xml;
        EXPECT_EQ(r.property.getTypeDetail(), c.detail) << c.xml;
        EXPECT_EQ(r.messages, c.messages) << c.xml;
    }
}

TEST(PropertyXmlReader, NamedChildrenInAnyOrder)
{
    ReadResult r = read(property("<RangeValue><RangeMaxUnit> s </RangeMaxUnit><RangeMax>2</RangeMax>"
                                 "<Bad/><RangeMin>-1e3</RangeMin></RangeValue>"));
    ASSERT_TRUE(r.ok);
    const Range range = r.property.getRangeValue();
    EXPECT_EQ(range.m_min, -1000.0);
    EXPECT_EQ(range.m_max, 2.0);
    EXPECT_EQ(range.m_min_unit, "");
    EXPECT_EQ(range.m_max_unit, "s");
    EXPECT_EQ(r.messages, (Messages{{1, "Warning: RangeValue has unknown node Bad"}}));

    r = read(property("<Point><x>1</x></Point>"));
    ASSERT_TRUE(r.ok);
    EXPECT_EQ(r.property.getPointValue(), (Point{1.0, 0.0}));

    r = read(property("<RationalValue><Denominator>0x10</Denominator><Numerator>-010</Numerator>"
                      "</RationalValue>"));
    ASSERT_TRUE(r.ok);
    EXPECT_EQ(r.property.getRationalValue().m_numerator, -8);
    EXPECT_EQ(r.property.getRationalValue().m_denominator, 16) << "not reduced when read";

    r = read(property("<DecoratedNumber><Suffix>%</Suffix><Value>3</Value></DecoratedNumber>"));
    ASSERT_TRUE(r.ok);
    EXPECT_EQ(r.property.getDecoratedNumberValue().m_suffix, "%");
    EXPECT_EQ(r.property.getDecoratedNumberValue().m_prefix, "");
    EXPECT_EQ(r.property.getDecoratedNumberValue().m_val, 3.0);

    r = read(property("<ScalarValue><Unit>Hz</Unit></ScalarValue>"));
    ASSERT_TRUE(r.ok);
    EXPECT_EQ(r.property.getScalarValue(), Scalar(0.0, "Hz"));
}

TEST(PropertyXmlReader, Lists)
{
    ReadResult r = read(property("<DoubleListValue><Other/></DoubleListValue>"));
    ASSERT_TRUE(r.ok);
    EXPECT_TRUE(r.property.getDoubleListValue().empty());
    EXPECT_EQ(r.messages, (Messages{{1, "Warning: DoubleListValue has no StringList node"}}));

    r = read(property("<StringListValue/>"));
    ASSERT_TRUE(r.ok);
    EXPECT_EQ(r.messages, (Messages{{1, "Warning: StringListValue has no StringList node"}}));
    r = read(property("<PointListValue/>"));
    ASSERT_TRUE(r.ok);
    EXPECT_EQ(r.messages, (Messages{{1, "Warning: PointListValue has no PointList node"}}));
    r = read(property("<ChannelIDList/>"));
    ASSERT_TRUE(r.ok);
    EXPECT_EQ(r.messages, (Messages{{1, "Warning: ChannelIDList has no ChannelIDList node"}}));

    r = read(property("<StringListValue><StringList><Item> a </Item><Skip>b</Skip><Item/>"
                      "<Item>c<i>d</i></Item></StringList></StringListValue>"));
    ASSERT_TRUE(r.ok);
    EXPECT_EQ(r.property.getStringListValue(), (std::vector<std::string>{"a", "", "cd"}));
    EXPECT_TRUE(r.messages.empty());

    r = read(property("<ChannelIDList><ChannelIDList><ChannelID>17</ChannelID><X>1</X>"
                      "<ChannelID> 0x20 </ChannelID><ChannelID>junk</ChannelID>"
                      "</ChannelIDList></ChannelIDList>"));
    ASSERT_TRUE(r.ok);
    EXPECT_EQ(r.property.getChannelIDListValue(), (std::vector<std::uint64_t>{17, 32, 0}));

    test::AssertCapture asserts;
    r = read(property("<PointListValue><PointList><Point><x>1</x><y>2</y></Point><Pt/>"
                      "<Point><x>3</x></Point><Point><x>a</x><y>4</y></Point>"
                      "<Point><y>6</y><x>5</x></Point></PointList></PointListValue>"));
    ASSERT_TRUE(r.ok);
    EXPECT_EQ(r.property.getPointListValue(), (std::vector<Point>{{1.0, 2.0}, {5.0, 6.0}}));
    EXPECT_EQ(r.messages, (Messages{{1, "Warning: PointList has unknown node Pt"},
                                    {5, "PointList::Point has incompatible content"},
                                    {5, "PointList::Point has incompatible content"}}));
    EXPECT_EQ(asserts.reported(), (std::vector<std::string>{"okay", "okay"}));

    r = read(property("<PropertyListValue><Property name=\"b\"><SignedValue>1</SignedValue>"
                      "</Property><Junk/><Property name=\"c\"/><Property name=\"d\">"
                      "<BooleanValue>True</BooleanValue></Property></PropertyListValue>"));
    ASSERT_TRUE(r.ok);
    const PropertyList list = r.property.getPropertyListValue();
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list[0], Property("b", std::int32_t{1}));
    EXPECT_EQ(list[1], Property("d", true));
    EXPECT_EQ(r.messages, (Messages{{5, "Warning: PropertyListValue has unknown node Junk"},
                                    {6, "Error: Property c has no supported type defining node"}}));
}

TEST(PropertyXmlReader, TypeNodeReadDirectlyKeepsTheName)
{
    pugi::xml_document document;
    ASSERT_TRUE(xpugi::parse(document, "<ScalarValue><Value>2</Value><Unit>V</Unit></ScalarValue>"));
    Property p("kept");
    ASSERT_TRUE(p.readTypeDefiningNode(document.first_child(), 0.0));
    EXPECT_EQ(p.getName(), "kept");
    EXPECT_EQ(p.getScalarValue(), Scalar(2.0, "V"));

    // A failed node leaves type 0 and no value.
    ASSERT_TRUE(xpugi::parse(document, "<UnsignedValue/>"));
    EXPECT_FALSE(p.readTypeDefiningNode(document.first_child(), 0.0));
    EXPECT_EQ(p.getType(), Property::NONE);
    EXPECT_EQ(p.getStringValue(), "");
}

} // namespace
} // namespace zlr
