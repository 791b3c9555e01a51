// The simulated host's readers of what a plug-in sends about data sets:
// registrations, tasks, data requests and region requests. Each answers
// false for a text that the host would refuse.
#pragma once

#include "zlrapi_data_request_xml.h"
#include "zlrapi_data_set_xml.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace zelvar_sim {

bool readRegisterDataSet(const std::string& text, zlr::RegisterDataSetTelegram& telegram);
bool readAcquisitionTaskAdd(const std::string& text, zlr::AcquisitionTaskAddTelegram& telegram);

// Any form of "DataTransferRequest": window, single value, next blocks of a
// stream, stream start, or (nothing but the key) stream stop.
struct DataTransferRequest {
    std::uint64_t m_data_set_key = 0;
    std::optional<std::pair<double, double>> m_window;
    std::optional<double> m_single_value;
    bool m_data_stream = false;
    std::optional<zlr::StreamRequestTelegram> m_stream;
};
bool readDataTransferRequest(const std::string& text, DataTransferRequest& request);

bool readDataRegionsRequest(const std::string& text, zlr::DataRegionsRequestTelegram& telegram);

} // namespace zelvar_sim
