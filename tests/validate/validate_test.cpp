// Runs the validator as a program against our plug-in and against small
// plug-ins with one fault each, and reads what it prints.
#include "zlr_run_command.h"

#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

namespace {

struct ValidateCase {
    const char* plugin;  // a file name in the broken plug-ins' folder, or empty for ours
    const char* options;
    // The one check that must fail and a text its reason must hold; empty
    // when every check must pass.
    const char* failing_check;
    const char* reason_part;
    int passed;
    int failed;
    int skipped;
};

std::string pluginPath(const ValidateCase& test)
{
    return *test.plugin ? std::string(BROKEN_PLUGIN_DIR) + "/" + test.plugin
                        : std::string(FREQUENCY_MEASUREMENT_PLUGIN);
}

TEST(Validate, EachFaultFailsItsCheckAndTheRestStillRun)
{
    const ValidateCase cases[] = {
        {"", "--long-run 20", "", "", 18, 0, 0},
        {"validate_broken_good.plugin", "", "", "", 7, 0, 11},
        {"validate_broken_extra_export.plugin", "--strictness 1", "exports", "zvPluginHelper", 6, 1, 11},
        {"validate_broken_crash.plugin", "--strictness 1", "hostile-messages",
         "died of (signal 11|ERROR: AddressSanitizer: SEGV|runtime error: store to null pointer)", 6, 1, 11},
        {"validate_broken_leak.plugin", "--strictness 1", "hostile-messages", "still alive", 6, 1, 11},
        {"validate_broken_hang.plugin", "--strictness 1 --time-limit 3", "hostile-messages",
         "plug-in hangs", 6, 1, 11},
        {"validate_broken_malformed_xml.plugin", "--strictness 1", "telegrams",
         "QUERY_ACTION: the plug-in's telegram is no well-formed XML", 6, 1, 11},
    };
    for (const ValidateCase& test : cases) {
        SCOPED_TRACE(test.plugin);
        const std::string output = zlr::test::runCommand(
            std::string(ZELVAR_SIM) + " validate " + pluginPath(test) + " --seed 7 " +
            test.options + " 2>&1; echo \"status $?\"");
        const std::string summary = "validate: " + std::to_string(test.passed) + " passed, " +
                                    std::to_string(test.failed) + " failed, " +
                                    std::to_string(test.skipped) + " skipped\n";
        EXPECT_NE(output.find(summary), std::string::npos) << output;
        EXPECT_NE(output.find(test.failed ? "status 1" : "status 0"), std::string::npos) << output;
        if (*test.failing_check) {
            const std::regex failure("FAIL " + std::string(test.failing_check) + ": [^\n]*" +
                                     test.reason_part);
            EXPECT_TRUE(std::regex_search(output, failure)) << output;
            EXPECT_NE(output.find(std::string("--only ") + test.failing_check + " --seed 7"),
                      std::string::npos)
                << output;
        }
    }
}

} // namespace
