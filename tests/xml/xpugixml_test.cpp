#include "xpugixml.h"

#include "zlr_assert_capture.h"

#include <gtest/gtest.h>

#include <string>

namespace {

pugi::xml_node parsed(pugi::xml_document& document, const char* text)
{
    EXPECT_TRUE(xpugi::parse(document, text)) << text;
    return document.document_element();
}

TEST(Xpugi, ElementHandleRefusesOtherNodesWithAnEmptyText)
{
    pugi::xml_document document;
    pugi::xml_node root = parsed(document, "<a>text<b/><![CDATA[c]]></a>");
    EXPECT_NO_THROW(xpugi::xml_element{root.child("b")});
    EXPECT_NO_THROW(xpugi::xml_element{pugi::xml_node()});
    EXPECT_FALSE(xpugi::xml_element{pugi::xml_node()});
    for (pugi::xml_node other : {root.first_child(), root.last_child(), pugi::xml_node(document)}) {
        try {
            xpugi::xml_element element{other};
            ADD_FAILURE() << "no exception for node type " << other.type();
        } catch (const xpugi::xml_element_exception& e) {
            EXPECT_STREQ(e.what(), "");
        }
    }
    const xpugi::xml_element appended = xpugi::append_child_element(root, "c");
    EXPECT_EQ(appended->type(), pugi::node_element);
    EXPECT_EQ(root.last_child(), appended.node());
}

TEST(Xpugi, ChildLookUps)
{
    pugi::xml_document document;
    pugi::xml_node root = document.append_child("r");
    root.append_child(pugi::node_comment).set_value("note");
    pugi::xml_node pi = root.append_child(pugi::node_pi);
    pi.set_name("x");
    root.append_child("x");
    root.append_child("y").append_child(pugi::node_pcdata).set_value("1");

    // find_child takes any kind of node; a comment's name is empty.
    EXPECT_EQ(xpugi::find_child(root, ""), root.first_child());
    EXPECT_EQ(xpugi::find_child(root, "x"), pi);
    EXPECT_EQ(xpugi::find_child(root, "y"), root.last_child());
    EXPECT_FALSE(xpugi::find_child(root, "X"));
    EXPECT_FALSE(xpugi::find_child(pugi::xml_node(), "x"));

    // first_child_element answers null when the first node of the name is
    // not an element, even though an element follows.
    EXPECT_FALSE(xpugi::first_child_element(root, "x"));
    EXPECT_EQ(xpugi::first_child_element(root, "y").node(), root.last_child());
    EXPECT_FALSE(xpugi::first_child_element(root, "z"));
    EXPECT_FALSE(xpugi::first_child_element(pugi::xml_node(), "y"));
}

TEST(Xpugi, TrimmedTexts)
{
    pugi::xml_document document;
    pugi::xml_node root = parsed(document,
                                 "<a> \t one <b>two<c> three </c></b><![CDATA[ <four> ]]>\n</a>");
    root.append_child(pugi::node_comment).set_value("skipped");
    root.append_child(pugi::node_pcdata).set_value(" five \v\f\r\n");
    EXPECT_EQ(xpugi::trimmed_text(root), "one two three  <four>  five");
    EXPECT_EQ(xpugi::trimmed_text(root.first_child()), "one");
    EXPECT_EQ(xpugi::trimmed_value(root.first_child()), "one");
    EXPECT_EQ(xpugi::trimmed_text(root.child("b")), "two three");
    EXPECT_EQ(xpugi::trimmed_text(pugi::xml_node()), "");

    const struct {
        const char* text;
        const char* trimmed;
    } cases[] = {
        {"", ""},           {" \t\n\v\f\r", ""},          {" a b ", "a b"},
        {"\xA0x\xA0", "\xA0x\xA0"}, {"\xFFx", "\xFFx"}, {"x\x85", "x\x85"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(xpugi::trim(c.text), c.trimmed) << c.text;
    }

    // Deep nesting is walked without recursion.
    std::string deep;
    for (int i = 0; i < 100000; ++i) deep += "<d>";
    deep += "x";
    for (int i = 0; i < 100000; ++i) deep += "</d>";
    pugi::xml_document deep_document;
    ASSERT_TRUE(xpugi::parse(deep_document, deep.c_str()));
    EXPECT_EQ(xpugi::trimmed_text(deep_document.document_element()), "x");
}

TEST(Xpugi, SetTextAndAttribute)
{
    pugi::xml_document document;
    pugi::xml_node root = parsed(document, "<a>old<b/><![CDATA[c]]></a>");

    xpugi::set_text(root, "");
    xpugi::set_text(root, static_cast<const char*>(nullptr));
    EXPECT_EQ(xpugi::to_xml(root, false), "<a>old<b/><![CDATA[c]]></a>");

    xpugi::set_text(root, std::string("new & <text>"));
    EXPECT_EQ(xpugi::to_xml(root, false), "<a>new &amp; &lt;text&gt;</a>");
    xpugi::set_text(root.first_child(), "again");
    EXPECT_EQ(xpugi::to_xml(root, false), "<a>again</a>");
    xpugi::set_text(document, "ignored");
    EXPECT_EQ(xpugi::to_xml(root, false), "<a>again</a>");


    {
        zlr::test::AssertCapture asserts;
        xpugi::set_attribute(root, "s", std::string("v\"1"));
        xpugi::set_attribute(root, "u", std::uint64_t{18446744073709551615ULL});
        xpugi::set_attribute(root, "d", 0.1);
        EXPECT_EQ(xpugi::to_xml(root, false),
                  "<a s=\"v&quot;1\" u=\"18446744073709551615\" d=\"0.10000000000000001\">again</a>");
        // A document cannot carry attributes: both steps report and go on.
        xpugi::set_attribute(document, "n", "v");
        EXPECT_EQ(asserts.reported(), (std::vector<std::string>{"attribute", "success"}));
    }
}

TEST(Xpugi, SerialisingForms)
{
    pugi::xml_document document;
    // A document's raw form with its declaration is every fuzz seed's
    // written form.
    EXPECT_EQ(xpugi::to_xml_of_document_element(document, false), "");
    parsed(document, "<a><b>x</b><c/></a>");
    EXPECT_EQ(xpugi::to_xml(document.document_element().child("b"), false), "<b>x</b>");
    EXPECT_EQ(xpugi::to_xml_of_document_element(document, false), "<a><b>x</b><c/></a>");
    EXPECT_EQ(xpugi::to_xml_of_document_element(document, true), "<a>\n\t<b>x</b>\n\t<c />\n</a>\n");
}

// What pugixml accepts is its own business; here only that both forms
// answer its verdict, and that a length ends the text.
TEST(Xpugi, ParseAnswersFalseForWhatDoesNotRead)
{
    pugi::xml_document document;
    const char buffer[] = "<a>1</a><garbage";
    EXPECT_TRUE(xpugi::parse(document, buffer, 8));
    EXPECT_EQ(xpugi::trimmed_text(document.document_element()), "1");
    EXPECT_FALSE(xpugi::parse(document, buffer, sizeof buffer - 1));
    EXPECT_FALSE(xpugi::parse(document, buffer));
    EXPECT_FALSE(xpugi::parse(document, nullptr));
    EXPECT_FALSE(xpugi::parse(document, nullptr, 0));
}

TEST(Xpugi, ProtocolVersion)
{
    pugi::xml_document written;
    pugi::xml_node root = written.append_child("T");
    xpugi::set_protocol_version(root);
    EXPECT_EQ(xpugi::to_xml(root, false), "<T protocol_version=\"1.0\"/>");

    const struct {
        const char* document;
        xpugi::protocol_version version;
        bool supported;
    } cases[] = {
        {"<T/>", {1, 0}, true},
        {"<T protocol_version=\"1\"/>", {1, 0}, true},
        {"<T protocol_version=\"01.00\"/>", {1, 0}, true},
        {"<T protocol_version=\"2.0\"/>", {2, 0}, false},
        {"<T protocol_version=\"1.1\"/>", {1, 1}, false},
        {"<T protocol_version=\"1.0.0\"/>", {0, 0}, false},
        {"<T protocol_version=\"1.x\"/>", {0, 0}, false},
        {"<T protocol_version=\"\"/>", {0, 0}, false},
        {"<T protocol_version=\"1.\"/>", {0, 0}, false},
        {"<T protocol_version=\"-1.0\"/>", {0, 0}, false},
        {"<T protocol_version=\"99999999999.0\"/>", {0, 0}, false},
    };
    for (const auto& c : cases) {
        pugi::xml_document document;
        pugi::xml_node telegram = parsed(document, c.document);
        EXPECT_EQ(xpugi::read_protocol_version(telegram), c.version) << c.document;
        EXPECT_EQ(xpugi::has_supported_protocol_version(telegram), c.supported) << c.document;
    }
}

} // namespace
