// Start telegram of a processing step: any text is read or refused, and what is read writes back
// through the simulator's writer to a fixed point.
#include "zlr_fuzz_fixed_point.h"

#include "sim_data_set_writers.h"
#include "zlrapi_process_window_xml.h"

ZLR_FUZZ_FIXED_POINT_TARGET(zlr::ProcessWindowTelegram, [](const zlr::ProcessWindowTelegram& t) { return zelvar_sim::writeProcessWindow(t.m_start, t.m_end); }, false)
