// The bytes of one data block the host hands out. They grow by whole runs
// that a recording reads straight into them, so growing leaves the new
// bytes as they are instead of zeroing what is written over at once.
#pragma once

#include <memory>
#include <new>
#include <utility>
#include <vector>

namespace zelvar_sim {

template <typename T>
struct UninitialisedAllocator : std::allocator<T> {
    template <typename U>
    struct rebind {
        using other = UninitialisedAllocator<U>;
    };
    UninitialisedAllocator() = default;
    template <typename U>
    UninitialisedAllocator(const UninitialisedAllocator<U>&) noexcept
    {
    }
    // A value made without arguments is left as the memory holds it.
    template <typename U>
    void construct(U* place) noexcept
    {
        ::new (static_cast<void*>(place)) U;
    }
    template <typename U, typename... Args>
    void construct(U* place, Args&&... args)
    {
        ::new (static_cast<void*>(place)) U(std::forward<Args>(args)...);
    }
};

using BlockBytes = std::vector<unsigned char, UninitialisedAllocator<unsigned char>>;

} // namespace zelvar_sim
