// Standard MIDI File writing: header, one track of full-status messages with variable-length deltas.
#include "MidiFileOut.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <stdexcept>

namespace BR {

MidiFileTiming MidiFileTimingFor(int64_t sampleRate) {
    for (int64_t k = 1; k <= 1000000; ++k)
        if (sampleRate % k == 0 && 1000000 % k == 0 && sampleRate / k <= 32767)
            return {uint16_t(sampleRate / k), uint32_t(1000000 / k), true};
    return {24000, 500000, false};
}

namespace {

void PutBig(std::string& out, uint64_t value, int bytes) {
    for (int i = bytes - 1; i >= 0; --i)
        out += char((value >> (8 * i)) & 0xFF);
}

// Variable-length quantity: seven bits a byte, high bit set on all but the last. Deltas past the
// format's 28 bits are split by the caller.
void PutVariable(std::string& out, uint32_t value) {
    char bytes[4];
    int n = 0;
    do {
        bytes[n++] = char(value & 0x7F);
        value >>= 7;
    } while (value && n < 4);
    while (n > 1)
        out += char(bytes[--n] | 0x80);
    out += bytes[0];
}

constexpr uint32_t kMaxDelta = 0x0FFFFFFF;

// A delta of any size: the part beyond one quantity goes into empty text events, which players skip.
void PutDelta(std::string& out, uint64_t delta) {
    while (delta > kMaxDelta) {
        PutVariable(out, kMaxDelta);
        out += "\xFF\x01";
        out += '\0';
        delta -= kMaxDelta;
    }
    PutVariable(out, uint32_t(delta));
}

}  // namespace

void WriteMidiFile(const std::string& path, const std::vector<SentMidi>& messages, int64_t sampleRate,
                   uint64_t frames) {
    const MidiFileTiming timing = MidiFileTimingFor(sampleRate);
    auto tick = [&](uint64_t frame) {
        if (timing.exact) return frame;
        return uint64_t(std::llround(double(frame) * 1e6 * double(timing.ticksPerQuarter) /
                                     (double(timing.microsecondsPerQuarter) * double(sampleRate))));
    };
    std::string track;
    PutVariable(track, 0);
    track += "\xFF\x51\x03";
    PutBig(track, timing.microsecondsPerQuarter, 3);
    uint64_t at = 0;
    for (const SentMidi& m : messages) {
        const uint64_t t = std::max(tick(m.frame), at);
        PutDelta(track, t - at);
        at = t;
        track.append(reinterpret_cast<const char*>(m.bytes), 3);
    }
    PutDelta(track, std::max(tick(frames), at) - at);
    track += "\xFF\x2F";
    track += '\0';

    std::string file = "MThd";
    PutBig(file, 6, 4);
    PutBig(file, 0, 2);  // format 0
    PutBig(file, 1, 2);  // one track
    PutBig(file, timing.ticksPerQuarter, 2);
    file += "MTrk";
    PutBig(file, track.size(), 4);
    file += track;
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(file.data(), std::streamsize(file.size()));
    out.flush();
    if (!out) throw std::runtime_error("cannot write \"" + path + "\"");
}

}  // namespace BR
