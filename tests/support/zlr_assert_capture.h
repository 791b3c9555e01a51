// Test helper: records what reaches the assertion channel while it lives,
// and lets execution go on as the default handler does.
#pragma once

#include "zlrbase_assert.h"

#include <string>
#include <vector>

namespace zlr::test {

struct AssertReport {
    std::string expression;
    bool has_message = false;
    std::string message;
    std::string path;
    int line = 0;
};

class AssertCapture {
public:
    AssertCapture() : m_former(setAssertionHandler(&record)) { reports().clear(); }
    ~AssertCapture() { setAssertionHandler(m_former); }
    AssertCapture(const AssertCapture&) = delete;
    AssertCapture& operator=(const AssertCapture&) = delete;

    // The expressions reported so far, oldest first.
    std::vector<std::string> reported() const
    {
        std::vector<std::string> expressions;
        for (const AssertReport& report : reports()) {
            expressions.push_back(report.expression);
        }
        return expressions;
    }
    const AssertReport& last() const { return reports().back(); }
    void clear() { reports().clear(); }

private:
    static std::vector<AssertReport>& reports()
    {
        static std::vector<AssertReport> list;
        return list;
    }
    static int record(const char* expression, const char* message, const char* path, int line)
    {
        reports().push_back({expression, message != nullptr, message ? message : "", path, line});
        return 1;
    }

    AssertionHandler m_former;
};

} // namespace zlr::test
