// Runs each check in a forked child with a time limit and turns what the
// child did (its verdict line, its exit, its signal, its silence) into one
// verdict for the parent to print.
#pragma once

#include "sim_validate_checks.h"

#include <cstdint>
#include <string>
#include <vector>

namespace zelvar_sim::validate {

enum class Verdict { pass, fail, skip };

struct CheckResult {
    Verdict verdict = Verdict::fail;
    std::string reason;
    // The child's last lines of output, newest last, when it failed.
    std::vector<std::string> last_lines;
};

// Runs `check` in a child process; a crash, an abort, an exit without a
// verdict or more than `time_limit_seconds` is a failure.
CheckResult runIsolated(const Check& check, const std::string& plugin_path, std::uint64_t seed,
                        double time_limit_seconds, const CheckOptions& options = {});

} // namespace zelvar_sim::validate
