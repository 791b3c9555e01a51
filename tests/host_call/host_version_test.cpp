// The host check: name "Zelvar" and a version of at least 5.6, each dotted
// part read with automatic base.
#include "sim_host.h"
#include "zlrfw_host_version.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

TEST(HostVersion, ComparesDottedPartsWithAutomaticBase)
{
    struct Case {
        const char* version;
        bool accepted;
    };
    const Case cases[] = {
        {"5.6", true},   {"5.6.0", true},  {"5.5.9", false}, {"5.10", true},
        {"6", true},     {"5.06", true},   {"5.010", true},  {"5.09", false}, // octal: 0, then "9"
        {"5.0x6", true}, {"5.5", false},   {"4.99", false},  {"5.6.1", true},
        {" 5.6", true},  {"5.6abc", true}, {"0x5.6", true},  {"5.005", false},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(zlr::framework::isVersionAtLeast(c.version, "5.6"), c.accepted) << c.version;
    }
}

TEST(HostVersion, NeedsTheNameZelvarAndBothValues)
{
    struct Case {
        const char* name;
        const char* version;
        bool accepted;
    };
    const Case cases[] = {
        {"Zelvar", "5.6", true},
        {"zelvar", "5.6", false},
        {"Zelvar ", "5.6", false},
        {"Other", "9.0", false},
        {nullptr, "5.6", false},
        {"Zelvar", nullptr, false},
    };
    for (const Case& c : cases) {
        zelvar_sim::SimHost host;
        if (c.name) {
            host.tree().setString("#PluginHost", "Name", c.name);
        }
        if (c.version) {
            host.tree().setString("#PluginHost", "VersionString", c.version);
        }
        EXPECT_EQ(zlr::framework::checkHostVersion(&host), c.accepted)
            << (c.name ? c.name : "(no name)") << " " << (c.version ? c.version : "(none)");
        EXPECT_EQ(host.valuesOutsideTree(), 0);
    }
}

} // namespace
