// Collects what kit code reports on the assertion channel while a test runs.
#pragma once

#include "zlrbase_assert.h"

#include <string>
#include <vector>

class AssertionRecorder {
public:
    AssertionRecorder() { m_previous = zlr::setAssertionHandler(&record); reports().clear(); }
    ~AssertionRecorder() { zlr::setAssertionHandler(m_previous); }
    AssertionRecorder(const AssertionRecorder&) = delete;
    AssertionRecorder& operator=(const AssertionRecorder&) = delete;

    // Expression texts, with the source path after a '@'.
    const std::vector<std::string>& expressions() const { return reports(); }

private:
    static std::vector<std::string>& reports()
    {
        static std::vector<std::string> collected;
        return collected;
    }
    static int record(const char* expression, const char*, const char* path, int)
    {
        reports().push_back(std::string(expression) + "@" + path);
        return 1;
    }

    zlr::AssertionHandler m_previous = nullptr;
};
