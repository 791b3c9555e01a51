#include "sim_assertion_hook.h"

#include "plugin_loader.h"

#include <dlfcn.h>
#include <elf.h>
#include <link.h>

#include <atomic>
#include <cstring>
#include <fstream>
#include <stdexcept>

namespace zelvar_sim {
namespace {

// The kit's setter, zlr::setAssertionHandler(int (*)(char const*, char const*,
// char const*, int)), by its mangled name: the name fixes the signature too.
constexpr const char* SETTER_SYMBOL = "_ZN3zlr19setAssertionHandlerEPFiPKcS1_S1_iE";

// The handler is a plain function pointer without context, so the records
// live here, for the one hook installed at a time.
std::mutex g_mutex;
std::vector<AssertionRecord> g_records;
std::atomic<bool> g_installed{false};

int recordAssertion(const char* expression, const char* message, const char* path, int line)
{
    AssertionRecord record;
    record.expression = expression ? expression : "";
    record.message = message ? message : "";
    record.path = path ? path : "";
    record.line = line;
    std::lock_guard lock(g_mutex);
    g_records.push_back(std::move(record));
    return 1;
}

template <typename T>
bool readAt(std::ifstream& file, std::uint64_t offset, T* into, std::size_t count = 1)
{
    file.seekg(static_cast<std::streamoff>(offset));
    file.read(reinterpret_cast<char*>(into), static_cast<std::streamsize>(sizeof(T) * count));
    return static_cast<bool>(file);
}

// The symbol's value (its offset from the load base) in the file's .symtab.
std::uint64_t symbolValue(const std::string& path, const char* symbol)
{
    std::ifstream file(path, std::ios::binary);
    Elf64_Ehdr header{};
    if (!readAt(file, 0, &header) || std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0 ||
        header.e_ident[EI_CLASS] != ELFCLASS64 || header.e_shentsize != sizeof(Elf64_Shdr)) {
        return 0;
    }
    std::vector<Elf64_Shdr> sections(header.e_shnum);
    if (sections.empty() || !readAt(file, header.e_shoff, sections.data(), sections.size())) {
        return 0;
    }
    const std::size_t wanted = std::strlen(symbol);
    for (const Elf64_Shdr& table : sections) {
        if (table.sh_type != SHT_SYMTAB || table.sh_link >= sections.size() ||
            table.sh_entsize != sizeof(Elf64_Sym)) {
            continue;
        }
        const Elf64_Shdr& names = sections[table.sh_link];
        std::vector<char> strings(names.sh_size + 1, '\0');
        std::vector<Elf64_Sym> symbols(table.sh_size / sizeof(Elf64_Sym));
        if (!readAt(file, names.sh_offset, strings.data(), names.sh_size) ||
            !readAt(file, table.sh_offset, symbols.data(), symbols.size())) {
            return 0;
        }
        for (const Elf64_Sym& entry : symbols) {
            if (ELF64_ST_TYPE(entry.st_info) != STT_FUNC || entry.st_shndx == SHN_UNDEF ||
                entry.st_name >= names.sh_size) {
                continue;
            }
            const char* name = strings.data() + entry.st_name;
            if (std::strncmp(name, symbol, wanted + 1) == 0) {
                return entry.st_value;
            }
        }
    }
    return 0;
}

} // namespace

void* findLocalFunction(const PluginLibrary& library, const char* symbol)
{
    const std::uint64_t value = symbolValue(library.path(), symbol);
    if (value == 0) {
        return nullptr;
    }
    link_map* module = nullptr;
    if (dlinfo(library.handle(), RTLD_DI_LINKMAP, &module) != 0 || !module) {
        return nullptr;
    }
    return reinterpret_cast<void*>(module->l_addr + value);
}

AssertionHook::AssertionHook(const PluginLibrary& library)
{
    if (g_installed.exchange(true)) {
        throw std::logic_error("an assertion hook is installed already");
    }
    clear();
    m_setter = reinterpret_cast<Setter>(findLocalFunction(library, SETTER_SYMBOL));
    if (!m_setter) {
        m_notice = "assertions of " + library.path() +
                   " are not observable: its symbol table has no zlr::setAssertionHandler";
        return;
    }
    m_setter(&recordAssertion);
}

AssertionHook::~AssertionHook()
{
    if (m_setter) {
        m_setter(nullptr);
    }
    g_installed = false;
}

std::vector<AssertionRecord> AssertionHook::records() const
{
    std::lock_guard lock(g_mutex);
    return g_records;
}

void AssertionHook::clear()
{
    std::lock_guard lock(g_mutex);
    g_records.clear();
}

} // namespace zelvar_sim
