// The telegrams by which a plug-in registers a data set for its inputs and
// adds an acquisition task; both are sent while nothing flows yet.
#pragma once

#include "zlrapi_data_set_enums.h"

#include <cstdint>
#include <string>
#include <vector>

namespace zlr {

struct RegisterDataSetTelegram {
    std::uint64_t m_data_set_key = 0;
    std::vector<std::uint64_t> m_channels;
    DataSetType m_type = DATA_SET_TYPE_EXACT;
    DataSetMode m_mode = DATA_SET_MODE_NORMAL;
    StreamPolicy m_policy = STREAM_POLICY_PUSH;

    std::string generate() const;

    bool operator==(const RegisterDataSetTelegram&) const = default;
};

struct AcquisitionTaskAddTelegram {
    std::uint64_t m_acquisition_task_key = 0;
    std::vector<std::uint64_t> m_input_channels;
    std::vector<std::uint64_t> m_output_channels;
    double m_block_duration = 0.0;

    std::string generate() const;

    bool operator==(const AcquisitionTaskAddTelegram&) const = default;
};

} // namespace zlr
