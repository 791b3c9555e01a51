#include "sim_input_file_check.h"

#include "sim_file_error.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace zelvar_sim {

void checkInputFile(const std::string& path)
{
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    if (!std::filesystem::exists(status)) {
        throw FileError(path + ": no such file");
    }
    if (std::filesystem::is_directory(status)) {
        throw FileError(path + ": is a folder, not a recording");
    }
    errno = 0;
    std::ifstream probe(path, std::ios::binary);
    if (!probe) {
        throw FileError(path + ": cannot be read (" +
                        (errno != 0 ? std::strerror(errno) : "unknown reason") + ")");
    }
}

} // namespace zelvar_sim
