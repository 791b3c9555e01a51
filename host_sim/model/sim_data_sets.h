// The host's data sets: what a plug-in registers to read input channels,
// the streams it starts on them, and the blocks of samples the host answers
// its data requests with. Blocks are cut from the channels' recordings on
// demand, on a grid of the block duration from the start of the stream or
// of the requested window.
#pragma once

#include "sim_host.h"
#include "sim_host_service.h"
#include "sim_input_channels.h"
#include "sim_master_clock.h"
#include "sim_values.h"
#include "zlrapi_data_block_xml.h"
#include "zlrapi_data_set_descriptor_xml.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace zelvar_sim {

// Blocks of host time on whole ticks of the master clock: block k runs from
// the tick of origin + k * duration up to the next boundary, the first one
// from `origin` itself and the last one up to `end`. Every request of a
// stream cuts on the same grid, so that its blocks adjoin sample for sample.
class BlockGrid {
public:
    // Seconds; `duration` is taken to the nearest whole tick, one at least.
    BlockGrid(double origin, double duration, double end, double frequency);

    double boundary(std::uint64_t k) const;
    // The clock's tick at a boundary.
    std::uint64_t boundaryTicks(std::uint64_t k) const;
    // Blocks up to `end`.
    std::uint64_t blockCount() const;
    // Blocks that have ended at `now` (seconds).
    std::uint64_t blocksEndedBy(double now) const;

private:
    double unclipped(std::uint64_t k) const;

    double m_origin;
    double m_end;
    double m_frequency;
    std::uint64_t m_origin_ticks;
    std::uint64_t m_step_ticks;
};

// The channels of a data set and how their streams look. Channels of fixed
// size share one stream; each variable-size channel has a stream of its own,
// since its run fills its block alone.
struct DataSet {
    std::uint64_t key = 0;
    std::vector<std::uint64_t> channels;
    zlr::StreamDescriptors descriptors;

    struct Stream {
        bool running = false;
        double start = 0.0;          // seconds
        double block_duration = 0.0; // seconds
        std::uint64_t next_block = 0;
    };
    Stream stream;
};

// The answer to one data request, before it becomes a host value.
struct BlockListContent {
    zlr::DataBlockList list;
    std::vector<DataBlockList::Block> blocks;
    BlockBytes bytes; // of all blocks, each from its offset on
};

class DataSets final : public HostService {
public:
    // Blocks of this duration when neither the run nor the stream asks for one.
    static constexpr double DEFAULT_BLOCK_DURATION = 0.01;

    // Shares channels and clock, since the host may outlive whoever made it.
    DataSets(SimHost& host, std::shared_ptr<const InputChannels> inputs,
             std::shared_ptr<const MasterClock> clock);

    // The duration the host cuts blocks to, whatever a stream start asks
    // for; 0 (the default) honours the stream's own duration.
    void setBlockDuration(double seconds) { m_block_duration = seconds; }
    // At most this many blocks answer one request for a stream's next
    // blocks; 0 (the default) hands out all that are due.
    void setBlocksPerRequest(std::size_t count) { m_blocks_per_request = count; }

    const DataSet* find(std::uint64_t key) const;
    std::vector<std::uint64_t> keys() const;

    // The end of the data set's recordings: the latest end of a channel's
    // timeline, in seconds.
    double endOf(const DataSet& data_set) const;
    // True when every running stream has handed out its last block.
    bool allStreamsDelivered() const;

    // Blocks `first` up to, not including, `last` of a grid over the data
    // set's channels: each channel's samples whose time falls in the block,
    // in one run per span of data; gaps listed as invalid regions.
    BlockListContent blocksOf(const DataSet& data_set, const BlockGrid& grid,
                              std::uint64_t first, std::uint64_t last) const;

    // HOST_DATA_SET_REGISTER, _UNREGISTER, HOST_DATA_STREAM_START, _STOP,
    // HOST_DATA_REQUEST (window form and next blocks of a stream) and
    // HOST_DATA_REGIONS_REQUEST. A text that does not read answers 1, a
    // request that does not fit what the host holds answers 4; both are
    // recorded as faults.
    bool handleMessage(const MessageRecord& message, zlr::IfValue** result,
                       std::uint64_t& answer) override;
    void describe(std::ostream& out) const override;

private:
    std::uint64_t registerDataSet(const MessageRecord& message, zlr::IfValue** result);
    std::uint64_t unregisterDataSet(const MessageRecord& message);
    std::uint64_t startStream(const MessageRecord& message);
    std::uint64_t stopStream(const MessageRecord& message);
    std::uint64_t requestData(const MessageRecord& message, zlr::IfValue** result);
    std::uint64_t requestRegions(const MessageRecord& message, zlr::IfValue** result);

    std::uint64_t refuse(const MessageRecord& message, std::uint64_t answer, std::string reason);
    DataSet* findMutable(std::uint64_t key);
    BlockGrid streamGrid(const DataSet& data_set) const;
    double blockDurationFor(double asked) const;

    SimHost& m_host;
    std::shared_ptr<const InputChannels> m_inputs;
    std::shared_ptr<const MasterClock> m_clock;
    double m_block_duration = 0.0;
    std::size_t m_blocks_per_request = 0;
    std::uint64_t m_next_stream_id = 1;
    std::map<std::uint64_t, DataSet> m_data_sets;
};

} // namespace zelvar_sim
