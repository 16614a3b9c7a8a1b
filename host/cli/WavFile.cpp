// libsndfile wrappers for the command line host.
#include "WavFile.h"

#include <sndfile.h>

#include <stdexcept>

namespace BR {

AudioData ReadWav(const std::string& path) {
    SF_INFO info{};
    SNDFILE* file = sf_open(path.c_str(), SFM_READ, &info);
    if (!file) throw std::runtime_error("cannot read \"" + path + "\": " + sf_strerror(nullptr));
    AudioData audio;
    audio.sampleRate = info.samplerate;
    std::vector<float> interleaved(size_t(info.frames) * size_t(info.channels));
    const sf_count_t got = sf_readf_float(file, interleaved.data(), info.frames);
    sf_close(file);
    if (got != info.frames) throw std::runtime_error("cannot read \"" + path + "\": file is truncated");
    audio.channels.assign(size_t(info.channels), std::vector<float>(size_t(info.frames)));
    for (size_t f = 0; f < size_t(info.frames); ++f)
        for (size_t c = 0; c < size_t(info.channels); ++c)
            audio.channels[c][f] = interleaved[f * size_t(info.channels) + c];
    return audio;
}

void WriteWav(const std::string& path, const AudioData& audio) {
    SF_INFO info{};
    info.samplerate = audio.sampleRate;
    info.channels = int(audio.channels.size());
    info.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
    if (info.channels < 1) throw std::runtime_error("cannot write \"" + path + "\": no channels");
    SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
    if (!file) throw std::runtime_error("cannot write \"" + path + "\": " + sf_strerror(nullptr));
    // Values beyond full scale must survive bit for bit: no clipping, no normalisation.
    sf_command(file, SFC_SET_NORM_FLOAT, nullptr, SF_FALSE);
    sf_command(file, SFC_SET_CLIPPING, nullptr, SF_FALSE);
    const size_t frames = audio.Frames();
    std::vector<float> interleaved(frames * audio.channels.size());
    for (size_t f = 0; f < frames; ++f)
        for (size_t c = 0; c < audio.channels.size(); ++c)
            interleaved[f * audio.channels.size() + c] = audio.channels[c][f];
    const sf_count_t written = sf_writef_float(file, interleaved.data(), sf_count_t(frames));
    sf_close(file);
    if (written != sf_count_t(frames)) throw std::runtime_error("cannot write \"" + path + "\": disk full?");
}

}  // namespace BR
