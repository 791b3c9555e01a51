// Texts that the simulated host sends while a plug-in reads data: the stream
// descriptors of a registered data set, block list and block descriptions,
// data regions and the master clock. Each reads back through the kit's reader.
#pragma once

#include "zlrapi_data_block_xml.h"
#include "zlrapi_data_set_descriptor_xml.h"
#include "zlrapi_timestamp.h"

#include <string>
#include <vector>

namespace zelvar_sim {

std::string writeStreamDescriptors(const zlr::StreamDescriptors& descriptors);
std::string writeDataBlockList(const zlr::DataBlockList& list);
std::string writeDataBlock(const zlr::DataBlock& block);
std::string writeDataRegions(const std::vector<zlr::DataRegion>& regions);

// The value of PLUGIN_TASK_PROCESS: the span of one processing step.
std::string writeProcessWindow(const zlr::Timestamp& start, const zlr::Timestamp& end);

// The "MasterTimebaseValue" element of "#Zelvar".
std::string writeMasterTimebaseValue(const zlr::Timestamp& now);

} // namespace zelvar_sim
