#include "sim_xml_reading.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace zelvar_sim {

pugi::xml_node strictRoot(pugi::xml_document& document, const std::string& text,
                          const char* name, bool versioned)
{
    if (!document.load_buffer(text.data(), text.size())) {
        return {};
    }
    const pugi::xml_node root = document.document_element();
    if (std::strcmp(root.name(), name) != 0) {
        return {};
    }
    if (versioned && std::strcmp(root.attribute("protocol_version").value(), "1.0") != 0) {
        return {};
    }
    return root;
}

std::optional<std::uint64_t> decimalOf(const char* text, std::uint64_t max)
{
    if (!text || !*text) {
        return std::nullopt;
    }
    std::uint64_t value = 0;
    for (const char* c = text; *c; ++c) {
        if (*c < '0' || *c > '9') {
            return std::nullopt;
        }
        const std::uint64_t digit = static_cast<std::uint64_t>(*c - '0');
        if (value > (max - digit) / 10) {
            return std::nullopt;
        }
        value = value * 10 + digit;
    }
    return value;
}

std::optional<std::int32_t> signed32Of(const char* text)
{
    if (!text) {
        return std::nullopt;
    }
    const bool negative = *text == '-';
    const auto magnitude =
        decimalOf(negative ? text + 1 : text,
                  std::uint64_t{std::numeric_limits<std::int32_t>::max()} + (negative ? 1 : 0));
    if (!magnitude) {
        return std::nullopt;
    }
    const auto value = static_cast<std::int64_t>(*magnitude);
    return static_cast<std::int32_t>(negative ? -value : value);
}

std::optional<double> doubleOf(const char* text)
{
    if (!text || !*text) {
        return std::nullopt;
    }
    char* end = nullptr;
    errno = 0;
    const double value = std::strtod(text, &end);
    // Underflow to a subnormal is a value the writer printed; overflow is not.
    if (end == text || *end != '\0' || (errno == ERANGE && std::isinf(value))) {
        return std::nullopt;
    }
    return value;
}

std::optional<bool> booleanOf(const char* text)
{
    if (!text) {
        return std::nullopt;
    }
    if (std::strcmp(text, "true") == 0) {
        return true;
    }
    if (std::strcmp(text, "false") == 0) {
        return false;
    }
    return std::nullopt;
}

} // namespace zelvar_sim
