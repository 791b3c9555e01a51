// Test helper: runs a shell command and gives back what it printed.
#pragma once

#include <array>
#include <cstdio>
#include <memory>
#include <string>

namespace zlr::test {

inline std::string runCommand(const std::string& command)
{
    std::string output;
    std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    if (!pipe) {
        return output;
    }
    std::array<char, 512> buffer{};
    while (fgets(buffer.data(), buffer.size(), pipe.get())) {
        output += buffer.data();
    }
    return output;
}

} // namespace zlr::test
