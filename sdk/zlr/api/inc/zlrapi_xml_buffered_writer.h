// The output side of XmlBuilder: a fixed 768-byte buffer in front of a
// seekable stream, with the value forms that telegrams use.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string_view>

namespace zlr {

class XmlBufferedWriter {
public:
    static constexpr std::size_t BUFFER_SIZE = 768;

    explicit XmlBufferedWriter(std::ostream& stream);
    XmlBufferedWriter(const XmlBufferedWriter&) = delete;
    XmlBufferedWriter& operator=(const XmlBufferedWriter&) = delete;

    void writeChar(char c);
    // Bytes as they stand; what does not fit an empty buffer goes straight to
    // the stream.
    void writeRaw(std::string_view text);
    // "<" or "</" and an element name. Tag and its fixed characters stay
    // together in the buffer; a name too long for it goes to the stream.
    void writeTag(std::string_view opening, std::string_view name);
    // Attribute text with its five special characters replaced.
    void writeEscaped(std::string_view text);
    void writeUnsigned(std::uint64_t value);
    void writeBoolean(bool value);
    // "%.17g" for finite values; "inf", "nan", "nan(snan)", "-nan(ind)" and
    // their signed forms otherwise.
    void writeDouble(double value);

    // Steps back over the last byte written (the ">" of an open tag), in the
    // buffer when it holds one, otherwise on the stream.
    void stepBack();

    // Hands the buffer to the stream and flushes the stream.
    void flush();

    std::ostream& stream() { return m_stream; }

private:
    // True when n more bytes fit. Otherwise writes the buffer out and answers
    // whether n bytes could fit an empty buffer at all.
    bool ensure(std::size_t n);
    void writeOut();
    void put(std::string_view text);

    std::ostream& m_stream;
    std::array<char, BUFFER_SIZE> m_buffer{};
    std::size_t m_cursor = 0;
};

} // namespace zlr
