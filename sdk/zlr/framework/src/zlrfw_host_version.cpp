#include "zlrfw_host_version.h"

#include "zlrapi_numbers.h"
#include "zlrapi_utils.h"

#include <algorithm>
#include <vector>

namespace zlr::framework {
namespace {

std::vector<long> versionParts(const std::string& text)
{
    std::vector<long> parts;
    std::string::size_type start = 0;
    while (true) {
        const auto dot = text.find('.', start);
        parts.push_back(stolChecked(text.substr(start, dot - start), 0));
        if (dot == std::string::npos) {
            return parts;
        }
        start = dot + 1;
    }
}

} // namespace

bool isVersionAtLeast(const std::string& actual, const std::string& required)
{
    std::vector<long> have = versionParts(actual);
    std::vector<long> need = versionParts(required);
    const auto length = std::max(have.size(), need.size());
    have.resize(length, 0);
    need.resize(length, 0);
    for (std::size_t i = 0; i < length; ++i) {
        if (need[i] != have[i]) {
            return need[i] < have[i];
        }
    }
    return true;
}

bool checkHostVersion(IfHost* host)
{
    const auto name = queryStringValue(host, tree::PLUGIN_HOST, tree::NAME);
    const auto version = queryStringValue(host, tree::PLUGIN_HOST, tree::VERSION_STRING);
    if (!name || !version) {
        return false;
    }
    const char* name_text = name->getData();
    const char* version_text = version->getData();
    if (!name_text || std::string(name_text) != "Zelvar") {
        return false;
    }
    return isVersionAtLeast(version_text ? version_text : "", REQUIRED_HOST_VERSION);
}

} // namespace zlr::framework
