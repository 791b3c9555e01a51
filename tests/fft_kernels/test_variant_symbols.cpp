// The variant objects must keep to their namespaces: a weak or global symbol
// outside ZFFT_AVX2, ZFFT_AVX or ZFFT_SSE2 could be merged by the linker
// with the same symbol of another variant, and a processor without AVX would
// then run AVX code. Nor may a variant object run code at load time.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace {

std::vector<std::string> variant_objects(const char* list_file)
{
    std::ifstream in(list_file);
    std::vector<std::string> objects;
    for (std::string line; std::getline(in, line);) {
        if (!line.empty()) {
            objects.push_back(line);
        }
    }
    return objects;
}

std::string output_of(const std::string& program, const std::string& arguments, const std::string& object)
{
    std::string out;
    if (FILE* pipe = popen((program + " " + arguments + " '" + object + "'").c_str(), "r")) {
        char buffer[4096];
        while (std::size_t n = fread(buffer, 1, sizeof buffer, pipe)) {
            out.append(buffer, n);
        }
        pclose(pipe);
    }
    return out;
}

const struct {
    const char* namespace_prefix;
    const char* list_file;
} VARIANTS[] = {
    {"ZFFT_AVX2::", VARIANT_OBJECTS_AVX2},
    {"ZFFT_AVX::", VARIANT_OBJECTS_AVX},
    {"ZFFT_SSE2::", VARIANT_OBJECTS_SSE2},
};

TEST(VariantObjects, DefineNoSymbolOutsideTheirNamespace)
{
    for (const auto& v : VARIANTS) {
        // Compiler-made symbols name what they are about: "vtable for X".
        const std::regex inside(std::string("^((vtable|typeinfo|typeinfo name|VTT|construction vtable|guard variable) for )?") +
                                v.namespace_prefix);
        const std::vector<std::string> objects = variant_objects(v.list_file);
        ASSERT_FALSE(objects.empty()) << v.list_file;
        for (const auto& object : objects) {
            const std::string listing = output_of(NM_PROGRAM, "-C --defined-only", object);
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
                // Upper case: global; w, v: weak; u: unique global. The
                // personality routine's reference holds no code.
                const bool exported = (type >= 'A' && type <= 'Z') || type == 'w' || type == 'v' || type == 'u';
                if (exported && name != "DW.ref.__gxx_personality_v0") {
                    EXPECT_TRUE(std::regex_search(name, inside)) << object << " defines " << type << " " << name;
                }
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
        for (const auto& object : variant_objects(v.list_file)) {
            const std::string headers = output_of(OBJDUMP_PROGRAM, "-h", object);
            ASSERT_NE(headers.find(".text"), std::string::npos) << "objdump gave nothing for " << object;
            EXPECT_EQ(headers.find(".init_array"), std::string::npos) << object;
            EXPECT_EQ(headers.find(".ctors"), std::string::npos) << object;
        }
    }
}

} // namespace
