// A file that zelvar-sim runs on: its channels as the host's inputs, each
// with the name the host shows and the recording that feeds it.
//
//   zelvar_sim::RecordingFile file = zelvar_sim::openRecordingFile("rig.wav", {});
//   for (const zelvar_sim::FileInput& input : file.inputs) {
//       ... acquisition.addInputChannel({.long_name = input.long_name,
//                                        .sample_rate = file.sample_rate}, input.recording);
//   }
#pragma once

#include "sim_recording.h"
#include "sim_shared_frame_reader.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zelvar_sim {

struct FileInput {
    std::string long_name;
    std::shared_ptr<const Recording> recording;
};

struct RecordingFile {
    std::string path;
    std::string format;       // what the file is, in a person's words
    double sample_rate = 0.0; // Hz, of every channel
    SampleEncoding encoding = SampleEncoding::float64;
    std::vector<FileInput> inputs; // in the file's channel order
    // The reader its channels share: its fault() tells of a read that failed
    // during the run.
    std::shared_ptr<const SharedFrameReader> reader;
};

// A ".csv" or ".txt" file (any case) is read as CSV at `csv_sample_rate`,
// which it then needs; any other file goes to libsndfile, which knows its
// own rate. Throws FileError.
RecordingFile openRecordingFile(const std::string& path, std::optional<double> csv_sample_rate,
                                ReadAheadOptions options = {});

// Gives every input of all files a name of its own, so that no two inputs
// share one output channel: a name met before gets "_2", "_3", ...
void makeLongNamesUnique(std::vector<RecordingFile>& files);

// Throws FileError unless `rate` is a finite number above 0.
void checkSampleRate(const std::string& path, double rate);

} // namespace zelvar_sim
