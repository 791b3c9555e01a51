// Strict runs see the loaded plug-in's assertions. The plug-in carries its
// own copy of the kit, hidden, and installs no handler, so its assertions
// would pass unseen. The hook finds the copy's handler setter in the
// module's symbol table (.symtab), adds the module's load address, and
// installs a handler that records each assertion and lets the plug-in go
// on, as the default does; the way a debugger reaches a hidden function.
#pragma once

#include <mutex>
#include <string>
#include <vector>

namespace zelvar_sim {

class PluginLibrary;

struct AssertionRecord {
    std::string expression;
    std::string message; // empty when the assertion had none
    std::string path;
    int line = 0;
};

class AssertionHook {
public:
    // Installs the recording handler in `library`, which must stay loaded
    // until the hook is destroyed. Only one hook may be installed at a time.
    explicit AssertionHook(const PluginLibrary& library);
    AssertionHook(const AssertionHook&) = delete;
    AssertionHook& operator=(const AssertionHook&) = delete;
    // Gives the plug-in its default handler back.
    ~AssertionHook();

    // False when the module has no symbol to reach its handler by; notice()
    // then says so in words.
    bool observable() const { return m_setter != nullptr; }
    const std::string& notice() const { return m_notice; }

    std::vector<AssertionRecord> records() const;
    void clear();

private:
    using Handler = int (*)(const char*, const char*, const char*, int);
    using Setter = Handler (*)(Handler);

    Setter m_setter = nullptr;
    std::string m_notice;
};

// The address in the loaded module of a function named `symbol` in the
// file's .symtab, or null when the file has no such symbol (or no .symtab).
void* findLocalFunction(const PluginLibrary& library, const char* symbol);

} // namespace zelvar_sim
