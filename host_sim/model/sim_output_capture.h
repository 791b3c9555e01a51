// What the plug-in writes to its output channels: every HOST_WRITE_SAMPLES,
// decoded to the index of its first value and the values, per output
// channel in the order of arrival.
#pragma once

#include "sim_host.h"
#include "sim_host_service.h"

#include <cstdint>
#include <map>
#include <vector>

namespace zelvar_sim {

struct CapturedBlock {
    std::uint64_t first_index = 0;
    std::vector<double> values;

    bool operator==(const CapturedBlock&) const = default;
};

class OutputCapture final : public HostService {
public:
    explicit OutputCapture(SimHost& host);

    // Blocks of one output channel (the plug-in's local id), in arrival order;
    // a block that starts where the last one ended joins it.
    const std::vector<CapturedBlock>& blocks(std::uint32_t local_id) const;
    // The values of all blocks of one channel, one after the other.
    std::vector<double> values(std::uint32_t local_id) const;
    // Hands the blocks of one channel over and forgets them, so that the
    // values of a long run are not held twice at its end.
    std::vector<CapturedBlock> takeBlocks(std::uint32_t local_id);
    std::vector<std::uint32_t> channels() const;
    void clear() { m_blocks.clear(); }

    // A block that is not 8 bytes of index and then whole doubles answers 1
    // and is recorded as a fault, not captured.
    bool handleMessage(const MessageRecord& message, zlr::IfValue** result,
                       std::uint64_t& answer) override;
    void describe(std::ostream& out) const override;

private:
    SimHost& m_host;
    std::map<std::uint32_t, std::vector<CapturedBlock>> m_blocks;
};

} // namespace zelvar_sim
