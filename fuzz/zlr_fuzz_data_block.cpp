// Description of one data block: any text is read or refused, and what is read writes back
// through the simulator's writer to a fixed point.
#include "zlr_fuzz_fixed_point.h"

#include "sim_data_set_writers.h"
#include "zlrapi_data_block_xml.h"

ZLR_FUZZ_FIXED_POINT_TARGET(zlr::DataBlock, [](const zlr::DataBlock& t) { return zelvar_sim::writeDataBlock(t); }, true)
