#include "sim_sound_file_recording.h"

#include "sim_file_error.h"
#include "sim_input_file_check.h"

#include <sndfile.h>

#include <filesystem>

namespace zelvar_sim {
namespace {

SampleEncoding encodingOfSubtype(int subtype)
{
    switch (subtype) {
    case SF_FORMAT_PCM_S8:
    case SF_FORMAT_PCM_U8:
    case SF_FORMAT_PCM_16:
    case SF_FORMAT_ULAW:
    case SF_FORMAT_ALAW:
    case SF_FORMAT_IMA_ADPCM:
    case SF_FORMAT_MS_ADPCM:
    case SF_FORMAT_G721_32:
    case SF_FORMAT_G723_24:
    case SF_FORMAT_G723_40:
    case SF_FORMAT_GSM610:
    case SF_FORMAT_VOX_ADPCM:
    case SF_FORMAT_NMS_ADPCM_16:
    case SF_FORMAT_NMS_ADPCM_24:
    case SF_FORMAT_NMS_ADPCM_32:
    case SF_FORMAT_DWVW_12:
    case SF_FORMAT_DWVW_16:
    case SF_FORMAT_DPCM_8:
    case SF_FORMAT_DPCM_16:
    case SF_FORMAT_ALAC_16:
        return SampleEncoding::int16;
    case SF_FORMAT_PCM_24:
    case SF_FORMAT_PCM_32:
    case SF_FORMAT_DWVW_24:
    case SF_FORMAT_ALAC_20:
    case SF_FORMAT_ALAC_24:
    case SF_FORMAT_ALAC_32:
        return SampleEncoding::int32;
    case SF_FORMAT_FLOAT:
    case SF_FORMAT_VORBIS:
    case SF_FORMAT_OPUS:
    case SF_FORMAT_MPEG_LAYER_I:
    case SF_FORMAT_MPEG_LAYER_II:
    case SF_FORMAT_MPEG_LAYER_III:
        return SampleEncoding::float32;
    default:
        return SampleEncoding::float64;
    }
}

std::string formatName(const SF_INFO& info)
{
    SF_FORMAT_INFO major{};
    major.format = info.format & SF_FORMAT_TYPEMASK;
    SF_FORMAT_INFO sub{};
    sub.format = info.format & SF_FORMAT_SUBMASK;
    std::string name = sf_command(nullptr, SFC_GET_FORMAT_INFO, &major, sizeof(major)) == 0
                           ? major.name
                           : "sound file";
    if (sf_command(nullptr, SFC_GET_FORMAT_INFO, &sub, sizeof(sub)) == 0) {
        name += ", ";
        name += sub.name;
    }
    return name;
}

class SoundFileSource final : public FrameSource {
public:
    SoundFileSource(std::string path, SNDFILE* file, const SF_INFO& info)
        : m_path(std::move(path)), m_file(file), m_info(info),
          m_encoding(encodingOfSubtype(info.format & SF_FORMAT_SUBMASK))
    {
        // Integer samples read as double keep their values, not a fraction of full scale.
        sf_command(m_file, SFC_SET_NORM_DOUBLE, nullptr, SF_FALSE);
    }
    ~SoundFileSource() override { sf_close(m_file); }
    SoundFileSource(const SoundFileSource&) = delete;
    SoundFileSource& operator=(const SoundFileSource&) = delete;

    std::size_t channels() const override { return static_cast<std::size_t>(m_info.channels); }
    std::uint64_t frames() const override { return static_cast<std::uint64_t>(m_info.frames); }
    SampleEncoding encoding() const override { return m_encoding; }
    std::size_t memoryBytes() const override { return 0; }

    void readFrames(std::uint64_t first, std::uint64_t count, unsigned char* out) override
    {
        const auto start = static_cast<sf_count_t>(first);
        const auto wanted = static_cast<sf_count_t>(count);
        if (sf_seek(m_file, start, SEEK_SET) != start) {
            throw FileError(m_path + ": cannot seek to frame " + std::to_string(first) + ": " +
                            sf_strerror(m_file));
        }
        sf_count_t got = 0;
        switch (m_encoding) {
        case SampleEncoding::int16:
            got = sf_readf_short(m_file, reinterpret_cast<short*>(out), wanted);
            break;
        case SampleEncoding::int32:
            got = sf_readf_int(m_file, reinterpret_cast<int*>(out), wanted);
            break;
        case SampleEncoding::float32:
            got = sf_readf_float(m_file, reinterpret_cast<float*>(out), wanted);
            break;
        case SampleEncoding::float64:
            got = sf_readf_double(m_file, reinterpret_cast<double*>(out), wanted);
            break;
        }
        if (got != wanted) {
            throw FileError(m_path + ": reading stopped at frame " +
                            std::to_string(first + static_cast<std::uint64_t>(got > 0 ? got : 0)) +
                            " of " + std::to_string(frames()) + ": " +
                            (sf_error(m_file) != SF_ERR_NO_ERROR
                                 ? sf_strerror(m_file)
                                 : "the file is shorter than when it was opened"));
        }
    }

private:
    std::string m_path;
    SNDFILE* m_file;
    SF_INFO m_info;
    SampleEncoding m_encoding;
};

} // namespace

RecordingFile SoundFileRecording::open(const std::string& path, ReadAheadOptions options)
{
    checkInputFile(path);
    SF_INFO info{};
    SNDFILE* file = sf_open(path.c_str(), SFM_READ, &info);
    if (file == nullptr) {
        throw FileError(path + ": not a sound file that libsndfile reads (" +
                        sf_strerror(nullptr) + ")");
    }
    RecordingFile result;
    result.path = path;
    result.format = formatName(info);
    result.sample_rate = info.samplerate;
    auto source = std::make_unique<SoundFileSource>(path, file, info);
    if (info.frames <= 0 || info.channels <= 0) {
        throw FileError(path + ": holds no samples");
    }
    if (!info.seekable) {
        throw FileError(path + ": cannot be read out of order, which a run needs");
    }
    checkSampleRate(path, result.sample_rate);
    result.encoding = source->encoding();
    auto reader = std::make_shared<SharedFrameReader>(std::move(source), options);
    const std::string stem = std::filesystem::path(path).stem().string();
    const std::vector<SampleSpan> whole{{0, static_cast<std::uint64_t>(info.frames)}};
    for (int channel = 0; channel < info.channels; ++channel) {
        FileInput input;
        input.long_name = info.channels == 1 ? stem : stem + "_ch" + std::to_string(channel);
        input.recording = std::make_shared<SoundFileRecording>(
            reader, static_cast<std::size_t>(channel), whole);
        result.inputs.push_back(std::move(input));
    }
    result.reader = reader;
    return result;
}

} // namespace zelvar_sim
