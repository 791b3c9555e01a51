#include "sim_elf_exports.h"

#include <cstring>
#include <elf.h>
#include <fstream>
#include <iterator>

namespace zelvar_sim::validate {
namespace {

template <typename T>
bool readAt(const std::vector<char>& file, std::uint64_t offset, T& out)
{
    if (offset > file.size() || file.size() - offset < sizeof(T)) {
        return false;
    }
    std::memcpy(&out, file.data() + offset, sizeof(T));
    return true;
}

} // namespace

std::optional<std::vector<DynamicSymbol>> readExportedSymbols(const std::string& path,
                                                              std::string& error)
{
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        error = "cannot open " + path;
        return std::nullopt;
    }
    const std::vector<char> file((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    Elf64_Ehdr header{};
    if (!readAt(file, 0, header) || std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0 ||
        header.e_ident[EI_CLASS] != ELFCLASS64 || header.e_ident[EI_DATA] != ELFDATA2LSB) {
        error = "not a 64-bit little-endian ELF file";
        return std::nullopt;
    }
    if (header.e_shentsize != sizeof(Elf64_Shdr)) {
        error = "unexpected section header size";
        return std::nullopt;
    }
    std::vector<Elf64_Shdr> sections(header.e_shnum);
    for (std::size_t i = 0; i < sections.size(); ++i) {
        if (!readAt(file, header.e_shoff + i * sizeof(Elf64_Shdr), sections[i])) {
            error = "section headers run past the end of the file";
            return std::nullopt;
        }
    }
    std::vector<DynamicSymbol> symbols;
    bool found_table = false;
    for (const Elf64_Shdr& section : sections) {
        if (section.sh_type != SHT_DYNSYM) {
            continue;
        }
        found_table = true;
        if (section.sh_link >= sections.size() || section.sh_entsize != sizeof(Elf64_Sym)) {
            error = "the dynamic symbol table is malformed";
            return std::nullopt;
        }
        const Elf64_Shdr& names = sections[section.sh_link];
        for (std::uint64_t offset = 0; offset + sizeof(Elf64_Sym) <= section.sh_size;
             offset += sizeof(Elf64_Sym)) {
            Elf64_Sym symbol{};
            if (!readAt(file, section.sh_offset + offset, symbol)) {
                error = "the dynamic symbol table runs past the end of the file";
                return std::nullopt;
            }
            const unsigned binding = ELF64_ST_BIND(symbol.st_info);
            if (symbol.st_shndx == SHN_UNDEF || binding == STB_LOCAL ||
                ELF64_ST_VISIBILITY(symbol.st_other) != STV_DEFAULT) {
                continue;
            }
            if (symbol.st_name >= names.sh_size || names.sh_offset + symbol.st_name >= file.size()) {
                error = "a symbol name lies outside its string table";
                return std::nullopt;
            }
            const char* begin = file.data() + names.sh_offset + symbol.st_name;
            const std::size_t room = file.size() - (names.sh_offset + symbol.st_name);
            symbols.push_back({std::string(begin, strnlen(begin, room)), binding == STB_GNU_UNIQUE});
        }
    }
    if (!found_table) {
        error = "the file has no dynamic symbol table";
        return std::nullopt;
    }
    return symbols;
}

} // namespace zelvar_sim::validate
