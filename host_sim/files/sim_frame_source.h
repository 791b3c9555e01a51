// A file seen as frames: one sample of every channel per frame, all of one
// encoding. Implemented by the sound file and CSV readers; the shared
// read-ahead (sim_shared_frame_reader.h) is its only caller.
#pragma once

#include "sim_recording.h"

#include <cstddef>
#include <cstdint>

namespace zelvar_sim {

class FrameSource {
public:
    virtual ~FrameSource() = default;

    virtual std::size_t channels() const = 0;
    virtual std::uint64_t frames() const = 0;
    virtual SampleEncoding encoding() const = 0;

    // Writes frames [first, first + count) interleaved to `out`, which holds
    // count * channels() * sampleBytes(encoding()) bytes, aligned for the
    // encoding. The range lies within frames(). A gap's value is unspecified.
    // Throws FileError when the file no longer reads.
    virtual void readFrames(std::uint64_t first, std::uint64_t count, unsigned char* out) = 0;

    // Bytes the source keeps for the file beside its open handle (an index,
    // a line buffer), so that a test can see it stay small.
    virtual std::size_t memoryBytes() const = 0;
};

} // namespace zelvar_sim
