#include "zlrapi_numbers.h"

#include <cerrno>
#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <stdexcept>

namespace zlr {
namespace {

// Runs one strto* function with errno cleared, and turns "no digits" and
// ERANGE into the kit's exceptions.
template <typename Result, typename Convert>
Result convert(const std::string& text, const char* name, Convert strto)
{
    const char* begin = text.c_str();
    char* end = nullptr;
    const int saved_errno = errno;
    errno = 0;
    const Result value = strto(begin, &end);
    const int conversion_errno = errno;
    errno = saved_errno;
    if (end == begin) {
        throw std::invalid_argument(std::string("invalid ") + name + " argument");
    }
    if (conversion_errno == ERANGE) {
        throw std::out_of_range(std::string(name) + " argument out of range");
    }
    return value;
}

} // namespace

long stolChecked(const std::string& text, int base)
{
    return convert<long>(text, "stol",
                         [base](const char* s, char** e) { return std::strtol(s, e, base); });
}

unsigned long stoulChecked(const std::string& text, int base)
{
    return convert<unsigned long>(
        text, "stoul", [base](const char* s, char** e) { return std::strtoul(s, e, base); });
}

long long stollChecked(const std::string& text, int base)
{
    return convert<long long>(
        text, "stoll", [base](const char* s, char** e) { return std::strtoll(s, e, base); });
}

unsigned long long stoullChecked(const std::string& text, int base)
{
    return convert<unsigned long long>(
        text, "stoull", [base](const char* s, char** e) { return std::strtoull(s, e, base); });
}

double stodChecked(const std::string& text)
{
    // The host's times come as 17 digits, which strtod reads the slow way.
    double value = 0.0;
    if (readPlainDouble(text, value)) {
        return value;
    }
    return convert<double>(text, "stod", [](const char* s, char** e) { return std::strtod(s, e); });
}

bool readPlainDouble(std::string_view text, double& value)
{
    const std::size_t lead = !text.empty() && text.front() == '-' ? 1 : 0;
    if (lead == text.size() ||
        !((text[lead] >= '0' && text[lead] <= '9') || text[lead] == '.')) {
        return false;
    }
    const char* const end = text.data() + text.size();
    double read = 0.0;
    const auto [stop, error] = std::from_chars(text.data(), end, read);
    if (error != std::errc() || stop != end) {
        return false;
    }
    if (read == 0.0) {
        // A zero that came of non-zero digits underflowed.
        for (const char c : text) {
            if (c == 'e' || c == 'E') {
                break;
            }
            if (c >= '1' && c <= '9') {
                return false;
            }
        }
    } else if (std::fabs(read) < DBL_MIN) {
        return false;
    }
    value = read;
    return true;
}

} // namespace zlr
