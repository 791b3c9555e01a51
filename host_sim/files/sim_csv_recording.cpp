#include "sim_csv_recording.h"

#include "sim_csv_fields.h"
#include "sim_file_error.h"
#include "sim_input_file_check.h"

#include <cmath>
#include <fstream>
#include <limits>
#include <optional>

namespace zelvar_sim {
namespace {

constexpr std::uint64_t rows_between_marks = 1024;

bool isBlank(const std::string& line)
{
    return line.find_first_not_of(" \t\r") == std::string::npos;
}

// What checking the whole file found out.
struct CsvLayout {
    char separator = ',';
    std::size_t columns = 0;
    std::vector<std::string> names;
    std::vector<std::vector<SampleSpan>> spans; // per column
    std::vector<std::uint64_t> marks; // byte offset of every 1024th row
    std::uint64_t rows = 0;
    std::uint64_t first_row_line = 1;
};

class CsvScan {
public:
    explicit CsvScan(const std::string& path) : m_path(path) {}

    CsvLayout run()
    {
        std::ifstream in(m_path, std::ios::binary);
        std::string line;
        std::vector<std::string> fields;
        std::uint64_t offset = 0;
        std::uint64_t line_number = 0;
        while (std::getline(in, line)) {
            ++line_number;
            std::uint64_t line_offset = offset;
            offset += line.size() + 1;
            if (line_number == 1) {
                if (dropByteOrderMark(line)) {
                    line_offset += 3;
                }
                m_layout.separator = guessCsvSeparator(line);
                splitCsvLine(line, m_layout.separator, fields);
                m_layout.columns = fields.size();
                m_open_since.assign(m_layout.columns, std::nullopt);
                m_layout.spans.resize(m_layout.columns);
                if (isHeader(fields)) {
                    m_layout.first_row_line = 2;
                    for (std::size_t c = 0; c < fields.size(); ++c) {
                        m_layout.names.push_back(fields[c].empty() ? "ch" + std::to_string(c)
                                                                   : fields[c]);
                    }
                    continue;
                }
                for (std::size_t c = 0; c < fields.size(); ++c) {
                    m_layout.names.push_back("ch" + std::to_string(c));
                }
            }
            if (isBlank(line)) {
                // Blank lines count only once a row follows them.
                if (m_pending_blanks == 0) {
                    m_first_blank_line = line_number;
                }
                if ((m_layout.rows + m_pending_blanks) % rows_between_marks == 0) {
                    m_pending_marks.push_back(line_offset);
                }
                ++m_pending_blanks;
                continue;
            }
            takePendingBlanks();
            if (m_layout.rows % rows_between_marks == 0) {
                m_layout.marks.push_back(line_offset);
            }
            splitCsvLine(line, m_layout.separator, fields);
            takeRow(fields, line_number);
        }
        if (in.bad()) {
            throw FileError(m_path + ": reading failed after line " + std::to_string(line_number));
        }
        if (m_layout.rows == 0) {
            throw FileError(m_path + ": holds no rows of samples");
        }
        for (std::size_t c = 0; c < m_layout.columns; ++c) {
            if (m_open_since[c]) {
                m_layout.spans[c].push_back({*m_open_since[c], m_layout.rows});
            }
        }
        return std::move(m_layout);
    }

private:
    bool isHeader(const std::vector<std::string>& fields) const
    {
        bool text = false;
        for (const std::string& field : fields) {
            double value = 0.0;
            const CsvFieldKind kind = readCsvField(field, value, m_layout.separator != ',');
            if (kind == CsvFieldKind::number) {
                return false;
            }
            text = text || kind == CsvFieldKind::bad;
        }
        return text;
    }

    void takePendingBlanks()
    {
        if (m_pending_blanks == 0) {
            return;
        }
        if (m_layout.columns != 1) {
            throw FileError(m_path + ":" + std::to_string(m_first_blank_line) +
                            ": blank line among the rows of " +
                            std::to_string(m_layout.columns) + " columns");
        }
        m_layout.marks.insert(m_layout.marks.end(), m_pending_marks.begin(),
                              m_pending_marks.end());
        for (; m_pending_blanks > 0; --m_pending_blanks) {
            takeSample(0, CsvFieldKind::missing);
            ++m_layout.rows;
        }
        m_pending_marks.clear();
    }

    void takeRow(const std::vector<std::string>& fields, std::uint64_t line_number)
    {
        if (fields.size() != m_layout.columns) {
            throw FileError(m_path + ":" + std::to_string(line_number) + ": " +
                            std::to_string(fields.size()) + " fields where the first line has " +
                            std::to_string(m_layout.columns));
        }
        for (std::size_t c = 0; c < fields.size(); ++c) {
            double value = 0.0;
            // In a file not separated by ',' a comma can only be a decimal comma.
            const CsvFieldKind kind = readCsvField(fields[c], value, m_layout.separator != ',');
            if (kind == CsvFieldKind::bad) {
                throw FileError(m_path + ":" + std::to_string(line_number) + ": \"" + fields[c] +
                                "\" in column " + std::to_string(c + 1) + " (" +
                                m_layout.names[c] + ") is not a number");
            }
            takeSample(c, kind);
        }
        ++m_layout.rows;
    }

