// The variant objects must keep to their namespaces: a weak or global symbol
// outside ZFFT_AVX2, ZFFT_AVX or ZFFT_SSE2 could be merged by the linker
// with the same symbol of another variant, and a processor without AVX would
// then run AVX code. Nor may a variant object run code at load time.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

std::vector<std::string> read_lines(const std::string& path)
{
    std::ifstream in(path);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) {
        if (!line.empty()) {
            lines.push_back(line);
        }
    }
    return lines;
}

std::string run_command(const std::string& command)
{
    std::string out;
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) {
        return out;
    }
    char buffer[4096];
    while (std::size_t n = fread(buffer, 1, sizeof buffer, pipe)) {
        out.append(buffer, n);
    }
    pclose(pipe);
    return out;
}

// The name a compiler-made symbol is about: "vtable for X" is about X.
std::string subject(std::string name)
{
    for (const char* prefix : {"vtable for ", "typeinfo for ", "typeinfo name for ", "VTT for ",
                               "construction vtable for ", "guard variable for "}) {
        const std::string p = prefix;
        if (name.rfind(p, 0) == 0) {
            return name.substr(p.size());
        }
    }
    return name;
}

bool exported(char type)
{
    // Upper case: global; w, v: weak; u: unique global.
    return (type >= 'A' && type <= 'Z') || type == 'w' || type == 'v' || type == 'u';
}

struct VariantObjects {
    const char* namespace_prefix;
    const char* list_file;
};

const VariantObjects VARIANTS[] = {
    {"ZFFT_AVX2::", VARIANT_OBJECTS_AVX2},
    {"ZFFT_AVX::", VARIANT_OBJECTS_AVX},
    {"ZFFT_SSE2::", VARIANT_OBJECTS_SSE2},
};

TEST(VariantObjects, DefineNoSymbolOutsideTheirNamespace)
{
    for (const auto& v : VARIANTS) {
        const std::vector<std::string> objects = read_lines(v.list_file);
        ASSERT_FALSE(objects.empty()) << v.list_file;
        for (const auto& object : objects) {
            const std::string listing = run_command(std::string(NM_PROGRAM) + " -C --defined-only '" + object + "'");
            ASSERT_FALSE(listing.empty()) << "nm gave nothing for " << object;
            std::istringstream lines(listing);
            for (std::string line; std::getline(lines, line);) {
                // "<address> <type> <name>"
                const std::size_t first = line.find(' ');
                if (first == std::string::npos || first + 3 > line.size()) {
                    continue;
                }
                const char type = line[first + 1];
                const std::string name = line.substr(first + 3);
                if (!exported(type)) {
                    continue;
                }
                // The reference to the C++ personality routine that every
                // object with unwinding tables carries; it holds no code.
                if (name == "DW.ref.__gxx_personality_v0") {
                    continue;
                }
                EXPECT_EQ(subject(name).rfind(v.namespace_prefix, 0), 0u)
                    << object << " defines " << type << " " << name;
            }
        }
    }
}

TEST(VariantObjects, HaveNoInitialisationAtLoadTime)
{
#if defined(__SANITIZE_ADDRESS__)
    // AddressSanitizer gives every object a constructor that registers its
    // globals; the release build is where our own code is judged.
    GTEST_SKIP() << "sanitizer builds add their own load-time constructors";
#endif
    for (const auto& v : VARIANTS) {
        for (const auto& object : read_lines(v.list_file)) {
            const std::string headers = run_command(std::string(OBJDUMP_PROGRAM) + " -h '" + object + "'");
            ASSERT_NE(headers.find(".text"), std::string::npos) << "objdump gave nothing for " << object;
            EXPECT_EQ(headers.find(".init_array"), std::string::npos) << object;
            EXPECT_EQ(headers.find(".ctors"), std::string::npos) << object;
        }
    }
}

} // namespace
