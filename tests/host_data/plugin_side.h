// The plug-in's side of the data dialogue, played with the kit's own
// telegram writers and stream reader against the simulated host: what a
// software channel instance does to read its inputs.
#pragma once

#include "sim_host.h"
#include "zlrapi_data_block_xml.h"
#include "zlrapi_data_set_descriptor_xml.h"
#include "zlrbase_api_object_ptr.h"

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

namespace host_data_test {

// One tick of a channel as the reader walked it: the record's bytes, or none
// in a gap.
struct WalkedSample {
    std::uint64_t tick = 0;
    std::optional<std::vector<unsigned char>> value;

    bool operator==(const WalkedSample&) const = default;
};

// What one data request delivered, walked channel by channel.
struct Delivery {
    std::size_t block_count = 0;
    double begin = 0.0; // seconds, the first block's start
    double end = 0.0;   // seconds, the last block's end
    std::map<std::uint64_t, std::vector<WalkedSample>> channels;
};

class PluginSide {
public:
    explicit PluginSide(zelvar_sim::SimHost& host) : m_host(host) {}

    // HOST_DATA_SET_REGISTER; answers the host's code.
    std::uint64_t registerDataSet(std::uint64_t key, const std::vector<std::uint64_t>& channels);
    std::uint64_t startStream(std::uint64_t key, double block_duration);
    std::uint64_t stopStream(std::uint64_t key);
    std::uint64_t unregisterDataSet(std::uint64_t key);

    // HOST_DATA_REQUEST for the next blocks of the stream, or for a window;
    // the blocks are walked over the span they cover, gaps included, with
    // the regions the host gives for that span. Empty on a refusal.
    std::optional<Delivery> nextBlocks(std::uint64_t key, const std::map<std::uint64_t, double>& rates);
    std::optional<Delivery> window(std::uint64_t key, double start, double end,
                                   const std::map<std::uint64_t, double>& rates);

    const zlr::StreamDescriptors& descriptors() const { return m_descriptors; }

private:
    std::optional<Delivery> request(std::uint64_t key, const std::string& telegram,
                                    const std::map<std::uint64_t, double>& rates);
    std::vector<zlr::DataRegion> regions(std::uint64_t key, double start, double end);

    zelvar_sim::SimHost& m_host;
    zlr::StreamDescriptors m_descriptors;
};

} // namespace host_data_test
