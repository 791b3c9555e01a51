// The holder of exactly one reference to a host value object.
#pragma once

#include "zlrbase_assert.h"
#include "zlrbase_values.h"

#include <utility>

namespace zlr {

template <typename T>
class zlrbase_api_object_ptr {
public:
    zlrbase_api_object_ptr() = default;

    // Takes a reference of its own: the caller keeps the one it had.
    explicit zlrbase_api_object_ptr(T* p) { assign(p); }

    zlrbase_api_object_ptr(const zlrbase_api_object_ptr& other) { assign(other.m_p); }
    zlrbase_api_object_ptr(zlrbase_api_object_ptr&& other) noexcept
        : m_p(std::exchange(other.m_p, nullptr))
    {
    }
    zlrbase_api_object_ptr& operator=(const zlrbase_api_object_ptr& other)
    {
        assign(other.m_p);
        return *this;
    }
    zlrbase_api_object_ptr& operator=(zlrbase_api_object_ptr&& other) noexcept
    {
        if (this != &other) {
            T* old = std::exchange(m_p, std::exchange(other.m_p, nullptr));
            if (old) {
                old->release();
            }
        }
        return *this;
    }
    ~zlrbase_api_object_ptr() { reset(); }

    // New pointer first gains a reference, then the old one loses its: safe
    // when both are the same object.
    void assign(T* p)
    {
        if (p) {
            p->addRef();
        }
        T* old = std::exchange(m_p, p);
        if (old) {
            old->release();
        }
    }

    // Holds an object that arrived with one reference for the caller (from
    // createValue, queryValue or a result address) and drops that transient
    // reference, so that exactly one remains, owned here.
    void adopt(T* p)
    {
        assign(p);
        if (p) {
            p->release();
        }
    }

    void reset() { assign(nullptr); }

    // Gives up the reference to the caller, for storing through a result
    // address: the receiver owns it from then on.
    T* detach() { return std::exchange(m_p, nullptr); }

    T* get() const { return m_p; }
    explicit operator bool() const { return m_p != nullptr; }

    T* operator->() const
    {
        ZLR_ASSERT(m_p != 0);
        return m_p;
    }
    T& operator*() const
    {
        ZLR_ASSERT(m_p != 0);
        return *m_p;
    }

private:
    T* m_p = nullptr;
};

} // namespace zlr
