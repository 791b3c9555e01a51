#include "zlrapi_xml_buffered_writer.h"

#include "zlrapi_seventeen_digits.h"
#include "zlrbase_assert.h"

#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <system_error>

namespace zlr {
namespace {

constexpr std::size_t UNSIGNED_ROOM = 32;
constexpr std::size_t DOUBLE_ROOM = 64;

constexpr std::uint64_t SIGN_BIT = 0x8000000000000000ULL;
constexpr std::uint64_t QUIET_BIT = 0x0008000000000000ULL;
constexpr std::uint64_t MANTISSA_BITS = 0x000FFFFFFFFFFFFFULL;

// The word for a NaN whose sign has already been written.
const char* nanWord(std::uint64_t bits)
{
    const std::uint64_t mantissa = bits & MANTISSA_BITS;
    if ((mantissa & QUIET_BIT) == 0) {
        return "nan(snan)";
    }
    // The processor's default NaN (sign set, only the quiet bit) has a name
    // of its own.
    if ((bits & SIGN_BIT) != 0 && mantissa == QUIET_BIT) {
        return "nan(ind)";
    }
    return "nan";
}

} // namespace

XmlBufferedWriter::XmlBufferedWriter(std::ostream& stream) : m_stream(stream) {}

bool XmlBufferedWriter::ensure(std::size_t n)
{
    if (m_cursor + n <= BUFFER_SIZE) {
        return true;
    }
    writeOut();
    return n < BUFFER_SIZE + 1;
}

void XmlBufferedWriter::writeOut()
{
    if (m_cursor != 0) {
        m_stream.write(m_buffer.data(), static_cast<std::streamsize>(m_cursor));
        m_cursor = 0;
    }
}

void XmlBufferedWriter::put(std::string_view text)
{
    std::memcpy(m_buffer.data() + m_cursor, text.data(), text.size());
    m_cursor += text.size();
}

void XmlBufferedWriter::writeChar(char c)
{
    if (m_cursor == BUFFER_SIZE) {
        writeOut();
    }
    m_buffer[m_cursor++] = c;
}

void XmlBufferedWriter::writeRaw(std::string_view text)
{
    if (ensure(text.size())) {
        put(text);
    } else {
        m_stream.write(text.data(), static_cast<std::streamsize>(text.size()));
    }
}

void XmlBufferedWriter::writeTag(std::string_view opening, std::string_view name)
{
    // Room for the name with "<" and ">", or "</" and ">".
    if (ensure(name.size() + 3)) {
        put(opening);
        put(name);
    } else {
        m_stream.write(opening.data(), static_cast<std::streamsize>(opening.size()));
        m_stream.write(name.data(), static_cast<std::streamsize>(name.size()));
    }
}

void XmlBufferedWriter::writeEscaped(std::string_view text)
{
    std::size_t run_start = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char* replacement = nullptr;
        switch (text[i]) {
        case '"':
            replacement = "&quot;";
            break;
        case '&':
            replacement = "&amp;";
            break;
        case '\'':
            replacement = "&apos;";
            break;
        case '<':
            replacement = "&lt;";
            break;
        case '>':
            replacement = "&gt;";
            break;
        default:
            continue;
        }
        writeRaw(text.substr(run_start, i - run_start));
        writeRaw(replacement);
        run_start = i + 1;
    }
    writeRaw(text.substr(run_start));
}

void XmlBufferedWriter::writeUnsigned(std::uint64_t value)
{
    ensure(UNSIGNED_ROOM);
    char* const begin = m_buffer.data() + m_cursor;
    const std::to_chars_result res = std::to_chars(begin, begin + UNSIGNED_ROOM, value);
    ZLR_ASSERT(res.ec == std::errc());
    if (res.ec == std::errc()) {
        m_cursor += static_cast<std::size_t>(res.ptr - begin);
    }
}

void XmlBufferedWriter::writeBoolean(bool value)
{
    writeRaw(value ? "true" : "false");
}

void XmlBufferedWriter::writeDouble(double value)
{
    ensure(DOUBLE_ROOM);
    const std::uint64_t bits = std::bit_cast<std::uint64_t>(value);
    if ((bits & SIGN_BIT) != 0) {
        put("-");
    }
    if (std::isnan(value)) {
        put(nanWord(bits));
        return;
    }
    const double magnitude = std::fabs(value);
    if (std::isinf(magnitude)) {
        put("inf");
        return;
    }
    // 17 significant digits, the printf "%g" rules: enough for a correctly
    // rounding reader to get the same double back.
    char* const begin = m_buffer.data() + m_cursor;
    m_cursor += static_cast<std::size_t>(printSeventeenDigits(begin, magnitude) - begin);
}

void XmlBufferedWriter::stepBack()
{
    if (m_cursor >= 1) {
        --m_cursor;
        return;
    }
    writeOut();
    m_stream.seekp(-1, std::ios_base::cur);
}

void XmlBufferedWriter::flush()
{
    writeOut();
    m_stream.flush();
}

} // namespace zlr
