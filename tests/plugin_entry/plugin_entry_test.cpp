// The built frequency_measurement.plugin, loaded the way the host loads it.
#include "plugin_loader.h"
#include "sim_host.h"
#include "zlr_run_command.h"
#include "zlrbase_messages.h"

#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <string>

namespace {

using zelvar_sim::PluginLibrary;
using zelvar_sim::PluginSession;
using zelvar_sim::SimHost;

const char* const PLUGIN = FREQUENCY_MEASUREMENT_PLUGIN;

// Unloading and loading again, with a run in each life, is the plug-in
// lifetime scenario's.
TEST(PluginFile, ExportsExactlyTheFourEntryPoints)
{
    const std::string symbols =
        zlr::test::runCommand(std::string("nm -D --defined-only ") + PLUGIN + " | awk '{print $3}'");
    std::set<std::string> names;
    std::istringstream lines(symbols);
    for (std::string name; std::getline(lines, name);) {
        if (!name.empty()) {
            names.insert(name);
        }
    }
    const std::set<std::string> expected = {"zvCreatePlugin", "zvDeletePlugin",
                                            "zvGetPluginManifest", "zvGetPluginName"};
    EXPECT_EQ(names, expected);
    EXPECT_EQ(zlr::test::runCommand(std::string("readelf -sW ") + PLUGIN + " | grep -c UNIQUE"), "0\n");
}

TEST(EntryPoints, ProbeWrongIdsAndStablePointers)
{
    PluginLibrary library(PLUGIN);
    const auto create = library.createFunction();
    const auto destroy = library.deleteFunction();

    EXPECT_EQ(create(&zelvar_sim::HOST_INTERFACE_ID, nullptr), 1); // the probe makes nothing

    for (int flipped : {0, 7, 8, 15}) {
        zlr::PluginInterfaceId wrong = zelvar_sim::HOST_INTERFACE_ID;
        wrong.bytes[flipped] ^= 0x01;
        zlr::IfPlugin* out = nullptr;
        EXPECT_EQ(create(&wrong, &out), 0) << flipped;
        EXPECT_EQ(out, nullptr);

        zlr::IfPlugin* plugin = nullptr;
        ASSERT_EQ(create(&zelvar_sim::HOST_INTERFACE_ID, &plugin), 1);
        ASSERT_NE(plugin, nullptr);
        EXPECT_EQ(destroy(&wrong, plugin), 0) << flipped;
        // Still alive: it answers a message that nobody handles.
        EXPECT_EQ(plugin->pluginMessage(0x12345, 0, nullptr, nullptr), zlr::RESULT_NOT_HANDLED);
        EXPECT_EQ(destroy(&zelvar_sim::HOST_INTERFACE_ID, plugin), 1);
    }
    EXPECT_EQ(destroy(&zelvar_sim::HOST_INTERFACE_ID, nullptr), 1);

    EXPECT_EQ(library.nameFunction()(), library.nameFunction()());
    EXPECT_EQ(library.manifestFunction()(), library.manifestFunction()());
    EXPECT_STREQ(library.nameFunction()(), "FREQUENCY_MEASUREMENT");
}

TEST(PluginInit, ChecksTheHostNameAndVersion)
{
    struct Case {
        const char* name;
        const char* version;
        std::uint64_t code;
    };
    // One row per outcome; the version comparison has its own table.
    const Case cases[] = {
        {"Zelvar", "5.6", 0},      {"Zelvar", "5.10", 0},   {"Zelvar", "5.5.9", 12},
        {"Other", "5.6", 12},      {"zelvar", "5.6", 12},   {nullptr, "5.6", 12},
        {"Zelvar", nullptr, 12},
        {"Zelvar", "abc", 12},     {"Zelvar", "99999999999999999999", 12},
    };
    PluginLibrary library(PLUGIN);
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.name ? c.name : "(no name)") + " " +
                     (c.version ? c.version : "(no version)"));
        SimHost host;
        if (c.name) {
            host.tree().setString("#PluginHost", "Name", c.name);
        }
        if (c.version) {
            host.tree().setString("#PluginHost", "VersionString", c.version);
        }
        {
            PluginSession session(library, host, {.check_minimum_version = false});
            const auto& init = session.initOutcome();
            EXPECT_EQ(init.code, c.code);
            // A refusal comes with its text, so the host gets the code alone.
            EXPECT_FALSE(init.has_error_object);
            const auto translations = host.messagesWithId(zlr::HOST_ADD_TRANSLATION);
            EXPECT_EQ(translations.size(), c.code == 0 ? 2u : 0u);
        }
        EXPECT_EQ(host.valuesOutsideTree(), 0);
    }
}

} // namespace
