#include "zlrbase_assert.h"

#include <atomic>
#include <csignal>
#include <cstdarg>
#include <cstdio>

namespace zlr {
namespace {

int goOn(const char*, const char*, const char*, int)
{
    return 1;
}

std::atomic<AssertionHandler> g_handler{&goOn};

} // namespace

AssertionHandler setAssertionHandler(AssertionHandler handler)
{
    return g_handler.exchange(handler ? handler : &goOn);
}

void reportAssertion(const char* expression, const char* path, int line, const char* format, ...)
{
    char message[256];
    const char* message_or_null = nullptr;
    if (format) {
        va_list args;
        va_start(args, format);
        std::vsnprintf(message, sizeof message, format, args);
        va_end(args);
        message_or_null = message;
    }
    if (g_handler.load()(expression, message_or_null, path, line) == 0) {
        std::raise(SIGTRAP);
    }
}

} // namespace zlr
