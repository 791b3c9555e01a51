// The exception that makes a message handler answer with the code it holds.
#pragma once

#include <cstdint>
#include <stdexcept>

namespace zlr::framework {

class CallbackError : public std::runtime_error {
public:
    explicit CallbackError(std::uint64_t code)
        : std::runtime_error("callback error " + std::to_string(code)), m_code(code)
    {
    }

    std::uint64_t code() const noexcept { return m_code; }

private:
    std::uint64_t m_code;
};

} // namespace zlr::framework
