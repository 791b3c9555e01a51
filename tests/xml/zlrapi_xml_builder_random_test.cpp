// Random documents written by XmlBuilder against a plain string-building
// reference, and read back by pugixml.
#include "zlrapi_xml_builder.h"

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace zlr {
namespace {

struct RandomAttribute {
    std::string name;
    int kind = 0; // 0 text, 1 unsigned, 2 double, 3 boolean
    std::string text;
    std::uint64_t number = 0;
    double real = 0.0;
    bool flag = false;

    XmlAttribute view() const
    {
        switch (kind) {
        case 0:
            return XmlAttribute(name, text);
        case 1:
            return XmlAttribute(name, number);
        case 2:
            return XmlAttribute(name, real);
        default:
            return XmlAttribute(name, flag);
        }
    }
};

struct RandomElement {
    std::string name;
    std::vector<RandomAttribute> at_opening;
    std::vector<RandomAttribute> added_later;
    std::vector<RandomElement> children;
};

class Generator {
public:
    explicit Generator(std::uint32_t seed) : m_random(seed) {}

    RandomElement element(int depth)
    {
        RandomElement e;
        e.name = name();
        for (int i = pick(0, 3); i > 0; --i) {
            e.at_opening.push_back(attribute());
        }
        for (int i = pick(0, 2); i > 0; --i) {
            e.added_later.push_back(attribute());
        }
        if (depth < 3) {
            for (int i = pick(0, 4); i > 0; --i) {
                e.children.push_back(element(depth + 1));
            }
        }
        return e;
    }

private:
    int pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(m_random); }

    std::string name()
    {
        // Mostly short, sometimes around the buffer size.
        const int length = pick(0, 9) == 0 ? pick(700, 900) : pick(1, 12);
        std::string text;
        for (int i = 0; i < length; ++i) {
            text += static_cast<char>('a' + pick(0, 25));
        }
        return text;
    }

    RandomAttribute attribute()
    {
        RandomAttribute a;
        a.name = name();
        a.kind = pick(0, 3);
        const char alphabet[] = "ab <>&\"'\t\xC3\xA4xyz";
        const int length = pick(0, 9) == 0 ? pick(300, 1500) : pick(0, 20);
        for (int i = 0; i < length; ++i) {
            a.text += alphabet[pick(0, sizeof alphabet - 2)];
        }
        a.number = std::uniform_int_distribution<std::uint64_t>()(m_random);
        a.number >>= pick(0, 63);
        a.real = std::bit_cast<double>(std::uniform_int_distribution<std::uint64_t>()(m_random));
        a.flag = pick(0, 1) == 1;
        return a;
    }

    std::mt19937 m_random;
};

// The reference forms, written without the builder's code.
std::string referenceDouble(double value)
{
    std::string text = std::signbit(value) ? "-" : "";
    const std::uint64_t bits = std::bit_cast<std::uint64_t>(value);
    if (std::isnan(value)) {
        const std::uint64_t mantissa = bits & 0x000FFFFFFFFFFFFFULL;
        if (!(mantissa >> 51)) {
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

std::string reference(const RandomAttribute& a)
{
    std::string value;
    switch (a.kind) {
    case 0: value = referenceText(a.text); break;
    case 1: value = std::to_string(a.number); break;
    case 2: value = referenceDouble(a.real); break;
    default: value = a.flag ? "true" : "false";
    }
    return " " + a.name + "=\"" + value + "\"";
}

std::string reference(const RandomElement& e)
{
    std::string out = "<" + e.name;
    for (const auto& a : e.at_opening) out += reference(a);
    for (const auto& a : e.added_later) out += reference(a);
    if (e.children.empty()) {
        return out + "/>";
    }
    out += ">";
    for (const auto& child : e.children) out += reference(child);
    return out + "</" + e.name + ">";
}

void write(XmlBuilderNode& parent, const RandomElement& e)
{
    XmlBuilderElement element = [&]() {
        switch (e.at_opening.size()) {
        case 0: return parent.child(e.name);
        case 1: return parent.child(e.name, {e.at_opening[0].view()});
        case 2: return parent.child(e.name, {e.at_opening[0].view(), e.at_opening[1].view()});
        default:
            return parent.child(e.name, {e.at_opening[0].view(), e.at_opening[1].view(),
                                         e.at_opening[2].view()});
        }
    }();
    for (const auto& a : e.added_later) {
        element.addAttribute(a.view());
    }
    for (const auto& child : e.children) {
        write(element, child);
    }
}

void expectSameTextAttributes(const RandomElement& e, pugi::xml_node node)
{
    ASSERT_EQ(e.name, node.name());
    pugi::xml_attribute attribute = node.first_attribute();
    for (const auto* list : {&e.at_opening, &e.added_later}) {
        for (const auto& a : *list) {
            ASSERT_TRUE(attribute);
            if (a.kind == 0) {
                // The parser turns a tab in an attribute into a blank.
                std::string expected = a.text;
                for (char& c : expected) c = c == '\t' ? ' ' : c;
                EXPECT_EQ(expected, attribute.value());
            }
            attribute = attribute.next_attribute();
        }
    }
    pugi::xml_node child = node.first_child();
    for (const auto& expected : e.children) {
        ASSERT_TRUE(child);
        expectSameTextAttributes(expected, child);
        child = child.next_sibling();
    }
}

TEST(XmlBuilder, RandomDocumentsMatchTheReferenceAndParse)
{
    for (std::uint32_t seed = 1; seed <= 200; ++seed) {
        Generator generator(seed);
        RandomElement root = generator.element(0);
        std::ostringstream out;
        XmlBuilder builder(out);
        write(builder, root);
        builder.flush();
        ASSERT_EQ(out.str(), "<?xml version=\"1.0\"?>" + reference(root)) << "seed " << seed;

        pugi::xml_document document;
        ASSERT_TRUE(document.load_string(out.str().c_str())) << "seed " << seed;
        expectSameTextAttributes(root, document.document_element());
    }
}

} // namespace
} // namespace zlr
