// How the simulated host lays the records of one channel out in the bytes of
// a data block, in the three shapes that stream descriptors can tell: the
// value alone, the value with its tick, and the value with its tick and a
// payload of varying size behind the record.
#pragma once

#include "sim_block_bytes.h"
#include "zlrapi_data_set_descriptor_xml.h"

#include <cstdint>
#include <vector>

namespace zelvar_sim {

enum class RecordShape {
    synchronous,   // the value alone; its tick is its place in the run
    timestamped,   // the value, then its 64-bit tick
    variable_size, // the value, its 64-bit tick, its 32-bit payload size; the payload follows
};

const char* shapeName(RecordShape shape);

// The descriptor of a channel whose values are `value_bits` wide, with
// positions and stride in bits as the descriptors give them.
zlr::ChannelDescriptor recordLayout(std::uint64_t channel_id, zlr::SampleType type,
                                    std::uint32_t value_bits, RecordShape shape);

RecordShape shapeOf(const zlr::ChannelDescriptor& layout);

// The payload behind the record of `tick` in a variable-size channel: a few
// bytes that vary from record to record, none for some.
std::uint32_t payloadBytes(std::uint64_t tick);

// Appends the records of ticks first_tick, first_tick + 1, ... (`count` of
// them) to `bytes`; `values` holds their values, layout.m_size / 8 bytes each.
void appendRecords(const zlr::ChannelDescriptor& layout, std::uint64_t first_tick,
                   std::uint64_t count, const unsigned char* values,
                   BlockBytes& bytes);

} // namespace zelvar_sim
