#include "zlrfw_block_description.h"

#include "zlrapi_numbers.h"

#include <cstdint>
#include <cstring>
#include <optional>
#include <string_view>
#include <vector>

namespace zlr::framework {
namespace {

constexpr std::string_view DECLARATION = "<?xml version=\"1.0\"?>";

// Digits of the longest number that cannot overflow its field.
constexpr std::size_t DIGITS_32 = 9;
constexpr std::size_t DIGITS_64 = 19;

bool isNameChar(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

// A walk over a description in the host's plain form. Every step answers
// false at the first thing outside that form, and the caller then leaves
// the text to the DOM reader.
class PlainXml {
public:
    enum class Next { attribute, closed, opened, other };

    PlainXml(const char* text, std::size_t length) : m_at(text), m_end(text + length) {}

    bool atEnd() const { return m_at == m_end; }

    bool take(std::string_view literal)
    {
        if (static_cast<std::size_t>(m_end - m_at) < literal.size() ||
            std::memcmp(m_at, literal.data(), literal.size()) != 0) {
            return false;
        }
        m_at += literal.size();
        return true;
    }

    // "<name" followed by a space, "/>" or ">", which stay for attribute().
    bool open(std::string_view name)
    {
        const char* const before = m_at;
        if (take("<") && take(name) && m_at < m_end && (*m_at == ' ' || *m_at == '/' || *m_at == '>')) {
            return true;
        }
        m_at = before;
        return false;
    }

    // The next attribute of an opened tag, or the tag's end.
    Next attribute(std::string_view& name, std::string_view& value)
    {
        if (take("/>")) {
            return Next::closed;
        }
        if (take(">")) {
            return Next::opened;
        }
        if (!take(" ")) {
            return Next::other;
        }
        const char* const name_begin = m_at;
        while (m_at < m_end && isNameChar(*m_at)) {
            ++m_at;
        }
        name = std::string_view(name_begin, static_cast<std::size_t>(m_at - name_begin));
        if (name.empty() || !take("=\"")) {
            return Next::other;
        }
        const char* const value_begin = m_at;
        while (m_at < m_end && *m_at != '"') {
            if (*m_at == '&' || *m_at == '<') {
                return Next::other;
            }
            ++m_at;
        }
        if (m_at == m_end) {
            return Next::other;
        }
        value = std::string_view(value_begin, static_cast<std::size_t>(m_at - value_begin));
        ++m_at;
        return Next::attribute;
    }

    // ` name="` given with its quote, then plain decimal digits and the
    // closing quote; on anything else the walk stays where it was.
    bool number(std::string_view name_and_quote, std::size_t max_digits, std::uint64_t& value);

    // ` name="` given with its quote, then a value without markup and the
    // closing quote; on anything else the walk stays where it was.
    bool quoted(std::string_view name_and_quote, std::string_view& value);

private:
    const char* m_at;
    const char* m_end;
};

// Plain decimal digits, short enough that no reader can overflow on them.
bool plainUnsigned(std::string_view text, std::size_t max_digits, std::uint64_t& value)
{
    if (text.empty() || text.size() > max_digits) {
        return false;
    }
    value = 0;
    for (const char c : text) {
        if (c < '0' || c > '9') {
            return false;
        }
        value = value * 10 + static_cast<std::uint64_t>(c - '0');
    }
    return true;
}

bool PlainXml::number(std::string_view name_and_quote, std::size_t max_digits,
                      std::uint64_t& value)
{
    const char* const before = m_at;
    if (!take(name_and_quote)) {
        return false;
    }
    // Digits are read as they are passed, in the one walk to the quote.
    const char* const digits = m_at;
    std::uint64_t read = 0;
    while (m_at < m_end && *m_at >= '0' && *m_at <= '9') {
        read = read * 10 + static_cast<std::uint64_t>(*m_at - '0');
        ++m_at;
    }
    const auto count = static_cast<std::size_t>(m_at - digits);
    if (m_at == m_end || *m_at != '"' || count == 0 || count > max_digits) {
        m_at = before;
        return false;
    }
    ++m_at;
    value = read;
    return true;
}

bool PlainXml::quoted(std::string_view name_and_quote, std::string_view& value)
{
    const char* const before = m_at;
    if (!take(name_and_quote)) {
        return false;
    }
    const char* const begin = m_at;
    while (m_at < m_end && *m_at != '"' && *m_at != '&' && *m_at != '<') {
        ++m_at;
    }
    if (m_at == m_end || *m_at != '"') {
        m_at = before;
        return false;
    }
    value = std::string_view(begin, static_cast<std::size_t>(m_at - begin));
    ++m_at;
    return true;
}

// Reads the attributes of a tag that must close itself, each of `names`
// exactly once; read(index, value) answers false for a value it refuses.
template <std::size_t N, typename Read>
bool closedTag(PlainXml& xml, const std::string_view (&names)[N], Read read)
{
    unsigned seen = 0;
    std::string_view name;
    std::string_view value;
    for (;;) {
        switch (xml.attribute(name, value)) {
        case PlainXml::Next::attribute: {
            std::size_t k = 0;
            while (k < N && names[k] != name) {
                ++k;
            }
            if (k == N || (seen & (1u << k)) != 0 || !read(k, value)) {
                return false;
            }
            seen |= 1u << k;
            break;
        }
        case PlainXml::Next::closed:
            return seen == (1u << N) - 1;
        default:
            return false;
        }
    }
}

// The end of a root's tag after its last attribute: the whole answer for a
// root that closes itself there, none yet for one that opens children.
std::optional<bool> endOfRootTag(PlainXml& xml)
{
    std::string_view name;
    std::string_view value;
    switch (xml.attribute(name, value)) {
    case PlainXml::Next::closed:
        return xml.atEnd();
    case PlainXml::Next::opened:
        return std::nullopt;
    default:
        return false;
    }
}

// One "DataRegion" element, appended to `regions`.
bool plainRegion(PlainXml& xml, std::vector<DataRegion>& regions)
{
    static const std::string_view REGION[] = {"channel_id", "begin", "end"};
    DataRegion region;
    const auto read = [&region](std::size_t k, std::string_view number) {
        std::uint64_t& field = k == 0 ? region.m_channel_id : (k == 1 ? region.m_begin : region.m_end);
        return plainUnsigned(number, DIGITS_64, field);
    };
    if (!xml.open("DataRegion") || !closedTag(xml, REGION, read)) {
        return false;
    }
    regions.push_back(region);
    return true;
}

bool readPlainDataBlock(const char* text, std::size_t length, DataBlock& block)
{
    PlainXml xml(text, length);
    xml.take(DECLARATION);
    if (!xml.open("DataBlock")) {
        return false;
    }
    bool seen_stream = false;
    bool seen_size = false;
    // The host's order first; whatever it leaves is read attribute by attribute.
    if (xml.number(" stream_id=\"", DIGITS_64, block.m_stream_id)) {
        seen_stream = true;
        seen_size = xml.number(" data_size=\"", DIGITS_64, block.m_data_size);
    }
    std::string_view name;
    std::string_view value;
    for (bool reading = true; reading;) {
        switch (xml.attribute(name, value)) {
        case PlainXml::Next::attribute:
            if (name == "stream_id" && !seen_stream) {
                seen_stream = plainUnsigned(value, DIGITS_64, block.m_stream_id);
                if (!seen_stream) {
                    return false;
                }
            } else if (name == "data_size" && !seen_size) {
                seen_size = plainUnsigned(value, DIGITS_64, block.m_data_size);
                if (!seen_size) {
                    return false;
                }
            } else {
                return false;
            }
            break;
        case PlainXml::Next::closed:
            return seen_stream && seen_size && xml.atEnd();
        case PlainXml::Next::opened:
            reading = false;
            break;
        default:
            return false;
        }
    }
    static const std::string_view CHANNEL[] = {"channel_id",         "offset",    "count",
                                               "first_sample_index", "timestamp", "duration"};
    while (!xml.take("</DataBlock>")) {
        DataBlockChannel channel;
        const auto read = [&channel](std::size_t k, std::string_view number) {
            std::uint64_t parsed = 0;
            if (!plainUnsigned(number, k == 1 ? DIGITS_32 : DIGITS_64, parsed)) {
                return false;
            }
            switch (k) {
            case 0: channel.m_channel_id = parsed; break;
            case 1: channel.m_offset = static_cast<std::uint32_t>(parsed); break;
            case 2: channel.m_count = parsed; break;
            case 3: channel.m_first_sample_index = parsed; break;
            case 4: channel.m_timestamp = parsed; break;
            default: channel.m_duration = parsed; break;
            }
            return true;
        };
        if (!xml.open("Channel")) {
            return false;
        }
        // The host writes a run's attributes in this order; other orders
        // are read attribute by attribute.
        const PlainXml attributes = xml;
        std::uint64_t offset = 0;
        if (!(xml.number(" channel_id=\"", DIGITS_64, channel.m_channel_id) &&
              xml.number(" offset=\"", DIGITS_32, offset) &&
              xml.number(" count=\"", DIGITS_64, channel.m_count) &&
              xml.number(" first_sample_index=\"", DIGITS_64, channel.m_first_sample_index) &&
              xml.number(" timestamp=\"", DIGITS_64, channel.m_timestamp) &&
              xml.number(" duration=\"", DIGITS_64, channel.m_duration) && xml.take("/>"))) {
            xml = attributes;
            channel = DataBlockChannel();
            if (!closedTag(xml, CHANNEL, read)) {
                return false;
            }
        } else {
            channel.m_offset = static_cast<std::uint32_t>(offset);
        }
        block.m_channels.push_back(channel);
    }
    return seen_stream && seen_size && xml.atEnd();
}

bool readPlainDataBlockList(const char* text, std::size_t length, DataBlockList& list)
{
    PlainXml xml(text, length);
    xml.take(DECLARATION);
    if (!xml.open("DataBlockList")) {
        return false;
    }
    std::string_view name;
    std::string_view value;
    std::uint64_t count = 0;
    if (xml.attribute(name, value) != PlainXml::Next::attribute || name != "block_count" ||
        !plainUnsigned(value, DIGITS_32, count)) {
        return false;
    }
    list.m_block_count = static_cast<std::uint32_t>(count);
    if (const std::optional<bool> answer = endOfRootTag(xml)) {
        return *answer;
    }
    static const std::string_view INTERVAL[] = {"begin", "end"};
    while (!xml.take("</DataBlockList>")) {
        if (xml.take("<Intervals>")) {
            while (!xml.take("</Intervals>")) {
                DataInterval interval;
                const auto read = [&interval](std::size_t k, std::string_view number) {
                    return readPlainDouble(number, k == 0 ? interval.m_begin : interval.m_end);
                };
                if (!xml.open("Interval")) {
                    return false;
                }
                // The host's order first, as for a block's runs.
                const PlainXml attributes = xml;
                std::string_view begin;
                std::string_view end;
                if (!(xml.quoted(" begin=\"", begin) && xml.quoted(" end=\"", end) &&
                      xml.take("/>") && read(0, begin) && read(1, end))) {
                    xml = attributes;
                    interval = DataInterval();
                    if (!closedTag(xml, INTERVAL, read)) {
                        return false;
                    }
                }
                list.m_intervals.push_back(interval);
            }
        } else if (xml.take("<InvalidRegions>")) {
            while (!xml.take("</InvalidRegions>")) {
                if (!plainRegion(xml, list.m_regions)) {
                    return false;
                }
            }
        } else {
            return false;
        }
    }
    return xml.atEnd();
}

bool readPlainDataRegions(const char* text, std::size_t length, DataRegions& regions)
{
    PlainXml xml(text, length);
    xml.take(DECLARATION);
    if (!xml.open("DataRegions")) {
        return false;
    }
    if (const std::optional<bool> answer = endOfRootTag(xml)) {
        return *answer;
    }
    while (!xml.take("</DataRegions>")) {
        if (!plainRegion(xml, regions.m_regions)) {
            return false;
        }
    }
    return xml.atEnd();
}

} // namespace

bool readDataRegionsDescription(const char* text, std::size_t length, DataRegions& regions)
{
    regions = DataRegions();
    if (text && readPlainDataRegions(text, length, regions)) {
        return true;
    }
    return regions.parse(text, length);
}

bool readDataBlockDescription(const char* text, std::size_t length, DataBlock& block)
{
    block = DataBlock();
    if (text && readPlainDataBlock(text, length, block)) {
        return true;
    }
    return block.parse(text, length);
}

bool readDataBlockListDescription(const char* text, std::size_t length, DataBlockList& list)
{
    list = DataBlockList();
    if (text && readPlainDataBlockList(text, length, list)) {
        return true;
    }
    return list.parse(text, length);
}

} // namespace zlr::framework
