#include "xpugixml.h"

#include "zlrbase_assert.h"

#include <limits>
#include <sstream>
#include <vector>

namespace xpugi {
namespace {

// White space as the C locale's isspace sees it; bytes above 0x7F never are.
bool isCSpace(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

bool isText(pugi::xml_node node)
{
    return node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata;
}

// Decimal digits only, fitting an int; anything else is not a version part.
bool parseVersionPart(const std::string& text, int& value)
{
    if (text.empty()) {
        return false;
    }
    long long result = 0;
    for (const char c : text) {
        if (c < '0' || c > '9') {
            return false;
        }
        result = result * 10 + (c - '0');
        if (result > std::numeric_limits<int>::max()) {
            return false;
        }
    }
    value = static_cast<int>(result);
    return true;
}

std::string print(pugi::xml_node node, bool pretty)
{
    std::ostringstream stream;
    node.print(stream, pretty ? "\t" : "", pretty ? pugi::format_indent : pugi::format_raw,
               pugi::encoding_auto);
    return stream.str();
}

} // namespace

xml_element_exception::xml_element_exception(const std::string& /*reason*/)
{
    // The reason is dropped on purpose: callers catch the type and never show
    // the text, so what() stays empty.
}

const char* xml_element_exception::what() const noexcept
{
    return m_text.c_str();
}

xml_element::xml_element(pugi::xml_node node) : m_node(node)
{
    if (node && node.type() != pugi::node_element) {
        throw xml_element_exception("Invalid node type");
    }
}

xml_element append_child_element(pugi::xml_node parent, const std::string& name)
{
    return xml_element(parent.append_child(name.c_str()));
}

xml_element first_child_element(pugi::xml_node node, const std::string& name)
{
    if (!node) {
        return {};
    }
    const pugi::xml_node child = node.child(name.c_str());
    if (child.type() != pugi::node_element) {
        return {};
    }
    return xml_element(child);
}

pugi::xml_node find_child(pugi::xml_node node, const std::string& name)
{
    if (!node) {
        return {};
    }
    for (pugi::xml_node child = node.first_child(); child; child = child.next_sibling()) {
        if (name == child.name()) {
            return child;
        }
    }
    return {};
}

std::string trim(const std::string& text)
{
    std::size_t end = text.size();
    while (end > 0 && isCSpace(text[end - 1])) {
        --end;
    }
    std::size_t begin = 0;
    while (begin < end && isCSpace(text[begin])) {
        ++begin;
    }
    return text.substr(begin, end - begin);
}

std::string trimmed_value(pugi::xml_node node)
{
    return trim(node.value());
}

std::string trimmed_text(pugi::xml_node node)
{
    if (isText(node)) {
        return trim(node.value());
    }
    // Walked without recursion, so that a deeply nested document from outside
    // cannot exhaust the stack.
    std::string text;
    pugi::xml_node current = node.first_child();
    while (current) {
        if (isText(current)) {
            text += current.value();
        }
        if (current.type() == pugi::node_element && current.first_child()) {
            current = current.first_child();
            continue;
        }
        while (current != node && !current.next_sibling()) {
            current = current.parent();
        }
        if (current == node) {
            break;
        }
        current = current.next_sibling();
    }
    return trim(text);
}

void set_attribute(pugi::xml_node node, const std::string& name, const char* value)
{
    pugi::xml_attribute attribute = node.append_attribute(name.c_str());
    ZLR_ASSERT(attribute);
    const bool success = attribute.set_value(value);
    ZLR_ASSERT(success);
}

void set_attribute(pugi::xml_node node, const std::string& name, const std::string& value)
{
    set_attribute(node, name, value.c_str());
}

void set_attribute(pugi::xml_node node, const std::string& name, std::uint64_t value)
{
    pugi::xml_attribute attribute = node.append_attribute(name.c_str());
    ZLR_ASSERT(attribute);
    const bool success = attribute.set_value(static_cast<unsigned long long>(value));
    ZLR_ASSERT(success);
}

void set_attribute(pugi::xml_node node, const std::string& name, double value)
{
    pugi::xml_attribute attribute = node.append_attribute(name.c_str());
    ZLR_ASSERT(attribute);
    const bool success = attribute.set_value(value);
    ZLR_ASSERT(success);
}

void set_text(pugi::xml_node node, const char* text)
{
    if (text == nullptr || *text == '\0') {
        return;
    }
    switch (node.type()) {
    case pugi::node_element: {
        std::vector<pugi::xml_node> children;
        for (pugi::xml_node child = node.first_child(); child; child = child.next_sibling()) {
            children.push_back(child);
        }
        for (const pugi::xml_node& child : children) {
            node.remove_child(child);
        }
        node.append_child(pugi::node_pcdata).set_value(text);
        break;
    }
    case pugi::node_pcdata:
    case pugi::node_cdata:
    case pugi::node_comment:
    case pugi::node_pi:
        node.set_value(text);
        break;
    default:
        break;
    }
}

void set_text(pugi::xml_node node, const std::string& text)
{
    set_text(node, text.c_str());
}

std::string to_xml(const pugi::xml_document& document, bool pretty)
{
    std::ostringstream stream;
    document.save(stream, pretty ? "\t" : "", pretty ? pugi::format_indent : pugi::format_raw,
                  pugi::encoding_auto);
    return stream.str();
}

std::string to_xml(pugi::xml_node node, bool pretty)
{
    return print(node, pretty);
}

std::string to_xml_of_document_element(const pugi::xml_document& document, bool pretty)
{
    const pugi::xml_node element = document.document_element();
    if (!element) {
        return {};
    }
    return print(element, pretty);
}

bool parse(pugi::xml_document& document, const char* text)
{
    if (text == nullptr) {
        return false;
    }
    return static_cast<bool>(document.load_string(text, pugi::parse_default));
}

bool parse(pugi::xml_document& document, const char* buffer, std::size_t length)
{
    if (buffer == nullptr && length != 0) {
        return false;
    }
    return static_cast<bool>(
        document.load_buffer(buffer, length, pugi::parse_default, pugi::encoding_utf8));
}

void set_protocol_version(pugi::xml_node root)
{
    set_attribute(root, PROTOCOL_VERSION_ATTRIBUTE, "1.0");
}

protocol_version read_protocol_version(pugi::xml_node root)
{
    const pugi::xml_attribute attribute = root.attribute(PROTOCOL_VERSION_ATTRIBUTE);
    if (!attribute) {
        return {1, 0};
    }
    const std::string text = attribute.value();
    const std::size_t dot = text.find('.');
    protocol_version version;
    if (dot == std::string::npos) {
        if (!parseVersionPart(text, version.major)) {
            return {};
        }
        return version;
    }
    if (text.find('.', dot + 1) != std::string::npos ||
        !parseVersionPart(text.substr(0, dot), version.major) ||
        !parseVersionPart(text.substr(dot + 1), version.minor)) {
        return {};
    }
    return version;
}

bool has_supported_protocol_version(pugi::xml_node root)
{
    return read_protocol_version(root) == protocol_version{1, 0};
}

} // namespace xpugi
