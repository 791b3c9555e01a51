#include "zlrapi_numbers.h"

#include <cerrno>
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
    return convert<double>(text, "stod", [](const char* s, char** e) { return std::strtod(s, e); });
}

} // namespace zlr
