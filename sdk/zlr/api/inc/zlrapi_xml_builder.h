// A forward-only XML writer for the telegrams that are sent while data flows.
//
// It builds no tree and allocates nothing beyond the stream: elements live on
// the caller's stack, names and attribute values are views, and all output
// passes through a 768-byte buffer. Keep every named string alive until its
// element is closed, and call flush() once after the root is closed.
//
//     std::ostringstream out;
//     XmlBuilder builder(out);
//     {
//         XmlBuilderElement root = builder.child("Start", {XmlAttribute("key", key)});
//         XmlBuilderElement item = root.child("Item");
//         item.addAttribute(XmlAttribute("value", 1.5));
//     }
//     builder.flush();
#pragma once

#include "zlrapi_xml_buffered_writer.h"

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <ostream>
#include <string>
#include <string_view>

namespace zlr {

// One attribute, paired for the moment of writing. Text is escaped; names are
// written as they stand.
struct XmlAttribute {
    enum class Kind { Text, Unsigned, Double, Boolean };

    XmlAttribute(std::string_view name, std::string_view text)
        : m_name(name), m_kind(Kind::Text), m_text(text)
    {
    }
    XmlAttribute(std::string_view name, const char* text)
        : XmlAttribute(name, std::string_view(text))
    {
    }
    XmlAttribute(std::string_view name, const std::string& text)
        : XmlAttribute(name, std::string_view(text))
    {
    }
    template <std::unsigned_integral U>
        requires(!std::same_as<U, bool>)
    XmlAttribute(std::string_view name, U value)
        : m_name(name), m_kind(Kind::Unsigned), m_unsigned(value)
    {
    }
    XmlAttribute(std::string_view name, double value)
        : m_name(name), m_kind(Kind::Double), m_double(value)
    {
    }
    XmlAttribute(std::string_view name, bool value)
        : m_name(name), m_kind(Kind::Boolean), m_boolean(value)
    {
    }

    std::string_view m_name;
    Kind m_kind;
    std::string_view m_text;
    std::uint64_t m_unsigned = 0;
    double m_double = 0.0;
    bool m_boolean = false;
};

class XmlBuilderElement;

// What the document and an open element share: the writer, and whether a
// child element has been opened inside.
class XmlBuilderNode {
public:
    XmlBuilderNode(const XmlBuilderNode&) = delete;
    XmlBuilderNode& operator=(const XmlBuilderNode&) = delete;

    XmlBuilderElement child(std::string_view name);
    XmlBuilderElement child(std::string_view name, std::initializer_list<XmlAttribute> attributes);

protected:
    explicit XmlBuilderNode(XmlBufferedWriter& writer) : m_writer(writer) {}
    ~XmlBuilderNode() = default;

    XmlBufferedWriter& m_writer;
    bool m_has_children = false;
};

// One open element; it is closed by close() or at the end of its scope.
class XmlBuilderElement : public XmlBuilderNode {
public:
    XmlBuilderElement(XmlBufferedWriter& writer, std::string_view name,
                      std::initializer_list<XmlAttribute> attributes);
    ~XmlBuilderElement();

    // Attributes belong before the first child; a late one is reported and
    // the output is then malformed.
    void addAttribute(const XmlAttribute& a);
    void close();

private:
    std::string_view m_name;
    bool m_open = true;
};

// The document: writes the declaration and owns the buffer.
class XmlBuilder : private XmlBufferedWriter, public XmlBuilderNode {
public:
    explicit XmlBuilder(std::ostream& stream);

    void flush();
};

} // namespace zlr
