// Random values of every type: written, printed, parsed and read back, they
// come out deeply equal. Mangled documents never crash the reader.
#include "zlrapi_property_xml.h"

#include "xpugixml.h"
#include "zlr_log_capture.h"
#include "zlr_property_compare.h"

#include <gtest/gtest.h>

#include <bit>
#include <iostream>
#include <cmath>
#include <limits>
#include <random>
#include <stdexcept>
#include <string>

namespace zlr {
namespace {

class RandomProperties {
public:
    explicit RandomProperties(std::uint32_t seed) : m_random(seed) {}

    Property make(Property::Type type, int depth = 0)
    {
        Property p(text(0, 8, false));
        switch (type) {
        case Property::STRING_VALUE: {
            p.setValue(text(0, 20, true));
            // The format only comes from XML: read a node that carries one.
            const std::string format = pick(0, 1) ? attributeText() : "";
            if (!format.empty()) {
                pugi::xml_document d;
                pugi::xml_node node = d.append_child("StringValue");
                node.append_attribute("format").set_value(format.c_str());
                xpugi::set_text(node, "\"" + p.getStringValue() + "\"");
                EXPECT_TRUE(p.readTypeDefiningNode(node, 0.0));
            }
            break;
        }
        case Property::SIGNED_VALUE:
            p = Property(p.getName(), static_cast<std::int32_t>(m_random()));
            break;
        case Property::UNSIGNED_VALUE:
            p = Property(p.getName(), static_cast<std::uint32_t>(m_random()));
            break;
        case Property::DOUBLE_VALUE:
            p.setValue(number());
            break;
        case Property::BOOLEAN_VALUE:
            p.setValue(pick(0, 1) == 1);
            break;
        case Property::ENUM_VALUE:
            p.setEnumValue(trimmedText(1), xpugi::trim(attributeText()));
            break;
        case Property::RANGE_VALUE:
            p.setValue(Range(number(), number(), trimmedText(0), trimmedText(0)));
            break;
        case Property::SCALAR_VALUE:
            p.setValue(Scalar(number(), trimmedText(0)));
            break;
        case Property::RATIONAL_VALUE: {
            Rational r;
            r.m_numerator = static_cast<std::int64_t>(m_random64());
            r.m_denominator = static_cast<std::int64_t>(m_random64()) >> pick(0, 63);
            r.m_unit = trimmedText(0);
            p.setValue(r);
            break;
        }
        case Property::DECORATED_NUMBER:
            p.setValue(DecoratedNumber(number(), trimmedText(0), trimmedText(0)));
            break;
        case Property::POINT:
            p.setPointValue({number(), number()});
            break;
        case Property::DOUBLE_LIST_VALUE: {
            ValueList<double> list;
            for (int i = pick(0, 5); i > 0; --i) list.m_values.push_back(number());
            p.setDoubleList(list);
            break;
        }
        case Property::STRING_LIST_VALUE: {
            ValueList<std::string> list;
            for (int i = pick(0, 5); i > 0; --i) list.m_values.push_back(trimmedText(0));
            p.setStringList(list);
            break;
        }
        case Property::POINT_LIST_VALUE: {
            ValueList<Point> list;
            for (int i = pick(0, 5); i > 0; --i) list.m_values.push_back({number(), number()});
            p.setPointList(list);
            break;
        }
        case Property::CHANNEL_ID_LIST: {
            ValueList<std::uint64_t> list;
            for (int i = pick(0, 5); i > 0; --i) list.m_values.push_back(m_random64() >> pick(0, 63));
            p.setChannelIDList(list);
            break;
        }
        case Property::PROPERTY_LIST_VALUE: {
            PropertyList list;
            for (int i = depth < 2 ? pick(0, 4) : 0; i > 0; --i) {
                list.push_back(make(static_cast<Property::Type>(pick(1, 23)), depth + 1));
            }
            p.setValue(list);
            break;
        }
        default:
            // The types that stay text: any text without surrounding blanks.
            p.setTextValue(type, trimmedText(1));
            break;
        }
        return p;
    }

private:
    int pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(m_random); }

    // Normal numbers, zeros and infinities survive bit for bit. (Subnormal
    // texts make strtod report a range error.)
    double number()
    {
        switch (pick(0, 9)) {
        case 0: return pick(0, 1) ? 0.0 : -0.0;
        case 1: return pick(0, 1) ? std::numeric_limits<double>::infinity()
                                  : -std::numeric_limits<double>::infinity();
        case 2: return pick(-1000, 1000) / 8.0;
        default: break;
        }
        for (;;) {
            const double value = std::bit_cast<double>(m_random64());
            if (std::isnormal(value)) return value;
        }
    }

