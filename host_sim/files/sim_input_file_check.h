// The checks every reader of an input file makes before it opens it, so that
// a missing file and an unreadable one are told apart from a bad format.
#pragma once

#include <string>

namespace zelvar_sim {

// Throws FileError when `path` is not there, is a folder, or cannot be read.
void checkInputFile(const std::string& path);

} // namespace zelvar_sim
