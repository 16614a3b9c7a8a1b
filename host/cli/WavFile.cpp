// libsndfile wrappers for the command line host.
#include "WavFile.h"

#include <sndfile.h>

#include <algorithm>
#include <memory>
#include <stdexcept>

#include "InputLimits.h"

namespace BR {

namespace {
struct FileCloser {
    void operator()(SNDFILE* file) const { sf_close(file); }
};
using SoundFile = std::unique_ptr<SNDFILE, FileCloser>;
}  // namespace

AudioData ReadWav(const std::string& path) {
    SF_INFO info{};
    SoundFile file(sf_open(path.c_str(), SFM_READ, &info));
    if (!file) throw std::runtime_error("cannot read \"" + path + "\": " + sf_strerror(nullptr));
    // The header's claims are checked before anything is allocated; the samples then arrive block by
    // block, so a header that lies about a compressed file's length costs no more than its contents.
    if (info.channels < 1 || info.channels > kMaxInputChannels)
        throw std::runtime_error("cannot read \"" + path + "\": it claims " + std::to_string(info.channels) +
                                 " channels; audio inputs may have 1 to " +
                                 std::to_string(kMaxInputChannels));
    const uint64_t channels = uint64_t(info.channels);
    if (info.frames < 0 || uint64_t(info.frames) > kMaxInputSamples / channels)
        throw std::runtime_error("cannot read \"" + path + "\": it claims " + std::to_string(info.frames) +
                                 " frames of " + std::to_string(channels) +
                                 " channels; audio inputs may hold at most " +
                                 std::to_string(kMaxInputSamples) + " samples (frames times channels)");
    AudioData audio;
    audio.sampleRate = info.samplerate;
    audio.channels.resize(channels);
    std::vector<float> interleaved(kInputReadFrames * channels);
    sf_count_t total = 0;
    while (total < info.frames) {
        const sf_count_t want = std::min<sf_count_t>(sf_count_t(kInputReadFrames), info.frames - total);
        const sf_count_t got = sf_readf_float(file.get(), interleaved.data(), want);
        if (got <= 0) break;
        for (uint64_t c = 0; c < channels; ++c) {
            std::vector<float>& channel = audio.channels[c];
            for (sf_count_t f = 0; f < got; ++f)
                channel.push_back(interleaved[uint64_t(f) * channels + c]);
        }
        total += got;
    }
    if (total != info.frames)
        throw std::runtime_error("cannot read \"" + path + "\": file is truncated (" + std::to_string(total) +
                                 " of the " + std::to_string(info.frames) + " frames its header claims)");
    return audio;
}

void WriteWav(const std::string& path, const AudioData& audio) {
    SF_INFO info{};
    info.samplerate = audio.sampleRate;
    info.channels = int(audio.channels.size());
    info.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
    if (info.channels < 1) throw std::runtime_error("cannot write \"" + path + "\": no channels");
    SoundFile file(sf_open(path.c_str(), SFM_WRITE, &info));
    if (!file) throw std::runtime_error("cannot write \"" + path + "\": " + sf_strerror(nullptr));
    // Values beyond full scale must survive bit for bit: no clipping, no normalisation.
    sf_command(file.get(), SFC_SET_NORM_FLOAT, nullptr, SF_FALSE);
    sf_command(file.get(), SFC_SET_CLIPPING, nullptr, SF_FALSE);
    // Interleaved a block at a time, so that writing needs no second copy of the whole render.
    const size_t frames = audio.Frames(), channels = audio.channels.size();
    std::vector<float> interleaved(size_t(kInputReadFrames) * channels);
    for (size_t done = 0; done < frames;) {
        const size_t n = std::min<size_t>(size_t(kInputReadFrames), frames - done);
        for (size_t f = 0; f < n; ++f)
            for (size_t c = 0; c < channels; ++c)
                interleaved[f * channels + c] = audio.channels[c][done + f];
        if (sf_writef_float(file.get(), interleaved.data(), sf_count_t(n)) != sf_count_t(n))
            throw std::runtime_error("cannot write \"" + path + "\": disk full?");
        done += n;
    }
    if (sf_close(file.release()) != 0) throw std::runtime_error("cannot write \"" + path + "\": disk full?");
}

}  // namespace BR