    std::string text(int min_length, int max_length, bool with_blanks)
    {
        static const std::string pieces[] = {"a", "Z", "0", "\"", "'", "<", ">", "&", "&amp;",
                                             "]]>", "\xC3\xA4", "\xE2\x82\xAC", "\xF0\x9F\x8E\xB5",
                                             "=", "/", "-", " ", "\t", "\n"};
        const int count = sizeof pieces / sizeof pieces[0] - (with_blanks ? 0 : 3);
        std::string out;
        for (int i = pick(min_length, max_length); i > 0; --i) out += pieces[pick(0, count - 1)];
        return out;
    }

    std::string trimmedText(int min_length)
    {
        for (;;) {
            std::string t = xpugi::trim(text(min_length, 12, true));
            if (static_cast<int>(t.size()) >= min_length) return t;
        }
    }

    // Attribute values: the parser turns tabs and line breaks into blanks.
    std::string attributeText()
    {
        std::string t = text(1, 10, false);
        return t;
    }

    std::mt19937 m_random;
    std::mt19937_64 m_random64{m_random()};
};

Property writtenAndReadBack(const Property& original, std::string& xml)
{
    pugi::xml_document written;
    original.writeTo(written);
    xml = xpugi::to_xml(written, false);
    pugi::xml_document parsed;
    EXPECT_TRUE(xpugi::parse(parsed, xml.data(), xml.size()));
    Property back;
    EXPECT_TRUE(back.readFrom(parsed.document_element(), 0.0)) << xml;
    return back;
}

TEST(PropertyXml, RandomValuesOfEveryTypeRoundTrip)
{
    for (std::uint32_t seed = 1; seed <= 40; ++seed) {
        RandomProperties random(seed);
        for (int code = 1; code <= 23; ++code) {
            const Property original = random.make(static_cast<Property::Type>(code));
            std::string xml;
            const Property back = writtenAndReadBack(original, xml);
            EXPECT_TRUE(test::sameProperty(original, back)) << "seed " << seed << ": " << xml;
        }
    }
}

TEST(PropertyXml, NaNsComeBackAsNaN)
{
    Property p("n");
    p.setPointValue({std::numeric_limits<double>::quiet_NaN(),
                     -std::numeric_limits<double>::quiet_NaN()});
    std::string xml;
    const Property back = writtenAndReadBack(p, xml);
    EXPECT_EQ(xml, "<?xml version=\"1.0\"?><Property name=\"n\"><Point><x>nan</x><y>-nan</y>"
                   "</Point></Property>");
    EXPECT_TRUE(std::isnan(back.getPointValue().first));
    EXPECT_TRUE(std::isnan(back.getPointValue().second));
    EXPECT_TRUE(std::signbit(back.getPointValue().second));
}

// Deletes, duplicates or replaces a few bytes, preferring markup characters.
std::string mangled(std::string text, std::mt19937& random)
{
    static const char markup[] = "<>/\"'=&;! ?[]-x0";
    const auto pick = [&random](std::size_t high) {
        return std::uniform_int_distribution<std::size_t>(0, high)(random);
    };
    for (std::size_t edits = 1 + pick(3); edits > 0 && !text.empty(); --edits) {
        const std::size_t at = pick(text.size() - 1);
        switch (pick(2)) {
        case 0: text.erase(at, 1 + pick(5)); break;
        case 1: text.insert(at, text.substr(pick(text.size() - 1), pick(20))); break;
        default: text[at] = markup[pick(sizeof markup - 2)]; break;
        }
    }
    return text;
}

TEST(PropertyXml, MangledDocumentsAnswerOrThrowOnlyNumberErrors)
{
    test::LogCapture quiet; // keeps the many reader notes off the console
    std::mt19937 random(99);
    int parsed_count = 0, accepted = 0, refused = 0, number_errors = 0;
    for (std::uint32_t seed = 1; seed <= 150; ++seed) {
        RandomProperties properties(seed);
        std::string xml;
        Property original = properties.make(static_cast<Property::Type>(seed % 23 + 1));
        pugi::xml_document written;
        original.writeTo(written);
        xml = xpugi::to_xml(written, false);
        for (int variant = 0; variant < 40; ++variant) {
            const std::string bad = mangled(xml, random);
            pugi::xml_document document;
            if (!xpugi::parse(document, bad.data(), bad.size())) {
                continue;
            }
            ++parsed_count;
            Property p;
            try {
                (p.readFrom(document.document_element(), 0.0) ? accepted : refused)++;
            } catch (const std::invalid_argument& e) {
                ++number_errors;
                EXPECT_EQ(std::string(e.what()).rfind("invalid sto", 0), 0u) << e.what();
            } catch (const std::out_of_range& e) {
                ++number_errors;
                EXPECT_NE(std::string(e.what()).find(" argument out of range"), std::string::npos);
            }
        }
    }
    std::cout << parsed_count << " parsed, " << accepted << " accepted, " << refused << " refused, " << number_errors << " number errors\n";
    // The mutations must reach all three outcomes to mean anything.
    EXPECT_GT(parsed_count, 300);
    EXPECT_GT(accepted, 50);
    EXPECT_GT(refused, 20);
    EXPECT_GT(number_errors, 5);
}

} // namespace
} // namespace zlr
