// Requests for data that go out while data flows. They are written with the
// streaming XmlBuilder and carry the XML declaration in front; the data set
// key is always the root's first attribute.
#pragma once

#include "zlrapi_data_set_enums.h"

#include <cstdint>
#include <string>

namespace zlr {

// Asks which spans of time the host holds data for, over a window or all.
struct DataRegionsRequestTelegram {
    std::uint64_t m_data_set_key = ~std::uint64_t{0};
    double m_start = 0.0;
    double m_end = 0.0;
    bool m_has_window = false;

    std::string generate() const;

    bool operator==(const DataRegionsRequestTelegram&) const = default;
};

// HOST_DATA_REQUEST: the data of a window, of one point in time, or the next
// blocks of a running stream.
struct DataTransferRequestTelegram {
    // The next blocks of the data set's stream.
    explicit DataTransferRequestTelegram(std::uint64_t data_set_key);
    // The blocks of a window, in seconds.
    DataTransferRequestTelegram(std::uint64_t data_set_key, double start, double end);
    // The value at one time, in seconds.
    DataTransferRequestTelegram(std::uint64_t data_set_key, double timestamp);

    std::uint64_t m_data_set_key = ~std::uint64_t{0};
    double m_start = 0.0;
    double m_end = 0.0;
    bool m_has_window = false;
    double m_timestamp = 0.0;
    bool m_has_timestamp = false;
    bool m_data_stream = false;

    std::string generate() const;

    bool operator==(const DataTransferRequestTelegram&) const = default;
};

// HOST_DATA_STREAM_START: the stream form of the transfer request.
struct StreamRequestTelegram {
    std::uint64_t m_data_set_key = ~std::uint64_t{0};
    double m_start = 0.0;
    bool m_has_start = false;
    double m_block_duration = 0.0;
    bool m_has_block_duration = false;
    bool m_ignore_regions = false;
    bool m_has_ignore_regions = false;
    StreamType m_stream_type = STREAM_TYPE_RAW;

    std::string generate() const;

    bool operator==(const StreamRequestTelegram&) const = default;
};

// HOST_DATA_STREAM_STOP: the transfer request with the key alone.
struct StreamStopTelegram {
    std::uint64_t m_data_set_key = ~std::uint64_t{0};

    std::string generate() const;

    bool operator==(const StreamStopTelegram&) const = default;
};

} // namespace zlr
