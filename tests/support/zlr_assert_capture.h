// Test helper: records the expressions reported to the assertion channel
// while it lives, and lets execution go on as the default handler does.
#pragma once

#include "zlrbase_assert.h"

#include <string>
#include <vector>

namespace zlr::test {

class AssertCapture {
public:
    AssertCapture() : m_former(setAssertionHandler(&record)) { expressions().clear(); }
    ~AssertCapture() { setAssertionHandler(m_former); }
    AssertCapture(const AssertCapture&) = delete;
    AssertCapture& operator=(const AssertCapture&) = delete;

    const std::vector<std::string>& reported() const { return expressions(); }
    void clear() { expressions().clear(); }

private:
    static std::vector<std::string>& expressions()
    {
        static std::vector<std::string> list;
        return list;
    }
    static int record(const char* expression, const char*, const char*, int)
    {
        expressions().emplace_back(expression);
        return 1;
    }

    AssertionHandler m_former;
};

} // namespace zlr::test
