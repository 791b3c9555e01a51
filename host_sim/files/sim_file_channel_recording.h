// One channel of a file as the host's Recording: its samples come from the
// reader that all channels of the file share, its gaps are known from when
// the file was opened.
#pragma once

#include "sim_recording.h"
#include "sim_shared_frame_reader.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace zelvar_sim {

class FileChannelRecording : public Recording {
public:
    // `spans` as dataSpans() answers them: ascending, disjoint, not empty.
    FileChannelRecording(std::shared_ptr<SharedFrameReader> reader, std::size_t channel,
                         std::vector<SampleSpan> spans);

    SampleEncoding encoding() const override { return m_reader->source().encoding(); }
    std::uint64_t length() const override { return m_reader->source().frames(); }
    std::vector<SampleSpan> dataSpans() const override { return m_spans; }
    bool read(std::uint64_t first, std::uint64_t count, unsigned char* out) const override;
    bool readAsDoubles(std::uint64_t first, std::uint64_t count,
                       unsigned char* out) const override;

    std::size_t channel() const { return m_channel; }
    const SharedFrameReader& reader() const { return *m_reader; }

private:
    // Whether [first, first + count) lies inside one span of samples.
    bool holds(std::uint64_t first, std::uint64_t count) const;

    std::shared_ptr<SharedFrameReader> m_reader;
    std::size_t m_channel;
    std::vector<SampleSpan> m_spans;
};

} // namespace zelvar_sim
