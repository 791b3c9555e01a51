// Columns of a CSV file as the host's inputs, one column a channel, at a
// sample rate the caller gives. The first line is a header when none of its
// fields is a number: its names become the inputs' LongName, else they are
// "ch0", "ch1", ... Fields are separated by ';' when the first line has
// one, else by a tab when it has one, else by ','; with ';' and tabs a ','
// in a number is its decimal comma. A field may be quoted, and a UTF-8 byte
// order mark is dropped. An empty field or "nan" is a missing sample,
// delivered as a gap; a blank line is a row of them in a file of one
// column; blank lines at the end are not rows.
//
// The file is read twice: once when opened, to check every number (so that
// a bad one is refused before a run begins, with its line) and to note the
// gaps and where every 1024th row begins; then again on demand as the host's
// clock advances, from the nearest noted row. What stays in memory is that
// index, the gaps and the read-ahead, however long the file.
#pragma once

#include "sim_file_channel_recording.h"
#include "sim_recording_file.h"

#include <string>

namespace zelvar_sim {

class CsvRecording final : public FileChannelRecording {
public:
    using FileChannelRecording::FileChannelRecording;

    // Throws FileError for a missing or unreadable file, a bad number, a row
    // of the wrong width, a file without rows, and a rate that is not above 0.
    static RecordingFile open(const std::string& path, double sample_rate,
                              ReadAheadOptions options = {});
};

} // namespace zelvar_sim
