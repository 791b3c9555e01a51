// Channels document from the host: any text is read or refused, and what is read writes back
// through the simulator's writer to a fixed point.
#include "zlr_fuzz_fixed_point.h"

#include "sim_channel_writers.h"
#include "zlrapi_channels_xml.h"

ZLR_FUZZ_FIXED_POINT_TARGET(zlr::ChannelsTelegram, [](const zlr::ChannelsTelegram& t) { return zelvar_sim::writeChannels(t.m_channels); }, true)
