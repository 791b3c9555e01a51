#include "sim_recording_file.h"

#include "sim_csv_recording.h"
#include "sim_file_error.h"
#include "sim_sound_file_recording.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <filesystem>
#include <set>

namespace zelvar_sim {

void checkSampleRate(const std::string& path, double rate)
{
    if (!std::isfinite(rate) || rate <= 0.0) {
        throw FileError(path + ": sample rate must be above 0 Hz");
    }
}

RecordingFile openRecordingFile(const std::string& path, std::optional<double> csv_sample_rate,
                                ReadAheadOptions options)
{
    std::string extension = std::filesystem::path(path).extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (extension == ".csv" || extension == ".txt") {
        if (!csv_sample_rate) {
            throw FileError(path + ": a CSV file needs its sample rate given");
        }
        return CsvRecording::open(path, *csv_sample_rate, options);
    }
    return SoundFileRecording::open(path, options);
}

void makeLongNamesUnique(std::vector<RecordingFile>& files)
{
    std::set<std::string> taken;
    for (RecordingFile& file : files) {
        for (FileInput& input : file.inputs) {
            std::string name = input.long_name;
            for (int n = 2; taken.count(name) != 0; ++n) {
                name = input.long_name + "_" + std::to_string(n);
            }
            taken.insert(name);
            input.long_name = name;
        }
    }
}

} // namespace zelvar_sim
