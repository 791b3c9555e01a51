#include "sim_message_trace.h"

#include "sim_host.h"
#include "zlrbase_values.h"

#include <algorithm>
#include <cstdio>
#include <ostream>

namespace zelvar_sim {
namespace {

constexpr std::size_t SHOWN_BYTES = 16;

std::string quoted(const std::string& text)
{
    std::string out = "\"";
    for (const char c : text) {
        switch (c) {
        case '\n': out += "\\n"; break;
        case '\r': out += "\\r"; break;
        case '\t': out += "\\t"; break;
        case '\\': out += "\\\\"; break;
        case '"': out += "\\\""; break;
        default:
            if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) {
                char escaped[8];
                std::snprintf(escaped, sizeof escaped, "\\x%02X", static_cast<unsigned char>(c));
                out += escaped;
            } else {
                out += c;
            }
        }
    }
    return out + "\"";
}

std::string sized(const char* kind, std::size_t size)
{
    return std::string(kind) + "[" + std::to_string(size) + "]";
}

// A data message is a telegram when it is text with its terminator; anything
// else (the sample blocks of HOST_WRITE_SAMPLES) is shown as bytes.
bool isTelegram(const std::vector<unsigned char>& bytes)
{
    return !bytes.empty() && bytes.back() == 0 &&
           std::all_of(bytes.begin(), bytes.end() - 1, [](unsigned char c) {
               return c >= 0x20 || c == '\n' || c == '\r' || c == '\t';
           });
}

std::string hexStart(const std::vector<unsigned char>& bytes)
{
    std::string out = sized("bytes", bytes.size());
    const std::size_t shown = std::min(bytes.size(), SHOWN_BYTES);
    for (std::size_t i = 0; i < shown; ++i) {
        char hex[4];
        std::snprintf(hex, sizeof hex, " %02X", bytes[i]);
        out += hex;
    }
    return bytes.size() > shown ? out + " ..." : out;
}

// Result codes in decimal, and the not-handled answer (all bits set) and
// other large ones in hexadecimal.
std::string answerText(std::uint64_t answer)
{
    if (answer < 0x10000) {
        return std::to_string(answer);
    }
    char hex[24];
    std::snprintf(hex, sizeof hex, "0x%llX", static_cast<unsigned long long>(answer));
    return hex;
}

} // namespace

std::string traceValueText(const MessageRecord& value)
{
    if (value.kind == CallKind::sync_data) {
        if (value.bytes.empty()) {
            return "bytes[0]";
        }
        return isTelegram(value.bytes) ? sized("text", value.text.size()) + " " + quoted(value.text)
                                       : hexStart(value.bytes);
    }
    switch (value.value_type) {
    case 0:
        return "-";
    case zlr::VALUE_TYPE_XML:
        return sized("xml", value.text.size()) + " " + quoted(value.text);
    case zlr::VALUE_TYPE_STRING:
        return sized("string", value.text.size()) + " " + quoted(value.text);
    case zlr::VALUE_TYPE_UINT64:
        return "uint64 " + std::to_string(value.number);
    case zlr::VALUE_TYPE_BOOLEAN:
        return value.number ? "boolean true" : "boolean false";
    case zlr::VALUE_TYPE_SCALAR:
        return "scalar " + value.text;
    case zlr::VALUE_TYPE_ERROR:
        return "error " + std::to_string(value.number) + " " + quoted(value.text);
    case zlr::VALUE_TYPE_DATA_BLOCK_LIST:
        return "blocks " + std::to_string(value.number);
    default: {
        char type[16];
        std::snprintf(type, sizeof type, "0x%X", value.value_type);
        return std::string("value of type ") + type;
    }
    }
}

void MessageTrace::observe(const ObservedMessage& observed)
{
    const MessageRecord& message = *observed.message;
    char number[16];
    std::snprintf(number, sizeof number, "0x%X", message.id);
    const bool from_host = observed.direction == MessageDirection::host_to_plugin;
    std::string line = std::to_string(observed.sequence) + "  " +
                       std::string(2 * observed.depth, ' ') +
                       (from_host ? "host->plug-in  " : "plug-in->host  ") + messageName(message.id) +
                       " (" + number + ")  key " + std::to_string(message.key) + "  answer " +
                       answerText(message.answer) + "  " + traceValueText(message);
    if (observed.result) {
        line += "  result " + traceValueText(*observed.result);
    }
    m_waiting.emplace(observed.sequence, std::move(line));
    if (observed.depth == 0) {
        for (const auto& [sequence, waiting] : m_waiting) {
            m_out << waiting << '\n';
        }
        m_waiting.clear();
    }
}

} // namespace zelvar_sim
