// Parsing and printing of telegram texts, the one way every reader and writer
// of this folder goes from text to tree and back.
#pragma once

#include <pugixml.hpp>

#include <cstddef>
#include <string>

namespace zlr {

// The library's default options, UTF-8; false on any parse error.
bool parseTelegram(pugi::xml_document& document, const char* text, std::size_t length);
bool parseTelegram(pugi::xml_document& document, const char* text);

// The raw form without indentation, as telegrams travel.
std::string documentText(const pugi::xml_document& document);
std::string nodeText(pugi::xml_node node);

} // namespace zlr
