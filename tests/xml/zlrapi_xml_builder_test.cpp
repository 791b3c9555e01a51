#include "zlrapi_xml_builder.h"

#include "zlr_assert_capture.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <functional>
#include <limits>
#include <sstream>
#include <string>

namespace zlr {
namespace {

const std::string DECLARATION = "<?xml version=\"1.0\"?>";

std::string build(const std::function<void(XmlBuilder&)>& body)
{
    std::ostringstream out;
    XmlBuilder builder(out);
    body(builder);
    builder.flush();
    return out.str();
}

std::string doubleAttribute(double value)
{
    return build([value](XmlBuilder& b) { b.child("D", {XmlAttribute("v", value)}); });
}

// Nesting, attributes at the opening and added later are drawn by the random
// documents; here what they never draw.
TEST(XmlBuilder, WritesElementsAndAttributesByteForByte)
{
    struct Case {
        const char* what;
        std::function<void(XmlBuilder&)> body;
        std::string expected;
    };
    const Case cases[] = {
        {"declaration only", [](XmlBuilder&) {}, DECLARATION},
        {"explicit close is final",
         [](XmlBuilder& b) {
             XmlBuilderElement root = b.child("A");
             root.close();
             root.close();
         },
         DECLARATION + "<A/>"},
        {"escaping of the five characters only",
         [](XmlBuilder& b) { b.child("E", {XmlAttribute("v", "a\"b&c'd<e>f\n\t\x01\xC3\xA4g")}); },
         DECLARATION + "<E v=\"a&quot;b&amp;c&apos;d&lt;e&gt;f\n\t\x01\xC3\xA4g\"/>"},
        {"names are not escaped",
         [](XmlBuilder& b) { b.child("a&b", {XmlAttribute("c<d", "")}); },
         DECLARATION + "<a&b c<d=\"\"/>"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(build(c.body), c.expected) << c.what;
    }
}

// Finite values of every kind are drawn by the random documents; here the
// zeros, the smallest value and the texts of the values that are no number.
TEST(XmlBuilder, PrintsDoublesLikePrintfWithSeventeenDigits)
{
    const double quiet_nan = std::numeric_limits<double>::quiet_NaN();
    const double signalling_nan = std::numeric_limits<double>::signaling_NaN();
    const double default_nan = std::bit_cast<double>(std::uint64_t{0xFFF8000000000000});
    const double negative_payload_nan = std::bit_cast<double>(std::uint64_t{0xFFF8000000000001});
    const double negative_signalling_nan =
        std::bit_cast<double>(std::uint64_t{0xFFF0000000000001});
    const struct {
        double value;
        const char* text;
    } cases[] = {
        {0.0, "0"},
        {-0.0, "-0"},
        {std::numeric_limits<double>::denorm_min(), "4.9406564584124654e-324"},
        {std::numeric_limits<double>::infinity(), "inf"},
        {-std::numeric_limits<double>::infinity(), "-inf"},
        {quiet_nan, "nan"},
        {signalling_nan, "nan(snan)"},
        {default_nan, "-nan(ind)"},
        {negative_payload_nan, "-nan"},
        {negative_signalling_nan, "-nan(snan)"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(doubleAttribute(c.value), DECLARATION + "<D v=\"" + c.text + "\"/>") << c.text;
    }
}

TEST(XmlBuilder, LongNamesAndStepsBackOnTheStream)
{
    for (const std::size_t length : {764u, 765u, 766u, 767u, 768u, 769u, 2000u}) {
        const std::string name(length, 'n');
        EXPECT_EQ(build([&](XmlBuilder& b) { b.child(name); }), DECLARATION + "<" + name + "/>")
            << length;
        EXPECT_EQ(build([&](XmlBuilder& b) {
                      XmlBuilderElement root = b.child(name);
                      root.addAttribute(XmlAttribute("a", "b"));
                      root.child(name);
                  }),
                  DECLARATION + "<" + name + " a=\"b\"><" + name + "/></" + name + ">")
            << length;
    }

    // A close right after a flush finds the buffer empty and steps back on
    // the stream itself.
    std::ostringstream out;
    XmlBuilder builder(out);
    {
        XmlBuilderElement root = builder.child("Root");
        builder.flush();
        EXPECT_EQ(out.str(), DECLARATION + "<Root>");
        root.addAttribute(XmlAttribute("a", std::uint64_t{5}));
        builder.flush();
    }
    builder.flush();
    EXPECT_EQ(out.str(), DECLARATION + "<Root a=\"5\"/>");
}

TEST(XmlBuilder, LateAttributeIsReportedAndBreaksTheOutput)
{
    test::AssertCapture asserts;
    const std::string text = build([](XmlBuilder& b) {
        XmlBuilderElement root = b.child("Root");
        root.child("Child");
        root.addAttribute(XmlAttribute("a", "b"));
        root.addAttribute(XmlAttribute("", "c"));
    });
    EXPECT_EQ(asserts.reported(),
              (std::vector<std::string>{"!m_has_children", "!m_has_children",
                                        "!a.m_name.empty()"}));
    // The step back ate the ">" of the child's "/>".
    EXPECT_EQ(text, DECLARATION + "<Root><Child/ a=\"b\" =\"c\"></Root>");
}

} // namespace
} // namespace zlr
