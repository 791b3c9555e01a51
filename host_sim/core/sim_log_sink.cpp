#include "sim_log_sink.h"

#include "zlruni_logger.h"

#include <boost/core/null_deleter.hpp>
#include <boost/log/attributes/value_extraction.hpp>
#include <boost/log/core/core.hpp>
#include <boost/log/expressions.hpp>
#include <boost/log/sinks/sync_frontend.hpp>
#include <boost/log/sinks/text_ostream_backend.hpp>
#include <boost/make_shared.hpp>

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

} // namespace

struct LogSink::Installed {
    boost::shared_ptr<TextSink> sink;
};

LogSink::LogSink(std::ostream& out, unsigned minimum_severity)
    : m_installed(std::make_unique<Installed>())
{
    auto backend = boost::make_shared<boost::log::sinks::text_ostream_backend>();
    backend->add_stream(boost::shared_ptr<std::ostream>(&out, boost::null_deleter()));
    backend->auto_flush(true);
    m_installed->sink = boost::make_shared<TextSink>(backend);
    m_installed->sink->set_formatter(&formatRecord);
    m_installed->sink->set_filter(
        [minimum_severity](const boost::log::attribute_value_set& values) {
            auto severity = boost::log::extract<zlr::UniLogSeverityLevel::T>("Severity", values);
            return severity && static_cast<unsigned>(*severity) >= minimum_severity;
        });
    boost::log::core::get()->add_sink(m_installed->sink);
}

LogSink::~LogSink()
{
    boost::log::core::get()->remove_sink(m_installed->sink);
    m_installed->sink->flush();
}

} // namespace zelvar_sim
