// The host's version against 5.6, each dotted part read with automatic base;
// the name and the missing values are checked through the loaded plug-in.
#include "zlrfw_host_version.h"

#include <gtest/gtest.h>

namespace {

TEST(HostVersion, ComparesDottedPartsWithAutomaticBase)
{
    struct Case {
        const char* version;
        bool accepted;
    };
    const Case cases[] = {
        {"5.6", true},   {"5.5.9", false},  {"5.10", true},  {"6", true},
        {"5.06", true},  {"5.09", false},   {"5.0x6", true}, {"4.99", false}, // "09": 0, then "9"
        {"5.6.1", true}, {"5.6abc", true},  {"0x5.6", true}, {"5.005", false},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(zlr::framework::isVersionAtLeast(c.version, "5.6"), c.accepted) << c.version;
    }
}

} // namespace
