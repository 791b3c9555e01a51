// Thin helpers over pugixml that every telegram reader and writer shares:
// element-typed handles, child look-ups, trimmed texts, checked setters,
// serialising, parsing, and the telegram version attribute.
#pragma once

#include <pugixml.hpp>

#include <cstddef>
#include <cstdint>
#include <exception>
#include <string>

namespace xpugi {

// Thrown when an xml_element is made from a node that is neither an element
// nor null. Callers catch the type; the text is left empty on purpose, so
// nothing ever shows it.
class xml_element_exception : public std::exception {
public:
    explicit xml_element_exception(const std::string& reason);
    const char* what() const noexcept override;

private:
    std::string m_text;
};

// A pugi::xml_node that is known to be an element, or null.
class xml_element {
public:
    xml_element() = default;
    // Throws xml_element_exception for a node of any other kind.
    xml_element(pugi::xml_node node);

    pugi::xml_node node() const { return m_node; }
    operator pugi::xml_node() const { return m_node; }
    explicit operator bool() const { return static_cast<bool>(m_node); }
    const pugi::xml_node* operator->() const { return &m_node; }

private:
    pugi::xml_node m_node;
};

xml_element append_child_element(pugi::xml_node parent, const std::string& name);

// The first child of that name (the library's search), when it is an element.
xml_element first_child_element(pugi::xml_node node, const std::string& name);

// The first child, of whatever kind, whose name equals `name` exactly.
pugi::xml_node find_child(pugi::xml_node node, const std::string& name);

std::string trimmed_value(pugi::xml_node node);

// Text and character-data of the whole subtree in document order, trimmed.
std::string trimmed_text(pugi::xml_node node);

// Strips C-locale white space from both ends.
std::string trim(const std::string& text);

// Appends the attribute and sets its value; failures are reported through
// the assertion channel and otherwise ignored.
void set_attribute(pugi::xml_node node, const std::string& name, const std::string& value);
void set_attribute(pugi::xml_node node, const std::string& name, const char* value);
void set_attribute(pugi::xml_node node, const std::string& name, std::uint64_t value);
void set_attribute(pugi::xml_node node, const std::string& name, double value);

// Replaces an element's content by one text; an empty text changes nothing.
void set_text(pugi::xml_node node, const std::string& text);
void set_text(pugi::xml_node node, const char* text);

// Serialising: `pretty` false gives the raw form that every telegram uses.
std::string to_xml(const pugi::xml_document& document, bool pretty);
std::string to_xml(pugi::xml_node node, bool pretty);
std::string to_xml_of_document_element(const pugi::xml_document& document, bool pretty);

// Parsing with the library's default options; false on any parse error.
bool parse(pugi::xml_document& document, const char* text);
bool parse(pugi::xml_document& document, const char* buffer, std::size_t length);

// The version that every telegram root carries.
inline constexpr const char* PROTOCOL_VERSION_ATTRIBUTE = "protocol_version";

struct protocol_version {
    int major = 0;
    int minor = 0;
    bool operator==(const protocol_version&) const = default;
};

// Writes "1.0", the one version this kit speaks.
void set_protocol_version(pugi::xml_node root);

// A missing attribute counts as 1.0, a lone number as <number>.0; more than
// two parts or anything that is not a decimal number gives 0.0.
protocol_version read_protocol_version(pugi::xml_node root);

bool has_supported_protocol_version(pugi::xml_node root);

} // namespace xpugi