    void takeSample(std::size_t column, CsvFieldKind kind)
    {
        std::optional<std::uint64_t>& open = m_open_since[column];
        if (kind == CsvFieldKind::missing && open) {
            m_layout.spans[column].push_back({*open, m_layout.rows});
            open.reset();
        } else if (kind == CsvFieldKind::number && !open) {
            open = m_layout.rows;
        }
    }

    std::string m_path;
    CsvLayout m_layout;
    std::vector<std::optional<std::uint64_t>> m_open_since;
    std::uint64_t m_pending_blanks = 0;
    std::uint64_t m_first_blank_line = 0;
    std::vector<std::uint64_t> m_pending_marks;
};

class CsvSource final : public FrameSource {
public:
    CsvSource(std::string path, const CsvLayout& layout)
        : m_path(std::move(path)), m_separator(layout.separator), m_columns(layout.columns),
          m_rows(layout.rows), m_first_row_line(layout.first_row_line), m_marks(layout.marks),
          m_in(m_path, std::ios::binary)
    {
        if (!m_in) {
            throw FileError(m_path + ": cannot be opened again for reading");
        }
    }

    std::size_t channels() const override { return m_columns; }
    std::uint64_t frames() const override { return m_rows; }
    SampleEncoding encoding() const override { return SampleEncoding::float64; }
    std::size_t memoryBytes() const override
    {
        return m_marks.capacity() * sizeof(std::uint64_t) + m_line.capacity() +
               m_fields.capacity() * sizeof(std::string);
    }

    void readFrames(std::uint64_t first, std::uint64_t count, unsigned char* out) override
    {
        if (first != m_next_row || !m_in.good()) {
            const std::uint64_t mark = first / rows_between_marks;
            m_in.clear();
            m_in.seekg(static_cast<std::streamoff>(m_marks[mark]));
            m_next_row = mark * rows_between_marks;
        }
        while (m_next_row < first) {
            nextLine();
        }
        auto* values = reinterpret_cast<double*>(out);
        for (std::uint64_t row = 0; row < count; ++row) {
            nextLine();
            if (isBlank(m_line)) {
                m_fields.assign(m_columns, std::string());
            } else {
                splitCsvLine(m_line, m_separator, m_fields);
            }
            if (m_fields.size() != m_columns) {
                throw changed(m_next_row - 1);
            }
            for (const std::string& field : m_fields) {
                double value = std::numeric_limits<double>::quiet_NaN();
                if (readCsvField(field, value, m_separator != ',') == CsvFieldKind::bad) {
                    throw changed(m_next_row - 1);
                }
                *values++ = value;
            }
        }
    }

private:
    void nextLine()
    {
        if (!std::getline(m_in, m_line)) {
            throw changed(m_next_row);
        }
        ++m_next_row;
    }

    FileError changed(std::uint64_t row) const
    {
        return FileError(m_path + ":" + std::to_string(row + m_first_row_line) +
                         ": no longer reads as it did when the file was opened");
    }

    std::string m_path;
    char m_separator;
    std::size_t m_columns;
    std::uint64_t m_rows;
    std::uint64_t m_first_row_line;
    std::vector<std::uint64_t> m_marks;
    std::ifstream m_in;
    std::uint64_t m_next_row = std::numeric_limits<std::uint64_t>::max();
    std::string m_line;
    std::vector<std::string> m_fields;
};

} // namespace

RecordingFile CsvRecording::open(const std::string& path, double sample_rate,
                                 ReadAheadOptions options)
{
    checkSampleRate(path, sample_rate);
    checkInputFile(path);
    CsvLayout layout = CsvScan(path).run();
    RecordingFile result;
    result.path = path;
    result.format = "CSV, " + std::to_string(layout.columns) +
                    (layout.columns == 1 ? " column" : " columns");
    result.sample_rate = sample_rate;
    result.encoding = SampleEncoding::float64;
    auto reader =
        std::make_shared<SharedFrameReader>(std::make_unique<CsvSource>(path, layout), options);
    for (std::size_t c = 0; c < layout.columns; ++c) {
        FileInput input;
        input.long_name = layout.names[c];
        input.recording =
            std::make_shared<CsvRecording>(reader, c, std::move(layout.spans[c]));
        result.inputs.push_back(std::move(input));
    }
    result.reader = reader;
    return result;
}

} // namespace zelvar_sim
