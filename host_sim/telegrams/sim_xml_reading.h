// The host's own strict reading of telegram texts: roots, versions, numbers
// and truth values. Where the kit is lenient (a missing version counts as
// 1.0, a number text may carry a rest), the host takes only what a plug-in
// of this contract writes, so that a sloppy telegram shows up as a refusal.
#pragma once

#include <pugixml.hpp>

#include <cstdint>
#include <optional>
#include <string>

namespace zelvar_sim {

// The root of `text` when it parses, is named `name` and, with `versioned`,
// carries "protocol_version" "1.0"; a null node otherwise.
pugi::xml_node strictRoot(pugi::xml_document& document, const std::string& text,
                          const char* name, bool versioned);

// Decimal digits only, no sign, no blanks, no rest, at most `max`.
std::optional<std::uint64_t> decimalOf(const char* text,
                                       std::uint64_t max = ~std::uint64_t{0});
// An optional minus followed by decimal digits, within 32 bits.
std::optional<std::int32_t> signed32Of(const char* text);
// A whole text that strtod takes ("nan" and "inf" included).
std::optional<double> doubleOf(const char* text);
// "true" or "false".
std::optional<bool> booleanOf(const char* text);

} // namespace zelvar_sim
