#include "sim_check_runner.h"

#include "sim_log_sink.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <deque>
#include <exception>
#include <iostream>
#include <poll.h>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace zelvar_sim::validate {
namespace {

constexpr const char* VERDICT_PREFIX = "verdict: ";
constexpr std::size_t KEPT_LINES = 6;

[[noreturn]] void runChild(const Check& check, const std::string& plugin_path, std::uint64_t seed,
                           const CheckOptions& options, int out_fd)
{
    // Whatever the plug-in or a sanitizer prints lands in the same pipe, so
    // that the last lines before a crash say what happened.
    ::dup2(out_fd, STDOUT_FILENO);
    ::dup2(out_fd, STDERR_FILENO);
    std::string verdict;
    {
        LogSink quiet_log{LogSink::Recording{}};
        CheckContext context(plugin_path, seed, out_fd);
        context.setOptions(options);
        context.setLog(&quiet_log);
        try {
            check.run(context);
            verdict = "pass";
        } catch (const CheckSkipped& skipped) {
            verdict = std::string("skip ") + skipped.what();
        } catch (const CheckFailed& failed) {
            verdict = std::string("fail ") + failed.what();
        } catch (const std::exception& error) {
            verdict = std::string("fail the check stopped on an exception: ") + error.what();
        } catch (...) {
            verdict = "fail the check stopped on an exception of unknown type";
        }
    }
    for (char& c : verdict) {
        if (c == '\n') {
            c = ' ';
        }
    }
    std::fflush(nullptr);
    writeAll(out_fd, std::string("\n") + VERDICT_PREFIX + verdict + "\n");
    // No static destructors: a plug-in left in a bad state must not turn a
    // verdict already given into a crash.
    ::_exit(0);
}

struct ChildOutput {
    std::deque<std::string> lines;
    std::string partial;
    std::string verdict;
    bool has_verdict = false;
    std::string sanitizer_report;

    void take(const char* data, std::size_t size)
    {
        partial.append(data, size);
        std::size_t end;
        while ((end = partial.find('\n')) != std::string::npos) {
            std::string line = partial.substr(0, end);
            partial.erase(0, end + 1);
            if (sanitizer_report.empty()) {
                // A sanitizer catches the fault before the signal does and
                // ends the process itself; its first line names the fault.
                for (const char* marker : {"ERROR: AddressSanitizer: ", "runtime error: "}) {
                    const std::size_t at = line.find(marker);
                    if (at != std::string::npos) {
                        sanitizer_report = line.substr(at);
                        break;
                    }
                }
            }
            if (line.rfind(VERDICT_PREFIX, 0) == 0) {
                verdict = line.substr(std::strlen(VERDICT_PREFIX));
                has_verdict = true;
            } else if (!line.empty()) {
                lines.push_back(std::move(line));
                if (lines.size() > KEPT_LINES) {
                    lines.pop_front();
                }
            }
        }
    }
};

std::string signalText(int signal_number)
{
    std::ostringstream text;
    text << "signal " << signal_number;
    if (const char* name = ::strsignal(signal_number)) {
        text << " (" << name << ")";
    }
    return text.str();
}

} // namespace

CheckResult runIsolated(const Check& check, const std::string& plugin_path, std::uint64_t seed,
                        double time_limit_seconds, const CheckOptions& options)
{
    CheckResult result;
    int pipe_fds[2];
    if (::pipe(pipe_fds) != 0) {
        result.reason = std::string("cannot make a pipe: ") + std::strerror(errno);
        return result;
    }
    std::cout.flush();
    std::cerr.flush();
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child < 0) {
        ::close(pipe_fds[0]);
        ::close(pipe_fds[1]);
        result.reason = std::string("cannot start a child process: ") + std::strerror(errno);
        return result;
    }
    if (child == 0) {
        ::close(pipe_fds[0]);
        runChild(check, plugin_path, seed, options, pipe_fds[1]);
    }
    ::close(pipe_fds[1]);

    ChildOutput output;
    bool timed_out = false;
    const auto deadline = std::chrono::steady_clock::now() +
                          std::chrono::duration<double>(time_limit_seconds);
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0) {
            timed_out = true;
            break;
        }
        pollfd waiting{pipe_fds[0], POLLIN, 0};
        const int ready = ::poll(&waiting, 1, static_cast<int>(left.count()));
        if (ready < 0 && errno == EINTR) {
            continue;
        }
        if (ready <= 0) {
            continue;
        }
        char buffer[4096];
        const ssize_t got = ::read(pipe_fds[0], buffer, sizeof buffer);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got <= 0) {
            break; // every writer closed: the child ended
        }
        output.take(buffer, static_cast<std::size_t>(got));
    }
    if (timed_out) {
        ::kill(child, SIGKILL);
    }
    ::close(pipe_fds[0]);
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    output.take("\n", 1);
    result.last_lines.assign(output.lines.begin(), output.lines.end());

    std::ostringstream limit;
    limit << time_limit_seconds;
    if (timed_out) {
        result.reason = "no answer within " + limit.str() + " s (the plug-in hangs), stopped";
    } else if (WIFSIGNALED(status)) {
        result.reason = "the plug-in's process died of " + signalText(WTERMSIG(status));
    } else if (output.has_verdict && output.verdict == "pass" && !output.sanitizer_report.empty()) {
        result.reason = "the check passed, but the sanitizer reported " + output.sanitizer_report;
    } else if (output.has_verdict && output.verdict == "pass") {
        result.verdict = Verdict::pass;
    } else if (output.has_verdict && output.verdict.rfind("skip ", 0) == 0) {
        result.verdict = Verdict::skip;
        result.reason = output.verdict.substr(5);
    } else if (output.has_verdict && output.verdict.rfind("fail ", 0) == 0) {
        result.reason = output.verdict.substr(5);
    } else if (!output.sanitizer_report.empty()) {
        result.reason = "the plug-in's process died of " + output.sanitizer_report;
    } else if (WIFEXITED(status)) {
        result.reason = "the process exited with status " + std::to_string(WEXITSTATUS(status)) +
                        " before the check ended";
    } else {
        result.reason = "the process ended without a verdict";
    }
    if (result.verdict != Verdict::fail) {
        result.last_lines.clear();
    }
    return result;
}

} // namespace zelvar_sim::validate
