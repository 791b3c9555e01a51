// Reads the dynamic symbol table of a shared object file: which symbols it
// offers to the loader, and which of them are STB_GNU_UNIQUE (a module with
// one of those is never unloaded).
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace zelvar_sim::validate {

struct DynamicSymbol {
    std::string name;
    bool unique = false;
};

// The defined, non-local symbols of the file's dynamic symbol table, or
// nothing (with `error` filled) when the file is not a 64-bit ELF object
// of this machine's byte order.
std::optional<std::vector<DynamicSymbol>> readExportedSymbols(const std::string& path,
                                                              std::string& error);

} // namespace zelvar_sim::validate
