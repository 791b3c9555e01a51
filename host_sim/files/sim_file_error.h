// What goes wrong with a file a person hands to zelvar-sim, or one it
// writes: a missing or unreadable file, a format nobody reads, a bad number
// in a CSV, a sample rate of 0, gnuplot not there. The text is one line that
// names the file (and the line, where there is one), ready to print.
#pragma once

#include <stdexcept>
#include <string>

namespace zelvar_sim {

class FileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace zelvar_sim
