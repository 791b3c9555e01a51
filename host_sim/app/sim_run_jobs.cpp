#include "sim_run_jobs.h"

#include "sim_file_error.h"

#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <map>
#include <thread>

namespace zelvar_sim {
namespace {

std::string outcomeFile(std::size_t session)
{
    return "session" + std::to_string(session) + ".outcome";
}

// The child's whole life: it never returns into the parent's code, and it
// leaves through _exit so that nothing the parent buffered is written twice.
[[noreturn]] void runChild(std::size_t session, const ScratchFolder& scratch,
                           const std::function<SessionOutcome(std::size_t)>& run)
{
    int code = 0;
    try {
        writeSessionOutcome(scratch.file(outcomeFile(session)), run(session));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "zelvar-sim: %s\n", error.what());
        code = 1;
    } catch (...) {
        code = 1;
    }
    std::fflush(nullptr);
    _exit(code);
}

SessionOutcome outcomeOfChild(const std::string& name, int wait_status, const std::string& file)
{
    SessionOutcome failed;
    failed.status = 3;
    if (WIFEXITED(wait_status) && WEXITSTATUS(wait_status) == 0) {
        try {
            return readSessionOutcome(file);
        } catch (const FileError& error) {
            failed.error = error.what();
            return failed;
        }
    }
    failed.error = name + ": the host session " +
                   (WIFSIGNALED(wait_status)
                        ? "died of signal " + std::to_string(WTERMSIG(wait_status)) + " (" +
                              strsignal(WTERMSIG(wait_status)) + ")"
                        : "ended with status " + std::to_string(WEXITSTATUS(wait_status)));
    return failed;
}

} // namespace

ScratchFolder::ScratchFolder()
{
    std::string pattern = (std::filesystem::temp_directory_path() / "zelvar-sim-XXXXXX").string();
    if (!mkdtemp(pattern.data())) {
        throw FileError(pattern + ": no scratch folder (" + std::strerror(errno) + ")");
    }
    m_path = pattern;
}

ScratchFolder::~ScratchFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

std::vector<SessionOutcome> runInChildren(const std::vector<std::string>& names, unsigned jobs,
                                          const ScratchFolder& scratch,
                                          const std::function<SessionOutcome(std::size_t)>& run,
                                          const std::function<void()>& waiting)
{
    std::vector<SessionOutcome> outcomes(names.size());
    std::map<pid_t, std::size_t> running;
    std::size_t next = 0;
    while (next < names.size() || !running.empty()) {
        while (next < names.size() && running.size() < std::max(1u, jobs)) {
            std::cout.flush();
            std::cerr.flush();
            std::fflush(nullptr);
            const pid_t child = fork();
            if (child < 0) {
                throw FileError(std::string("cannot start a host session: ") + std::strerror(errno));
            }
            if (child == 0) {
                runChild(next, scratch, run);
            }
            running.emplace(child, next++);
        }
        bool ended = false;
        for (auto it = running.begin(); it != running.end();) {
            int status = 0;
            if (waitpid(it->first, &status, WNOHANG) == it->first) {
                const std::size_t session = it->second;
                outcomes[session] =
                    outcomeOfChild(names[session], status, scratch.file(outcomeFile(session)));
                it = running.erase(it);
                ended = true;
            } else {
                ++it;
            }
        }
        if (!ended) {
            if (waiting) {
                waiting();
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        }
    }
    return outcomes;
}

unsigned processorCount()
{
    // A run pinned to some processors (taskset, a container's share) counts
    // only those.
    cpu_set_t allowed;
    if (sched_getaffinity(0, sizeof allowed, &allowed) == 0 && CPU_COUNT(&allowed) > 0) {
        return static_cast<unsigned>(CPU_COUNT(&allowed));
    }
    const long online = sysconf(_SC_NPROCESSORS_ONLN);
    return online > 0 ? static_cast<unsigned>(online) : 1u;
}

} // namespace zelvar_sim
