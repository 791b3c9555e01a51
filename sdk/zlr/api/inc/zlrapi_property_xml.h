// The XML vocabulary of Property values: each value type is written as one
// element, the type-defining node, named after the type.
#pragma once

#include "zlrapi_property.h"

#include <string>

namespace zlr {

// "StringValue", "DoubleValue", ...; null for NONE and for unknown codes.
const char* propertyTypeElementName(Property::Type type);

// The type named by an element, exactly and case-sensitively; NONE when the
// name is not one of the vocabulary.
Property::Type propertyTypeFromElementName(const std::string& name);

} // namespace zlr
