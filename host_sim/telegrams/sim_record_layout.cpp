#include "sim_record_layout.h"

#include <cstring>

namespace zelvar_sim {
namespace {

constexpr std::uint32_t TICK_BYTES = 8;
constexpr std::uint32_t SIZE_BYTES = 4;

void appendBytes(BlockBytes& bytes, const void* data, std::size_t size)
{
    const auto* first = static_cast<const unsigned char*>(data);
    bytes.insert(bytes.end(), first, first + size);
}

} // namespace

const char* shapeName(RecordShape shape)
{
    switch (shape) {
    case RecordShape::synchronous:
        return "synchronous";
    case RecordShape::timestamped:
        return "timestamped";
    case RecordShape::variable_size:
        return "variable size";
    }
    return "unknown";
}

zlr::ChannelDescriptor recordLayout(std::uint64_t channel_id, zlr::SampleType type,
                                    std::uint32_t value_bits, RecordShape shape)
{
    zlr::ChannelDescriptor layout;
    layout.m_channel_id = channel_id;
    layout.m_dimension = 1;
    layout.m_size = value_bits;
    layout.m_sample_type = type;
    // The tick follows the value unaligned: readers copy it out anyway.
    switch (shape) {
    case RecordShape::synchronous:
        layout.m_stride = value_bits;
        break;
    case RecordShape::timestamped:
        layout.m_timestamp_position = static_cast<std::int32_t>(value_bits);
        layout.m_stride = value_bits + TICK_BYTES * 8;
        break;
    case RecordShape::variable_size:
        layout.m_timestamp_position = static_cast<std::int32_t>(value_bits);
        layout.m_sample_size_position = static_cast<std::int32_t>(value_bits + TICK_BYTES * 8);
        layout.m_stride = value_bits + (TICK_BYTES + SIZE_BYTES) * 8;
        break;
    }
    return layout;
}

RecordShape shapeOf(const zlr::ChannelDescriptor& layout)
{
    if (!layout.m_timestamp_position) {
        return RecordShape::synchronous;
    }
    return layout.m_sample_size_position ? RecordShape::variable_size : RecordShape::timestamped;
}

std::uint32_t payloadBytes(std::uint64_t tick)
{
    return static_cast<std::uint32_t>((tick * 7) % 5);
}

void appendRecords(const zlr::ChannelDescriptor& layout, std::uint64_t first_tick,
                   std::uint64_t count, const unsigned char* values,
                   BlockBytes& bytes)
{
    const std::size_t value_bytes = layout.m_size / 8;
    const RecordShape shape = shapeOf(layout);
    for (std::uint64_t i = 0; i < count; ++i) {
        const std::uint64_t tick = first_tick + i;
        appendBytes(bytes, values + i * value_bytes, value_bytes);
        if (shape == RecordShape::synchronous) {
            continue;
        }
        appendBytes(bytes, &tick, sizeof tick);
        if (shape == RecordShape::variable_size) {
            const std::uint32_t payload = payloadBytes(tick);
            appendBytes(bytes, &payload, sizeof payload);
            // A payload that tells the record apart when a reader steps wrong.
            bytes.insert(bytes.end(), payload, static_cast<unsigned char>(0xA0 + tick % 16));
        }
    }
}

} // namespace zelvar_sim
