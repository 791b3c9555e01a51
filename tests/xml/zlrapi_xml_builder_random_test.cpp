// Random documents written by XmlBuilder against a reference built with plain
// string operations, and read back by pugixml.
#include "zlr_random.h"
#include "zlrapi_xml_builder.h"

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdio>
#include <deque>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace zlr {
namespace {

std::string referenceDouble(double value)
{
    std::string text = std::signbit(value) ? "-" : "";
    const std::uint64_t bits = std::bit_cast<std::uint64_t>(value);
    if (std::isnan(value)) {
        if (!((bits & 0x000FFFFFFFFFFFFFULL) >> 51)) {
            return text + "nan(snan)";
        }
        return text + (bits == 0xFFF8000000000000ULL ? "nan(ind)" : "nan");
    }
    if (std::isinf(value)) {
        return text + "inf";
    }
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.17g", std::fabs(value));
    return text + buffer;
}

std::string referenceText(const std::string& text)
{
    std::string out;
    for (const char c : text) {
        switch (c) {
        case '"': out += "&quot;"; break;
        case '&': out += "&amp;"; break;
        case '\'': out += "&apos;"; break;
        case '<': out += "&lt;"; break;
        case '>': out += "&gt;"; break;
        default: out += c;
        }
    }
    return out;
}

// What pugixml must find: names, and the values of the text attributes.
struct Expected {
    std::string name;
    std::vector<std::optional<std::string>> texts;
    std::vector<Expected> children;
};

class RandomDocument {
public:
    explicit RandomDocument(std::uint64_t seed) : m_random(seed) {}

    // Writes one element with random attributes (at the opening and added
    // later) and children below `parent`; answers its reference text.
    std::string write(XmlBuilderNode& parent, Expected& expected, int depth)
    {
        const std::string_view element_name = keep(name());
        expected.name = element_name;
        std::string attributes;
        std::vector<XmlAttribute> opening, later;
        for (auto n = m_random.pick(0, 3); n > 0; --n) opening.push_back(attribute(attributes, expected));
        for (auto n = m_random.pick(0, 2); n > 0; --n) later.push_back(attribute(attributes, expected));
        XmlBuilderElement element = open(parent, element_name, opening);
        for (const XmlAttribute& a : later) element.addAttribute(a);
        std::string children;
        for (auto n = depth < 3 ? m_random.pick(0, 4) : 0; n > 0; --n) {
            expected.children.emplace_back();
            children += write(element, expected.children.back(), depth + 1);
        }
        const std::string head = "<" + expected.name + attributes;
        return children.empty() ? head + "/>" : head + ">" + children + "</" + expected.name + ">";
    }

private:
    static XmlBuilderElement open(XmlBuilderNode& parent, std::string_view name,
                                  const std::vector<XmlAttribute>& a)
    {
        switch (a.size()) {
        case 0: return parent.child(name);
        case 1: return parent.child(name, {a[0]});
        case 2: return parent.child(name, {a[0], a[1]});
        default: return parent.child(name, {a[0], a[1], a[2]});
        }
    }

    // Mostly short, sometimes around the builder's buffer size.
    std::string name()
    {
        static const std::vector<std::string> letters = {"a", "k", "q", "z"};
        return m_random.pick(0, 9) == 0 ? m_random.text(700, 900, letters) : m_random.text(1, 12, letters);
    }

    XmlAttribute attribute(std::string& reference, Expected& expected)
    {
        static const std::vector<std::string> pieces = {"a", "b", " ", "<", ">", "&", "\"", "'", "\t", "\xC3\xA4", "x"};
        const std::string_view name = keep(this->name());
        switch (m_random.pick(0, 3)) {
        case 0: {
            const std::string_view text =
                keep(m_random.pick(0, 9) == 0 ? m_random.text(300, 1500, pieces) : m_random.text(0, 20, pieces));
            reference += " " + std::string(name) + "=\"" + referenceText(std::string(text)) + "\"";
            expected.texts.emplace_back(std::string(text));
            return XmlAttribute(name, text);
        }
        case 1: {
            const std::uint64_t number = m_random.bits() >> m_random.pick(0, 63);
            reference += " " + std::string(name) + "=\"" + std::to_string(number) + "\"";
            expected.texts.emplace_back();
            return XmlAttribute(name, number);
        }
        case 2: {
            const double real = std::bit_cast<double>(m_random.bits());
            reference += " " + std::string(name) + "=\"" + referenceDouble(real) + "\"";
            expected.texts.emplace_back();
            return XmlAttribute(name, real);
        }
        default: {
            const bool flag = m_random.coin();
            reference += " " + std::string(name) + (flag ? "=\"true\"" : "=\"false\"");
            expected.texts.emplace_back();
            return XmlAttribute(name, flag);
        }
        }
    }

    // The builder takes views: the texts live as long as the document.
    std::string_view keep(std::string text) { return m_texts.emplace_back(std::move(text)); }

    test::Random m_random;
    std::deque<std::string> m_texts;
};

void expectSameTexts(const Expected& expected, pugi::xml_node node)
{
    ASSERT_EQ(expected.name, node.name());
    pugi::xml_attribute attribute = node.first_attribute();
    for (const auto& text : expected.texts) {
        ASSERT_TRUE(attribute);
        if (text) {
            // The parser turns a tab in an attribute into a blank.
            std::string value = *text;
            std::replace(value.begin(), value.end(), '\t', ' ');
            EXPECT_EQ(value, attribute.value());
        }
        attribute = attribute.next_attribute();
    }
    pugi::xml_node child = node.first_child();
    for (const Expected& child_expected : expected.children) {
        ASSERT_TRUE(child);
        expectSameTexts(child_expected, child);
        child = child.next_sibling();
    }
}

TEST(XmlBuilder, RandomDocumentsMatchTheReferenceAndParse)
{
    for (std::uint64_t seed = 1; seed <= 200; ++seed) {
        RandomDocument random(seed);
        Expected expected;
        std::ostringstream out;
        XmlBuilder builder(out);
        const std::string reference = random.write(builder, expected, 0);
        builder.flush();
        ASSERT_EQ(out.str(), "<?xml version=\"1.0\"?>" + reference) << "seed " << seed;

        pugi::xml_document document;
        ASSERT_TRUE(document.load_string(out.str().c_str())) << "seed " << seed;
        expectSameTexts(expected, document.document_element());
    }
}

} // namespace
} // namespace zlr
