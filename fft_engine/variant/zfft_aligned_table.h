// Owner of one 32-byte aligned block of complex_t: the tables of the engine.
#pragma once

#include "zfft_variant.h"

#include <cstddef>
#include <cstdlib>
#include <new>
#include <utility>

namespace ZFFT_VARIANT {

class aligned_table {
public:
    aligned_table() = default;
    aligned_table(const aligned_table&) = delete;
    aligned_table& operator=(const aligned_table&) = delete;
    aligned_table(aligned_table&& other) noexcept : m_block(std::exchange(other.m_block, nullptr)) {}
    aligned_table& operator=(aligned_table&& other) noexcept
    {
        if (this != &other) {
            release();
            m_block = std::exchange(other.m_block, nullptr);
        }
        return *this;
    }
    ~aligned_table() { release(); }

    // Releases the old block first, then allocates `count` entries; the
    // contents are undefined. Throws std::bad_alloc, leaving no block.
    complex_t* resize(std::size_t count)
    {
        release();
        if (count == 0) {
            return nullptr;
        }
        void* block = nullptr;
        if (posix_memalign(&block, 32, count * sizeof(complex_t)) != 0) {
            throw std::bad_alloc();
        }
        m_block = static_cast<complex_t*>(block);
        return m_block;
    }

    void release()
    {
        std::free(m_block);
        m_block = nullptr;
    }

    complex_t* data() const { return m_block; }

private:
    complex_t* m_block = nullptr;
};

} // namespace ZFFT_VARIANT
