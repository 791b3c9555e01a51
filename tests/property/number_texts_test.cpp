// The kit's number conversions, and one row for each caller: a text without
// a number, or one out of range, throws the kit's own text wherever it is read.
#include "xpugixml.h"
#include "zlr_log_capture.h"
#include "zlrapi_numbers.h"
#include "zlrapi_property_xml.h"
#include "zlrfw_host_version.h"

#include <gtest/gtest.h>

#include <bit>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>

namespace zlr {
namespace {

template <typename Value>
std::string show(const Value& value)
{
    std::ostringstream out;
    out << value;
    return out.str();
}

// The value as text, or the kind of exception with its text.
std::string outcome(const std::function<std::string()>& call)
{
    try {
        return call();
    } catch (const std::invalid_argument& e) {
        return std::string("invalid_argument: ") + e.what();
    } catch (const std::out_of_range& e) {
        return std::string("out_of_range: ") + e.what();
    }
}

Property withText(Property::Type type, const char* text)
{
    Property p("p");
    p.setTextValue(type, text);
    return p;
}

std::string readFrom(const std::string& inner)
{
    pugi::xml_document document;
    const std::string text = "<Property name=\"p\">" + inner + "</Property>";
    EXPECT_TRUE(xpugi::parse(document, text.c_str()));
    Property p;
    test::LogCapture quiet;
    return p.readFrom(document.first_child(), 0.0) ? "read" : "refused";
}

TEST(NumberTexts, ConversionsAndTheirCallers)
{
    const std::string invalid = "invalid_argument: ", range = "out_of_range: ";
    const struct {
        std::function<std::string()> call;
        std::string expected;
    } cases[] = {
        {[] { return show(stolChecked("0x10", 0)); }, "16"},
        {[] { return show(stolChecked("")); }, invalid + "invalid stol argument"},
        {[] { return show(stolChecked("99999999999999999999")); },
         range + "stol argument out of range"},
        {[] { return show(stoulChecked("0X1f", 0)); }, "31"},
        {[] { return show(stoulChecked("x1")); }, invalid + "invalid stoul argument"},
        {[] { return show(stoulChecked("99999999999999999999")); },
         range + "stoul argument out of range"},
        {[] { return show(stollChecked("x")); }, invalid + "invalid stoll argument"},
        {[] { return show(stollChecked("99999999999999999999")); },
         range + "stoll argument out of range"},
        {[] { return show(stoullChecked("-")); }, invalid + "invalid stoull argument"},
        {[] { return show(stoullChecked("99999999999999999999")); },
         range + "stoull argument out of range"},
        {[] { return show(stodChecked("-inf")); }, "-inf"},
        {[] { return show(stodChecked("one")); }, invalid + "invalid stod argument"},
        {[] { return show(stodChecked("1e999")); }, range + "stod argument out of range"},
        // A subnormal number text sets ERANGE as well.
        {[] { return show(stodChecked("4.9406564584124654e-324")); },
         range + "stod argument out of range"},
        // The callers.
        {[] { return show(withText(Property::SIGNED_VALUE, "010").getIntValue()); }, "8"},
        {[] { return show(withText(Property::SIGNED_VALUE, "abc").getIntValue()); },
         invalid + "invalid stol argument"},
        {[] { return show(withText(Property::UNSIGNED_VALUE, "0X1f").getUnsignedIntValue()); },
         "31"},
        {[] { return show(withText(Property::UNSIGNED_VALUE, "99999999999999999999").getUnsignedIntValue()); },
         range + "stoul argument out of range"},
        {[] { return show(withText(Property::DOUBLE_VALUE, "one").getDoubleValue()); },
         invalid + "invalid stod argument"},
        {[] { return show(readFrom("<ScalarValue><Value/></ScalarValue>")); },
         invalid + "invalid stod argument"},
        {[] { return show(readFrom("<RationalValue><Numerator>x</Numerator></RationalValue>")); },
         invalid + "invalid stoll argument"},
        {[] { return show(framework::isVersionAtLeast("5.x", "5.6")); },
         invalid + "invalid stol argument"},
    };
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        EXPECT_EQ(outcome(cases[i].call), cases[i].expected) << "row " << i;
    }
}

// stodChecked takes a short way for plain decimals; whatever the text, it
// must answer what strtod answers.
TEST(NumberTexts, StodAnswersAsStrtodOnRandomTexts)
{
    const auto reference = [](const std::string& text) -> std::string {
        char* end = nullptr;
        errno = 0;
        const double value = std::strtod(text.c_str(), &end);
        if (end == text.c_str()) return "invalid";
        if (errno == ERANGE) return "range";
        return show(std::bit_cast<std::uint64_t>(value));
    };
    const auto answer = [](const std::string& text) -> std::string {
        try {
            return show(std::bit_cast<std::uint64_t>(stodChecked(text)));
        } catch (const std::invalid_argument&) {
            return "invalid";
        } catch (const std::out_of_range&) {
            return "range";
        }
    };
    static const char* const formats[] = {"%.17g", "%g", "%.3e", "%.0f", "%.25f"};
    static const char* const decorations[] = {"", " ", "+", "-", "x", "e", "0x", "inf", "e-330"};
    std::mt19937_64 random(29);
    for (int i = 0; i < 20000; ++i) {
        const double value = std::ldexp(std::uniform_real_distribution<double>(-1.0, 1.0)(random),
                                        static_cast<int>(random() % 2200) - 1100);
        char text[400];
        std::snprintf(text, sizeof text, formats[random() % std::size(formats)], value);
        std::string decorated = text;
        const std::string decoration = decorations[random() % std::size(decorations)];
        decorated.insert(random() % 2 ? 0 : decorated.size(), decoration);
        EXPECT_EQ(answer(decorated), reference(decorated)) << decorated;
    }
}

} // namespace
} // namespace zlr
