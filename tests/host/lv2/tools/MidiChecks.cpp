// ramp-gate and midi-frames: the input CV To MIDI's host tests play, and a Standard MIDI File read by
// libsmf (an independent reader) as one "FRAME: HEX HEX HEX" line per channel message, the format in
// which the scripts compare it with what jack_midi_dump received.
// glib, under libsmf, includes <type_traits> inside its C linkage block: included here first.
#include <type_traits>
// clang-format off
#include <smf.h>
// clang-format on

#include <cmath>
#include <cstdio>
#include <stdexcept>

#include "HostTool.h"

namespace BR::HostTool {

// ramp-gate FILE FRAMES PERIOD WIDTH: a 48 kHz float WAV, channel 1 running from -1 towards 1 over
// FRAMES, channel 2 0.5 for WIDTH frames of every PERIOD, else 0.
int RampGate(const std::vector<std::string>& args) {
    if (args.size() != 4) throw std::runtime_error("usage: ramp-gate FILE FRAMES PERIOD WIDTH");
    const size_t frames = std::stoul(args[1]), period = std::stoul(args[2]), width = std::stoul(args[3]);
    Audio audio;
    audio.sampleRate = 48000;
    audio.channels.assign(2, std::vector<float>(frames));
    for (size_t i = 0; i < frames; ++i) {
        audio.channels[0][i] = -1.0f + 2.0f * float(i) / float(frames);
        audio.channels[1][i] = i % period < width ? 0.5f : 0.0f;
    }
    WriteAudio(args[0], audio);
    return 0;
}

// midi-frames FILE RATE: the frame of each channel message (its time in seconds times RATE, rounded).
int MidiFrames(const std::vector<std::string>& args) {
    if (args.size() != 2) throw std::runtime_error("usage: midi-frames FILE RATE");
    const double rate = std::stod(args[1]);
    smf_t* smf = smf_load(args[0].c_str());
    if (!smf) throw std::runtime_error("libsmf cannot read " + args[0]);
    while (smf_event_t* event = smf_get_next_event(smf)) {
        if (smf_event_is_metadata(event) || event->midi_buffer_length < 1) continue;
        std::printf("%lld:", static_cast<long long>(std::llround(event->time_seconds * rate)));
        for (int i = 0; i < event->midi_buffer_length; ++i)
            std::printf(" %02x", event->midi_buffer[i]);
        std::printf("\n");
    }
    smf_delete(smf);
    return 0;
}

}  // namespace BR::HostTool
