#include "zlrapi_data_set_enums.h"

#include <map>
#include <stdexcept>

namespace zlr {
namespace {

using TextMap = std::map<std::uint32_t, std::string>;

const TextMap DATA_SET_TYPE_TEXTS{{DATA_SET_TYPE_EXACT, "EXACT"},
                                  {DATA_SET_TYPE_RELAXED, "RELAXED"}};
const TextMap DATA_SET_MODE_TEXTS{{DATA_SET_MODE_NORMAL, "NORMAL"},
                                  {DATA_SET_MODE_SKIP, "SKIP"},
                                  {DATA_SET_MODE_AVERAGE, "AVERAGE"},
                                  {DATA_SET_MODE_REDUCED, "REDUCED"}};
const TextMap STREAM_POLICY_TEXTS{{STREAM_POLICY_PUSH, "Push"}, {STREAM_POLICY_PULL, "Pull"}};
const TextMap STREAM_TYPE_TEXTS{{STREAM_TYPE_RAW, "RAW"}, {STREAM_TYPE_SCALED, "SCALED"}};

std::string printOrFallback(const TextMap& texts, std::uint32_t value, const char* fallback)
{
    try {
        return texts.at(value);
    } catch (const std::out_of_range&) {
        return fallback;
    }
}

template <typename Enum>
bool lookUpText(const TextMap& texts, const std::string& text, Enum& value)
{
    for (const auto& [number, name] : texts) {
        if (name == text) {
            value = static_cast<Enum>(number);
            return true;
        }
    }
    return false;
}

} // namespace

// The type's fallback names the mode: that is the host's own text.
std::string toText(DataSetType value)
{
    return printOrFallback(DATA_SET_TYPE_TEXTS, value, "Unknown DataSetMode");
}
std::string toText(DataSetMode value)
{
    return printOrFallback(DATA_SET_MODE_TEXTS, value, "Unknown DataSetMode");
}
std::string toText(StreamPolicy value)
{
    return printOrFallback(STREAM_POLICY_TEXTS, value, "Unknown StreamPolicy");
}
std::string toText(StreamType value)
{
    return printOrFallback(STREAM_TYPE_TEXTS, value, "Unknown StreamType");
}

bool fromText(const std::string& text, DataSetType& value)
{
    return lookUpText(DATA_SET_TYPE_TEXTS, text, value);
}
bool fromText(const std::string& text, DataSetMode& value)
{
    return lookUpText(DATA_SET_MODE_TEXTS, text, value);
}
bool fromText(const std::string& text, StreamPolicy& value)
{
    return lookUpText(STREAM_POLICY_TEXTS, text, value);
}
bool fromText(const std::string& text, StreamType& value)
{
    return lookUpText(STREAM_TYPE_TEXTS, text, value);
}

} // namespace zlr
