// The kit's one logger: Boost.Log, channel "ZLRAPI", with a numeric severity.
//
// The kit installs no sink and no format: records go to the logging core of
// the host process, and whoever owns the core decides what becomes of them.
#pragma once

#include <boost/log/sources/record_ostream.hpp>
#include <boost/log/sources/severity_channel_logger.hpp>

#include <string>

namespace zlr {

// Levels in increasing gravity; only the numbers are part of the contract.
struct UniLogSeverityLevel {
    enum T : unsigned {
        // A note on malformed but tolerated XML ("Warning: ...").
        Note = 1,
        // A failure that the code survives.
        Failure = 5,
        // An error: whatever is also thrown, refused or caught at a barrier.
        Error = 6,
    };
};

using UniLogger = boost::log::sources::severity_channel_logger_mt<UniLogSeverityLevel::T, std::string>;

inline constexpr const char* LOG_CHANNEL = "ZLRAPI";

// The one logger of this module, made on first use.
UniLogger& getLogger();

} // namespace zlr

// Logs `message`, a stream expression, at `severity`. When the core is
// disabled or no sink wants the record, the message is not formatted at all.
//
//     ZLR_LOG(zlr::UniLogSeverityLevel::Error, "property " << name << " is not of type int");
#define ZLR_LOG(severity, message)                                                               \
    do {                                                                                         \
        BOOST_LOG_SEV(::zlr::getLogger(), (severity)) << message;                                \
    } while (false)
