#include "sim_validate_command.h"

#include "sim_check_runner.h"

#include <cstdlib>
#include <iostream>
#include <memory>
#include <random>
#include <sstream>

namespace zelvar_sim::validate {
namespace {

std::string replayCommand(const ValidateRequest& request, const std::string& name,
                          std::uint64_t seed)
{
    std::ostringstream text;
    text << "zelvar-sim validate " << request.plugin_path << " --only " << name << " --seed "
         << seed;
    if (request.options.long_run_seconds != CheckOptions{}.long_run_seconds) {
        text << " --long-run " << request.options.long_run_seconds;
    }
    return text.str();
}

} // namespace

int runValidate(std::ostream& out, const ValidateRequest& request)
{
    const std::uint64_t first_seed = request.seed_given ? request.seed : std::random_device{}();
    out << "validate: " << request.plugin_path << ", seed " << first_seed << ", strictness "
        << request.strictness << "\n";
    std::vector<Check> checks = allChecks();
    if (!request.only.empty()) {
        std::erase_if(checks, [&](const Check& check) { return check.name != request.only; });
        if (checks.empty()) {
            out << "validate: no check is named \"" << request.only << "\"; the checks:";
            for (const Check& check : allChecks()) {
                out << " " << check.name;
            }
            out << "\n";
            return 2;
        }
    }
    unsigned passed = 0;
    unsigned failed = 0;
    unsigned skipped = 0;
    for (unsigned round = 0; round < std::max(1u, request.repeat); ++round) {
        const std::uint64_t seed = first_seed + round;
        if (request.repeat > 1) {
            out << "validate: round " << round + 1 << " of " << request.repeat << ", seed " << seed
                << "\n";
        }
        for (const Check& check : checks) {
            if (check.strictness > request.strictness) {
                out << "SKIP " << check.name << ": runs from strictness " << check.strictness
                    << "\n";
                ++skipped;
                continue;
            }
            const double time_limit =
                request.time_limit_seconds +
                (check.long_running ? request.options.long_run_seconds / 10.0 : 0.0);
            const CheckResult result =
                runIsolated(check, request.plugin_path, seed, time_limit, request.options);
            switch (result.verdict) {
            case Verdict::pass:
                out << "PASS " << check.name << "\n";
                ++passed;
                break;
            case Verdict::skip:
                out << "SKIP " << check.name << ": " << result.reason << "\n";
                ++skipped;
                break;
            case Verdict::fail:
                out << "FAIL " << check.name << ": " << result.reason << "\n";
                for (const std::string& line : result.last_lines) {
                    out << "    | " << line << "\n";
                }
                out << "    seed " << seed << ", replay: " << replayCommand(request, check.name, seed)
                    << "\n";
                ++failed;
                break;
            }
            out.flush();
        }
    }
    out << "validate: " << passed << " passed, " << failed << " failed, " << skipped
        << " skipped\n";
    return failed == 0 ? 0 : 1;
}

} // namespace zelvar_sim::validate

void addValidateCommand(CLI::App& app)
{
    auto request = std::make_shared<zelvar_sim::validate::ValidateRequest>();
    CLI::App* command = app.add_subcommand(
        "validate", "run the conformance checks against a plug-in, each in a child process");
    command->add_option("plugin", request->plugin_path, "the .plugin file to check")->required();
    command->add_option("--seed", request->seed, "seed of the checks' random choices")
        ->each([request](const std::string&) { request->seed_given = true; });
    command->add_option("--repeat", request->repeat, "run the checks this many times, seed after seed")
        ->capture_default_str();
    command->add_option("--only", request->only, "run the one check of this name");
    command->add_option("--strictness", request->strictness,
                        "1: entry points and messages, 2: also a channel and its settings, 3: also "
                        "runs over data")
        ->check(CLI::Range(1, 3))
        ->capture_default_str();
    command->add_option("--time-limit", request->time_limit_seconds,
                        "seconds a check may take before it counts as a hang")
        ->check(CLI::PositiveNumber)
        ->capture_default_str();
    command->add_option("--long-run", request->options.long_run_seconds,
                        "seconds of data of the long run at 48 kHz")
        ->check(CLI::PositiveNumber)
        ->capture_default_str();
    command->final_callback([request]() {
        std::exit(zelvar_sim::validate::runValidate(std::cout, *request));
    });
}
