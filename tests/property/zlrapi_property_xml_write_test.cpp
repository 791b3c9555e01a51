#include "zlrapi_property_xml.h"

#include "xpugixml.h"
#include "zlr_assert_capture.h"
#include "zlr_log_capture.h"

#include <gtest/gtest.h>

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
