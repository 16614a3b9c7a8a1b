// The checks on recorded and rendered WAV files. Each prints one line of what it found and exits 1
// on the first sample that differs from what is expected, naming file, channel and frame.
//   compare RECORDED REFERENCE [--align] [--tolerance T] [--from F]
//       every channel of RECORDED equals REFERENCE from frame 0 (or, with --align, from the first
//       offset at which all of it matches); the files need the same channel count. --from F leaves the
//       first F frames of both out (frames are then counted from F)
//   expect-constant FILE CHANNEL VALUE [--from F] [--to T] [--tolerance X]
//   expect-gate FILE CHANNEL --period P --width W [--level L] [--first F] [--min-edges K]
//       a square wave: rising edges exactly P frames apart, each W frames high at L
//   expect-ramp FILE CHANNEL --step S [--start V] [--tolerance X]
//       a sawtooth in [0, 1) rising by S per frame (S = tempo / 60 / rate for a beat phase)
//   expect-varying FILE [--min-distinct K]
//       every channel holds at least K different values (default 2): a reference that a comparison
//       can only match by doing something
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <set>
#include <stdexcept>

#include "HostTool.h"

namespace BR::HostTool {

namespace {

// Positional arguments and --name value options.
struct Arguments {
    std::vector<std::string> positional;
    std::map<std::string, std::string> options;

