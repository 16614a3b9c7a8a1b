// Entry of corvane_host_tool and its WAV reading and writing.
#include "HostTool.h"

#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <stdexcept>

namespace BR::HostTool {

Audio ReadAudio(const std::string& path) {
    SF_INFO info{};
    SNDFILE* file = sf_open(path.c_str(), SFM_READ, &info);
    if (!file) throw std::runtime_error("cannot read " + path + ": " + sf_strerror(nullptr));
    std::vector<float> interleaved(size_t(info.frames) * size_t(info.channels));
    const sf_count_t got = sf_readf_float(file, interleaved.data(), info.frames);
    sf_close(file);
    Audio audio;
    audio.sampleRate = info.samplerate;
    audio.channels.assign(size_t(info.channels), std::vector<float>(size_t(got)));
    for (sf_count_t i = 0; i < got; ++i)
        for (int c = 0; c < info.channels; ++c)
            audio.channels[size_t(c)][size_t(i)] = interleaved[size_t(i) * size_t(info.channels) + size_t(c)];
    return audio;
}

void WriteAudio(const std::string& path, const Audio& audio) {
    SF_INFO info{};
    info.samplerate = audio.sampleRate;
    info.channels = int(audio.channels.size());
    info.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
    SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
    if (!file) throw std::runtime_error("cannot write " + path + ": " + sf_strerror(nullptr));
    std::vector<float> interleaved(audio.Frames() * audio.channels.size());
    for (size_t i = 0; i < audio.Frames(); ++i)
        for (size_t c = 0; c < audio.channels.size(); ++c)
            interleaved[i * audio.channels.size() + c] = audio.channels[c][i];
    sf_writef_float(file, interleaved.data(), sf_count_t(audio.Frames()));
    sf_close(file);
}

// signal FILE CHANNELS FRAMES: a float WAV at 48 kHz with a different sine in each channel
// (channel c: 0.5 * sin at 100 * c Hz, plus 0.1 * c), to feed modules whose output depends on input.
int Signal(const std::vector<std::string>& args) {
    if (args.size() != 3) throw std::runtime_error("usage: signal FILE CHANNELS FRAMES");
    const size_t channels = std::stoul(args[1]), frames = std::stoul(args[2]);
    Audio audio;
    audio.sampleRate = 48000;
    audio.channels.assign(std::max<size_t>(channels, 1), std::vector<float>(frames));
    for (size_t c = 0; c < audio.channels.size(); ++c)
        for (size_t i = 0; i < frames; ++i)
            audio.channels[c][i] =
                float(0.5 * std::sin(2.0 * M_PI * 100.0 * double(c + 1) * double(i) / 48000.0) +
                      0.1 * double(c + 1));
    WriteAudio(args[0], audio);
    return 0;
}

}  // namespace BR::HostTool

int main(int argc, char** argv) {
    using namespace BR::HostTool;
    if (argc < 2) {
        std::fprintf(
            stderr,
            "usage: corvane_host_tool "
            "capture|drive|transport|elck-set|signal|compare|expect-constant|expect-gate|expect-ramp|\n"
            "expect-varying|crossings|ramp-gate|midi-frames ...\n");
        return 2;
    }
    const std::string command = argv[1];
    const std::vector<std::string> args(argv + 2, argv + argc);
    try {
        if (command == "capture") return Capture(args);
        if (command == "drive") return DriveCommand(args);
        if (command == "signal") return Signal(args);
        if (command == "transport") return Transport(args);
        if (command == "elck-set") return ElckSet(args);
        if (command == "compare") return Compare(args);
        if (command == "expect-constant") return ExpectConstant(args);
        if (command == "expect-gate") return ExpectGate(args);
        if (command == "expect-ramp") return ExpectRamp(args);
        if (command == "expect-varying") return ExpectVarying(args);
        if (command == "crossings") return Crossings(args);
        if (command == "ramp-gate") return RampGate(args);
        if (command == "midi-frames") return MidiFrames(args);
        std::fprintf(stderr, "corvane_host_tool: unknown command \"%s\"\n", command.c_str());
        return 2;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "corvane_host_tool %s: %s\n", command.c_str(), e.what());
        return 2;
    }
}
