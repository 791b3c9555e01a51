// Note of changed settings of host channels: any text is read or refused, and what is read writes back
// through the simulator's writer to a fixed point.
#include "zlr_fuzz_fixed_point.h"

#include "sim_channel_writers.h"
#include "zlrapi_channel_config_changed_xml.h"

ZLR_FUZZ_FIXED_POINT_TARGET(zlr::ChannelConfigChangedTelegram, [](const zlr::ChannelConfigChangedTelegram& t) { return zelvar_sim::writeChannelConfigChanged(t.m_channels); }, true)
