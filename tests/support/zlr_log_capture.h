// Test helper: the simulator's recording log sink for the life of the
// helper, with the kit's records as (severity, text) pairs.
#pragma once

#include "sim_log_sink.h"
#include "zlruni_logger.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zlr::test {

class LogCapture {
public:
    using Message = std::pair<unsigned, std::string>;

    // With `lowest_severity`, messages() leaves out the records below it.
    explicit LogCapture(std::optional<unsigned> lowest_severity = std::nullopt)
        : m_lowest(lowest_severity.value_or(0))
    {
    }

    // The records so far at or above the lowest severity, oldest first.
    std::vector<zelvar_sim::LogRecord> records() const
    {
        std::vector<zelvar_sim::LogRecord> kept;
        for (const zelvar_sim::LogRecord& record : m_sink.records()) {
            if (record.severity >= m_lowest) kept.push_back(record);
        }
        return kept;
    }

    // The same as (severity, text) pairs; a record on another channel than
    // the kit's shows severity 0, so that a wrong channel fails a comparison.
    std::vector<Message> messages() const
    {
        std::vector<Message> result;
        for (const zelvar_sim::LogRecord& record : records()) {
            result.emplace_back(record.channel == LOG_CHANNEL ? record.severity : 0u, record.text);
        }
        return result;
    }
    void clear() { m_sink.clearRecords(); }

private:
    unsigned m_lowest;
    zelvar_sim::LogSink m_sink{zelvar_sim::LogSink::Recording{}};
};

} // namespace zlr::test
