// Test helper: a sink on the process's Boost.Log core that keeps every record
// as plain values (text, severity, channel) for the test to read. Records are
// copied at once, so nothing refers to a module that is later unloaded.
#pragma once

#include "zlruni_logger.h"

#include <boost/log/attributes/value_extraction.hpp>
#include <boost/log/core/core.hpp>
#include <boost/log/sinks/basic_sink_backend.hpp>
#include <boost/log/sinks/sync_frontend.hpp>

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace zlr::test {

struct CapturedRecord {
    std::string text;
    unsigned severity = 0;
    std::string channel;

    bool operator==(const CapturedRecord&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const CapturedRecord& record)
{
    return out << "{" << record.severity << ", " << record.channel << ", \"" << record.text
               << "\"}";
}

class CaptureBackend
    : public boost::log::sinks::basic_sink_backend<boost::log::sinks::synchronized_feeding> {
public:
    void consume(const boost::log::record_view& record)
    {
        CapturedRecord captured;
        if (auto text = boost::log::extract<std::string>("Message", record)) {
            captured.text = *text;
        }
        if (auto severity = boost::log::extract<UniLogSeverityLevel::T>("Severity", record)) {
            captured.severity = *severity;
        }
        if (auto channel = boost::log::extract<std::string>("Channel", record)) {
            captured.channel = *channel;
        }
        std::lock_guard<std::mutex> lock(m_mutex);
        m_records.push_back(std::move(captured));
    }

    std::vector<CapturedRecord> records() const
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_records;
    }

    void clear()
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_records.clear();
    }

private:
    mutable std::mutex m_mutex;
    std::vector<CapturedRecord> m_records;
};

// Installs the sink for its lifetime; an optional lowest severity filters.
class LogCapture {
public:
    explicit LogCapture(std::optional<unsigned> lowest_severity = std::nullopt)
        : m_backend(boost::make_shared<CaptureBackend>()),
          m_sink(boost::make_shared<Sink>(m_backend))
    {
        if (lowest_severity) {
            const unsigned lowest = *lowest_severity;
            m_sink->set_filter([lowest](const boost::log::attribute_value_set& values) {
                auto severity = boost::log::extract<UniLogSeverityLevel::T>("Severity", values);
                return severity && *severity >= lowest;
            });
        }
        boost::log::core::get()->add_sink(m_sink);
    }
    ~LogCapture() { boost::log::core::get()->remove_sink(m_sink); }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    std::vector<CapturedRecord> records() const { return m_backend->records(); }
    void clear() { m_backend->clear(); }

    // The records as (severity, text) pairs, the channel checked on the way.
    std::vector<std::pair<unsigned, std::string>> messages() const
    {
        std::vector<std::pair<unsigned, std::string>> result;
        for (const CapturedRecord& record : records()) {
            result.emplace_back(record.channel == LOG_CHANNEL ? record.severity : 0u,
                                record.text);
        }
        return result;
    }

private:
    using Sink = boost::log::sinks::synchronous_sink<CaptureBackend>;
    boost::shared_ptr<CaptureBackend> m_backend;
    boost::shared_ptr<Sink> m_sink;
};

} // namespace zlr::test