    Arguments(const std::vector<std::string>& args, const std::vector<std::string>& flags) {
        for (size_t i = 0; i < args.size(); ++i) {
            if (args[i].rfind("--", 0) == 0) {
                bool isFlag = false;
                for (const std::string& f : flags)
                    isFlag = isFlag || f == args[i];
                if (isFlag) {
                    options[args[i]] = "1";
                } else if (i + 1 < args.size()) {
                    options[args[i]] = args[i + 1];
                    ++i;
                } else {
                    throw std::runtime_error(args[i] + " needs a value");
                }
            } else {
                positional.push_back(args[i]);
            }
        }
    }
    double Number(const std::string& name, double fallback) const {
        auto it = options.find(name);
        return it == options.end() ? fallback : std::stod(it->second);
    }
    bool Has(const std::string& name) const { return options.count(name) > 0; }
};

const std::vector<float>& Channel(const Audio& audio, const std::string& path, const std::string& text) {
    const size_t channel = std::stoul(text);
    if (channel < 1 || channel > audio.channels.size())
        throw std::runtime_error(path + " has no channel " + text + " (channels count from 1)");
    return audio.channels[channel - 1];
}

int Fail(const char* format, const std::string& path, double a = 0, double b = 0, double c = 0) {
    std::fprintf(stderr, "MISMATCH in %s: ", path.c_str());
    std::fprintf(stderr, format, a, b, c);
    std::fprintf(stderr, "\n");
    return 1;
}

// Frames of `recorded` that match `reference` from `offset`, and the first differing channel.
size_t MatchLength(const Audio& recorded, const Audio& reference, size_t offset, double tolerance,
                   size_t& badChannel) {
    const size_t frames = recorded.Frames();
    for (size_t i = 0; i < frames; ++i)
        for (size_t c = 0; c < recorded.channels.size(); ++c)
            if (!(std::fabs(double(recorded.channels[c][i]) - double(reference.channels[c][offset + i])) <=
                  tolerance)) {
                badChannel = c;
                return i;
            }
    return frames;
}

}  // namespace

int Compare(const std::vector<std::string>& args) {
    const Arguments a(args, {"--align"});
    if (a.positional.size() != 2) throw std::runtime_error("usage: compare RECORDED REFERENCE [--align]");
    Audio recorded = ReadAudio(a.positional[0]), reference = ReadAudio(a.positional[1]);
    const double tolerance = a.Number("--tolerance", 0.0);
    const size_t from = size_t(a.Number("--from", 0));
    for (Audio* audio : {&recorded, &reference})
        for (std::vector<float>& channel : audio->channels)
            channel.erase(channel.begin(), channel.begin() + std::ptrdiff_t(std::min(from, channel.size())));
    if (recorded.channels.size() != reference.channels.size())
        return Fail("%g channels, the reference has %g", a.positional[0], double(recorded.channels.size()),
                    double(reference.channels.size()));
    if (recorded.Frames() == 0 || reference.Frames() < recorded.Frames())
        return Fail("%g frames, the reference only %g", a.positional[0], double(recorded.Frames()),
                    double(reference.Frames()));
    const size_t lastOffset = a.Has("--align") ? reference.Frames() - recorded.Frames() : 0;
    size_t bestOffset = 0, bestLength = 0, bestChannel = 0;
    for (size_t offset = 0; offset <= lastOffset; ++offset) {
        size_t channel = 0;
        const size_t length = MatchLength(recorded, reference, offset, tolerance, channel);
        if (length == recorded.Frames()) {
            std::printf("%s matches %s: %zu frames x %zu channels at offset %zu\n", a.positional[0].c_str(),
                        a.positional[1].c_str(), recorded.Frames(), recorded.channels.size(), offset);
            return 0;
        }
        if (length >= bestLength) bestOffset = offset, bestLength = length, bestChannel = channel;
    }
    const size_t frame = bestLength;
    return Fail("channel %g frame %g differs from the reference: got %.9g", a.positional[0],
                double(bestChannel + 1), double(frame), double(recorded.channels[bestChannel][frame])) |
           Fail("expected %.9g (reference frame %g)", a.positional[1],
                double(reference.channels[bestChannel][bestOffset + frame]), double(bestOffset + frame));
}

int ExpectConstant(const std::vector<std::string>& args) {
    const Arguments a(args, {});
    if (a.positional.size() != 3) throw std::runtime_error("usage: expect-constant FILE CHANNEL VALUE");
    const Audio audio = ReadAudio(a.positional[0]);
    const std::vector<float>& x = Channel(audio, a.positional[0], a.positional[1]);
    // The value as a sample holds it: "0.3" is the float nearest 0.3.
    const double value = double(std::stof(a.positional[2])), tolerance = a.Number("--tolerance", 0.0);
    const size_t from = size_t(a.Number("--from", 0)), to = size_t(a.Number("--to", double(x.size())));
    if (to > x.size() || from >= to)
        return Fail("frames %g to %g are not in the file", a.positional[0], double(from), double(to));
    for (size_t i = from; i < to; ++i)
        if (!(std::fabs(double(x[i]) - value) <= tolerance))
            return Fail("channel %g frame %g is %.9g", a.positional[0], std::stod(a.positional[1]), double(i),
                        double(x[i])) |
                   Fail("expected %.9g", a.positional[0], value);
    std::printf("%s channel %s: %.9g on frames %zu to %zu\n", a.positional[0].c_str(),
                a.positional[1].c_str(), value, from, to);
    return 0;
}

int ExpectGate(const std::vector<std::string>& args) {
    const Arguments a(args, {});
    if (a.positional.size() != 2)
        throw std::runtime_error("usage: expect-gate FILE CHANNEL --period P --width W");
    const Audio audio = ReadAudio(a.positional[0]);
    const std::vector<float>& x = Channel(audio, a.positional[0], a.positional[1]);
    const long period = long(a.Number("--period", 0)), width = long(a.Number("--width", 0));
    const double level = a.Number("--level", 1.0), tolerance = a.Number("--tolerance", 1e-6);
    const long minEdges = long(a.Number("--min-edges", 3)), first = long(a.Number("--first", -1));
    const std::string& path = a.positional[0];
    std::vector<long> rises, falls;
    for (size_t i = 1; i < x.size(); ++i) {
        const bool high = x[i] > level * 0.5f, wasHigh = x[i - 1] > level * 0.5f;
        if (high && !wasHigh) rises.push_back(long(i));
        if (!high && wasHigh) falls.push_back(long(i));
        if (high && !(std::fabs(double(x[i]) - level) <= tolerance))
            return Fail("frame %g is high at %.9g instead of %.9g", path, double(i), double(x[i]), level);
    }
    if (long(rises.size()) < minEdges)
        return Fail("%g rising edges, expected at least %g", path, double(rises.size()), double(minEdges));
    if (first >= 0 && rises[0] != first)
        return Fail("first rising edge at frame %g, expected %g", path, double(rises[0]), double(first));
    for (size_t k = 1; k < rises.size(); ++k)
        if (rises[k] - rises[k - 1] != period)
            return Fail("rising edges at frames %g and %g: %g apart", path, double(rises[k - 1]),
                        double(rises[k]), double(rises[k] - rises[k - 1]));
    for (long rise : rises)
        for (long fall : falls)
            if (fall > rise) {
                if (fall - rise != width)
                    return Fail("high from frame %g to %g: %g frames", path, double(rise), double(fall),
                                double(fall - rise));
                break;
            }
    std::printf("%s channel %s: %zu gates every %ld frames, %ld frames high, first at frame %ld\n",
                path.c_str(), a.positional[1].c_str(), rises.size(), period, width, rises[0]);
    return 0;
}

int ExpectRamp(const std::vector<std::string>& args) {
    const Arguments a(args, {});
    if (a.positional.size() != 2) throw std::runtime_error("usage: expect-ramp FILE CHANNEL --step S");
    const Audio audio = ReadAudio(a.positional[0]);
    const std::vector<float>& x = Channel(audio, a.positional[0], a.positional[1]);
    const double step = a.Number("--step", 0), tolerance = a.Number("--tolerance", 1e-5);
    const std::string& path = a.positional[0];
    if (x.size() < 2) return Fail("only %g frames", path, double(x.size()));
    if (a.Has("--start") && !(std::fabs(double(x[0]) - a.Number("--start", 0)) <= tolerance))
        return Fail("starts at %.9g instead of %.9g", path, double(x[0]), a.Number("--start", 0));
    size_t wraps = 0;
    for (size_t i = 1; i < x.size(); ++i) {
        double d = double(x[i]) - double(x[i - 1]);
        if (d < -0.5) {
            d += 1.0;
            ++wraps;
        }
        if (!(std::fabs(d - step) <= tolerance))
            return Fail("frame %g moves by %.9g instead of %.9g", path, double(i), d, step);
    }
    std::printf("%s channel %s: rises %.9g per frame over %zu frames, %zu wraps\n", path.c_str(),
                a.positional[1].c_str(), step, x.size(), wraps);
    return 0;
}

int ExpectVarying(const std::vector<std::string>& args) {
    const Arguments a(args, {});
    if (a.positional.size() != 1) throw std::runtime_error("usage: expect-varying FILE [--min-distinct K]");
    const Audio audio = ReadAudio(a.positional[0]);
    const size_t wanted = size_t(a.Number("--min-distinct", 2));
    if (audio.Frames() == 0) return Fail("holds no frames", a.positional[0]);
    for (size_t c = 0; c < audio.channels.size(); ++c) {
        const std::vector<float>& x = audio.channels[c];
        std::set<float> values;
        for (size_t i = 0; i < x.size() && values.size() < wanted; ++i)
            values.insert(x[i]);
        const auto [low, high] = std::minmax_element(x.begin(), x.end());
        if (values.size() < wanted)
            return Fail("channel %g holds only %g different values, from %.9g", a.positional[0],
                        double(c + 1), double(values.size()), double(*low)) |
                   Fail("expected at least %g", a.positional[0], double(wanted));
        std::printf("%s channel %zu: at least %zu values, from %.9g to %.9g\n", a.positional[0].c_str(),
                    c + 1, wanted, double(*low), double(*high));
    }
    return 0;
}

// The frames at which a channel crosses zero upwards, one per line: where a script looks for a
// change of an oscillator's speed.
int Crossings(const std::vector<std::string>& args) {
    const Arguments a(args, {});
    if (a.positional.size() != 2) throw std::runtime_error("usage: crossings FILE CHANNEL");
    const Audio audio = ReadAudio(a.positional[0]);
    const size_t channel = size_t(std::stoul(a.positional[1]));
    if (channel < 1 || channel > audio.channels.size())
        return Fail("has no channel %g", a.positional[0], double(channel));
    const std::vector<float>& x = audio.channels[channel - 1];
    for (size_t i = 1; i < x.size(); ++i)
        if (x[i - 1] < 0.0f && x[i] >= 0.0f) std::printf("%zu\n", i);
    return 0;
}

}  // namespace BR::HostTool
