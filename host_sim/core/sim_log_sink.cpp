#include "sim_log_sink.h"

#include "zlruni_logger.h"

#include <boost/core/null_deleter.hpp>
#include <boost/log/attributes/value_extraction.hpp>
#include <boost/log/core/core.hpp>
#include <boost/log/expressions.hpp>
#include <boost/log/sinks/basic_sink_backend.hpp>
#include <boost/log/sinks/sync_frontend.hpp>
#include <boost/log/sinks/text_ostream_backend.hpp>
#include <boost/make_shared.hpp>

#include <mutex>
#include <ostream>
#include <string>

namespace zelvar_sim {

namespace {

using TextSink = boost::log::sinks::synchronous_sink<boost::log::sinks::text_ostream_backend>;

void formatRecord(const boost::log::record_view& record, boost::log::formatting_ostream& out)
{
    out << "log " << boost::log::extract_or_default<std::string>("Channel", record, "?") << " "
        << boost::log::extract_or_default<zlr::UniLogSeverityLevel::T>("Severity", record,
                                                                      zlr::UniLogSeverityLevel::T{})
        << ": " << boost::log::extract_or_default<std::string>("Message", record, "");
}

class RecordingBackend
    : public boost::log::sinks::basic_sink_backend<boost::log::sinks::synchronized_feeding> {
public:
    void consume(const boost::log::record_view& record)
    {
        LogRecord kept;
        if (auto channel = boost::log::extract<std::string>("Channel", record)) {
            kept.channel = *channel;
        }
        kept.severity = boost::log::extract_or_default<zlr::UniLogSeverityLevel::T>(
            "Severity", record, zlr::UniLogSeverityLevel::T{});
        if (auto text = boost::log::extract<std::string>("Message", record)) {
            kept.text = *text;
        }
        std::lock_guard lock(m_mutex);
        m_records.push_back(std::move(kept));
    }

    std::vector<LogRecord> records() const
    {
        std::lock_guard lock(m_mutex);
        return m_records;
    }

    void clear()
    {
        std::lock_guard lock(m_mutex);
        m_records.clear();
    }

private:
    mutable std::mutex m_mutex;
    std::vector<LogRecord> m_records;
};

using RecordingSink = boost::log::sinks::synchronous_sink<RecordingBackend>;

} // namespace

struct LogSink::Installed {
    boost::shared_ptr<boost::log::sinks::sink> sink;
    boost::shared_ptr<RecordingBackend> recorder;
};

LogSink::LogSink(std::ostream& out, unsigned minimum_severity)
    : m_installed(std::make_unique<Installed>())
{
    auto backend = boost::make_shared<boost::log::sinks::text_ostream_backend>();
    backend->add_stream(boost::shared_ptr<std::ostream>(&out, boost::null_deleter()));
    backend->auto_flush(true);
    auto sink = boost::make_shared<TextSink>(backend);
    sink->set_formatter(&formatRecord);
    sink->set_filter([minimum_severity](const boost::log::attribute_value_set& values) {
        auto severity = boost::log::extract<zlr::UniLogSeverityLevel::T>("Severity", values);
        return severity && static_cast<unsigned>(*severity) >= minimum_severity;
    });
    m_installed->sink = sink;
    boost::log::core::get()->add_sink(m_installed->sink);
}

LogSink::LogSink(Recording) : m_installed(std::make_unique<Installed>())
{
    m_installed->recorder = boost::make_shared<RecordingBackend>();
    m_installed->sink = boost::make_shared<RecordingSink>(m_installed->recorder);
    boost::log::core::get()->add_sink(m_installed->sink);
}

LogSink::~LogSink()
{
    boost::log::core::get()->remove_sink(m_installed->sink);
    m_installed->sink->flush();
}

std::vector<LogRecord> LogSink::records() const
{
    return m_installed->recorder ? m_installed->recorder->records() : std::vector<LogRecord>{};
}

void LogSink::clearRecords()
{
    if (m_installed->recorder) {
        m_installed->recorder->clear();
    }
}

} // namespace zelvar_sim
