// Channels of a sound file, through libsndfile: WAV of every sample type,
// FLAC, AIFF and whatever else it reads. Each channel is delivered in the
// file's own sample type where the host has one, else in the nearest that
// holds it exactly:
//
//   16-bit PCM, 8-bit PCM, u-law, A-law, the ADPCM and GSM codecs   int16
//   24-bit and 32-bit PCM                                           int32
//   float, and the lossy codecs (Vorbis, Opus, MPEG)                float
//   double, and any other                                           double
//
// Integers keep libsndfile's full-scale alignment: an 8-bit sample arrives
// multiplied by 256, a 24-bit one by 256. Samples are read on demand.
#pragma once

#include "sim_file_channel_recording.h"
#include "sim_recording_file.h"

#include <string>

namespace zelvar_sim {

class SoundFileRecording final : public FileChannelRecording {
public:
    using FileChannelRecording::FileChannelRecording;

    // Throws FileError for a missing, unreadable or unknown file, and for one
    // without samples or without a rate.
    static RecordingFile open(const std::string& path, ReadAheadOptions options = {});
};

} // namespace zelvar_sim
