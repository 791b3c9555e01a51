// The one reader of a file that all its channels' recordings share: a
// bounded read-ahead of whole frames, so that the host asking for channel 0
// and then channel 1 of the same span reads the file once, and a recording
// of any length costs the same memory.
#pragma once

#include "sim_frame_source.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace zelvar_sim {

struct ReadAheadOptions {
    // Bytes of decoded frames kept ahead of the host; at least one frame.
    std::size_t bytes = 256 * 1024;
};

class SharedFrameReader {
public:
    SharedFrameReader(std::unique_ptr<FrameSource> source, ReadAheadOptions options = {});

    const FrameSource& source() const { return *m_source; }

    // Copies samples [first, first + count) of one channel to `out`, in the
    // source's encoding. False when the range leaves the file or the file
    // failed to read; the failure's text is then kept in fault().
    bool copyChannel(std::size_t channel, std::uint64_t first, std::uint64_t count,
                     unsigned char* out);

    // The same samples widened to doubles as they are copied, 8 bytes each.
    bool copyChannelAsDoubles(std::size_t channel, std::uint64_t first, std::uint64_t count,
                              unsigned char* out);

    // The first read failure, empty while there was none. The host takes a
    // failed read as a missing run, so the command asks here afterwards.
    std::string fault() const;

    // The read-ahead buffer and the source's own keep.
    std::size_t memoryBytes() const;

private:
    void fill(std::uint64_t first);
    // Hands the buffered frames of [first, first + count) to `pick` in
    // runs, reading ahead as needed: pick(first frame, frames).
    template <typename Pick>
    bool walkFrames(std::size_t channel, std::uint64_t first, std::uint64_t count, Pick pick);

    std::unique_ptr<FrameSource> m_source;
    std::size_t m_frame_bytes;
    std::uint64_t m_capacity; // frames
    std::vector<double> m_buffer; // doubles, so that every encoding is aligned
    std::uint64_t m_buffered_first = 0;
    std::uint64_t m_buffered_count = 0;
    std::string m_fault;
    mutable std::mutex m_mutex;
};

} // namespace zelvar_sim
