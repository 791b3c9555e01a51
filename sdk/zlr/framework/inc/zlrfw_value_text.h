// The text of a host value that should carry an XML telegram.
#pragma once

#include "zlrbase_values.h"

#include <optional>
#include <string>
#include <string_view>

namespace zlr::framework {

// A copy of the text of an IfXmlValue; none for a null value or one of
// another type. The value stays the caller's.
std::optional<std::string> xmlValueText(IfValue* value);

// The same text in place, good while the caller holds the value: for the
// texts that every processing step reads and drops at once.
std::optional<std::string_view> xmlValueView(IfValue* value);

} // namespace zlr::framework
