#include "zlrapi_property_xml.h"

#include "xpugixml.h"
#include "zlr_assert_capture.h"
#include "zlr_log_capture.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <string>

namespace zlr {
namespace {

std::string written(const Property& property)
{
    pugi::xml_document document;
    const pugi::xml_node element = property.writeTo(document);
    EXPECT_EQ(element, document.first_child());
    return xpugi::to_xml(element, false);
}

Property with(const std::function<void(Property&)>& set)
{
    Property p("p");
    set(p);
    return p;
}

TEST(PropertyXmlWriter, WritesEachTypeByteForByte)
{
    const struct {
        Property property;
        const char* xml;
    } cases[] = {
        {Property("p"), "<Property name=\"p\"/>"},
        {Property("a&b\"", "x < y"),
         "<Property name=\"a&amp;b&quot;\"><StringValue>\"x &lt; y\"</StringValue></Property>"},
        {Property("p", ""), "<Property name=\"p\"><StringValue>\"\"</StringValue></Property>"},
        {Property("p", "\"q\""),
         "<Property name=\"p\"><StringValue>\"\"q\"\"</StringValue></Property>"},
        {Property("p", std::int32_t{-3}),
         "<Property name=\"p\"><SignedValue>-3</SignedValue></Property>"},
        {Property("p", std::uint32_t{3}),
         "<Property name=\"p\"><UnsignedValue>3</UnsignedValue></Property>"},
        {Property("p", true), "<Property name=\"p\"><BooleanValue>True</BooleanValue></Property>"},
        {with([](Property& p) { p.setValue(0.1); }),
         "<Property name=\"p\"><DoubleValue>0.10000000000000001</DoubleValue></Property>"},
        {with([](Property& p) { p.setValue(-0.0); }),
         "<Property name=\"p\"><DoubleValue>-0</DoubleValue></Property>"},
        {with([](Property& p) { p.setTextValue(Property::COLOR_VALUE, ""); }),
         "<Property name=\"p\"><ColorValue/></Property>"},
        {with([](Property& p) { p.setTextValue(Property::SIGNED_VALUE64, "-9"); }),
         "<Property name=\"p\"><SignedValue64>-9</SignedValue64></Property>"},
        {Property("p", std::string("Fast"), std::string("Mode")),
         "<Property name=\"p\"><EnumValue enum=\"Mode\">Fast</EnumValue></Property>"},
        {with([](Property& p) {
             pugi::xml_document d;
             ASSERT_TRUE(xpugi::parse(d, "<Property name=\"p\"><StringValue format=\"path\">\"v\"</StringValue></Property>"));
             ASSERT_TRUE(p.readFrom(d.first_child(), 0.0));
         }),
         "<Property name=\"p\"><StringValue format=\"path\">\"v\"</StringValue></Property>"},
        {with([](Property& p) { p.setValue(Range(1e300, 1.0 / 3.0, "Hz", "")); }),
         "<Property name=\"p\"><RangeValue><RangeMin>1.0000000000000001e+300</RangeMin>"
         "<RangeMinUnit>Hz</RangeMinUnit><RangeMax>0.33333333333333331</RangeMax>"
         "<RangeMaxUnit/></RangeValue></Property>"},
        {with([](Property& p) { p.setValue(Scalar(std::numeric_limits<double>::infinity(), "")); }),
         "<Property name=\"p\"><ScalarValue><Value>inf</Value><Unit/></ScalarValue></Property>"},
        {with([](Property& p) { p.setValue(Rational(-4, 8, "s")); }),
         "<Property name=\"p\"><RationalValue><Numerator>-4</Numerator>"
         "<Denominator>8</Denominator><Unit>s</Unit></RationalValue></Property>"},
        {with([](Property& p) { p.setValue(DecoratedNumber(2.5, "", "")); }),
         "<Property name=\"p\"><DecoratedNumber><Value>2.5</Value></DecoratedNumber></Property>"},
        {with([](Property& p) { p.setValue(DecoratedNumber(2.5, "~", "%")); }),
         "<Property name=\"p\"><DecoratedNumber><Prefix>~</Prefix><Value>2.5</Value>"
         "<Suffix>%</Suffix></DecoratedNumber></Property>"},
        {with([](Property& p) { p.setPointValue({1.0, -2.0}); }),
         "<Property name=\"p\"><Point><x>1</x><y>-2</y></Point></Property>"},
        {with([](Property& p) { p.setDoubleList({{0.5, 1e-5}}); }),
         "<Property name=\"p\"><DoubleListValue><DoubleList><Item>0.5</Item>"
         "<Item>1.0000000000000001e-05</Item></DoubleList></DoubleListValue></Property>"},
        {with([](Property& p) { p.setDoubleList({}); }),
         "<Property name=\"p\"><DoubleListValue><DoubleList/></DoubleListValue></Property>"},
        {with([](Property& p) { p.setStringList({{"a b", ""}}); }),
         "<Property name=\"p\"><StringListValue><StringList><Item>a b</Item><Item/>"
         "</StringList></StringListValue></Property>"},
        {with([](Property& p) { p.setPointList({{{1.0, 2.0}}}); }),
         "<Property name=\"p\"><PointListValue><PointList><Point><x>1</x><y>2</y></Point>"
         "</PointList></PointListValue></Property>"},
        {with([](Property& p) { p.setChannelIDList({{17, 18446744073709551615ULL}}); }),
         "<Property name=\"p\"><ChannelIDList><ChannelIDList><ChannelID>17</ChannelID>"
         "<ChannelID>18446744073709551615</ChannelID></ChannelIDList></ChannelIDList></Property>"},
        {with([](Property& p) {
             PropertyList list;
             list.push_back(Property("a", std::int32_t{1}));
             list.push_back(Property("b"));
             p.setValue(list);
         }),
         "<Property name=\"p\"><PropertyListValue><Property name=\"a\"><SignedValue>1"
         "</SignedValue></Property><Property name=\"b\"/></PropertyListValue></Property>"},
    };
    test::AssertCapture asserts;
    for (const auto& c : cases) {
        EXPECT_EQ(written(c.property), c.xml);
    }
    EXPECT_TRUE(asserts.reported().empty());
}

TEST(PropertyXmlWriter, UnknownTypeCodeIsLoggedAndWritesNoChild)
{
    test::LogCapture capture;
    Property p("p");
    p.setTextValue(static_cast<Property::Type>(24), "x");
    EXPECT_EQ(written(p), "<Property name=\"p\"/>");
    EXPECT_EQ(capture.messages(), (std::vector<std::pair<unsigned, std::string>>{
                                      {5, "Unknown property data type 24"}}));
}

TEST(PropertyXmlWriter, NullParentIsReportedNotFatal)
{
    test::AssertCapture asserts;
    Property p("p");
    p.setValue(Scalar(1.0, "V"));
    EXPECT_FALSE(p.writeTo(pugi::xml_node()));
    EXPECT_EQ(asserts.reported(),
              (std::vector<std::string>{"element", "attribute", "success", "type", "value_node",
                                        "unit_node"}));
}

} // namespace
} // namespace zlr
