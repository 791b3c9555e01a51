// Host sessions of "zelvar-sim run" side by side: each in a child process
// of its own (fork), at most `jobs` at a time, each handing its outcome to
// the parent through a file in a scratch folder. The parent gives the
// outcomes back in the order of the sessions, so what a run prints and
// writes does not depend on which child finished first.
#pragma once

#include "sim_session_outcome.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace zelvar_sim {

// A folder of its own under the system's temporary folder, removed with
// everything in it when this goes.
class ScratchFolder {
public:
    ScratchFolder(); // throws FileError
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    ~ScratchFolder();

    std::string file(const std::string& name) const { return m_path + "/" + name; }

private:
    std::string m_path;
};

// Runs session k as `run(k)` in a child, for every k below `names.size()`;
// `names` say which session a child that died belonged to. `waiting` is
// called about ten times a second while children run.
std::vector<SessionOutcome> runInChildren(const std::vector<std::string>& names, unsigned jobs,
                                          const ScratchFolder& scratch,
                                          const std::function<SessionOutcome(std::size_t)>& run,
                                          const std::function<void()>& waiting);

// The number of processors this process may run on, at least 1.
unsigned processorCount();

} // namespace zelvar_sim
