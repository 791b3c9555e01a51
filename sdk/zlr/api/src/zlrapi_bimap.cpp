#include "zlrapi_bimap.h"

#include "zlrbase_assert.h"

namespace zlr {
namespace {

void checkSide(std::size_t actual, const char* name, std::size_t expected)
{
    if (actual == expected) {
        return;
    }
    const std::string text = std::string("Assertion failed: ") + name + " size " +
                             std::to_string(actual) + " != " + std::to_string(expected) +
                             " (actual != expected)";
    reportAssertion(text.c_str(), ZLR_SOURCE_PATH, __LINE__);
    throw std::runtime_error(text);
}

} // namespace

void assert_bimap_size(const StringBimap& map, const char* name, std::size_t expected)
{
    checkSide(map.leftSize(), name, expected);
    checkSide(map.rightSize(), name, expected);
}

} // namespace zlr
