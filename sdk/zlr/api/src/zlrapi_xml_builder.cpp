#include "zlrapi_xml_builder.h"

#include "zlrbase_assert.h"

namespace zlr {
namespace {

void writeAttribute(XmlBufferedWriter& writer, const XmlAttribute& attribute)
{
    writer.writeChar(' ');
    writer.writeRaw(attribute.m_name);
    writer.writeRaw("=\"");
    switch (attribute.m_kind) {
    case XmlAttribute::Kind::Text:
        writer.writeEscaped(attribute.m_text);
        break;
    case XmlAttribute::Kind::Unsigned:
        writer.writeUnsigned(attribute.m_unsigned);
        break;
    case XmlAttribute::Kind::Double:
        writer.writeDouble(attribute.m_double);
        break;
    case XmlAttribute::Kind::Boolean:
        writer.writeBoolean(attribute.m_boolean);
        break;
    }
    writer.writeChar('"');
}

} // namespace

XmlBuilderElement XmlBuilderNode::child(std::string_view name)
{
    return child(name, {});
}

XmlBuilderElement XmlBuilderNode::child(std::string_view name,
                                        std::initializer_list<XmlAttribute> attributes)
{
    m_has_children = true;
    return XmlBuilderElement(m_writer, name, attributes);
}

XmlBuilderElement::XmlBuilderElement(XmlBufferedWriter& writer, std::string_view name,
                                     std::initializer_list<XmlAttribute> attributes)
    : XmlBuilderNode(writer), m_name(name)
{
    m_writer.writeTag("<", m_name);
    for (const XmlAttribute& attribute : attributes) {
        writeAttribute(m_writer, attribute);
    }
    m_writer.writeChar('>');
}

XmlBuilderElement::~XmlBuilderElement()
{
    close();
}

void XmlBuilderElement::addAttribute(const XmlAttribute& a)
{
    ZLR_ASSERT(!m_has_children);
    m_writer.stepBack();
    ZLR_ASSERT(!a.m_name.empty());
    writeAttribute(m_writer, a);
    m_writer.writeChar('>');
}

void XmlBuilderElement::close()
{
    if (!m_open) {
        return;
    }
    m_open = false;
    if (!m_has_children) {
        m_writer.stepBack();
        m_writer.writeRaw("/>");
        return;
    }
    m_writer.writeTag("</", m_name);
    m_writer.writeChar('>');
}

XmlBuilder::XmlBuilder(std::ostream& stream)
    : XmlBufferedWriter(stream), XmlBuilderNode(static_cast<XmlBufferedWriter&>(*this))
{
    writeRaw("<?xml version=\"1.0\"?>");
}

void XmlBuilder::flush()
{
    XmlBufferedWriter::flush();
}

} // namespace zlr
