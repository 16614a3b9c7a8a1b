// drive: plays a WAV and MIDI events into a plug-in running in a JACK host and records its outputs,
// the first recorded sample being the first one played, so the recording can be compared from frame 0
// with an offline render given the same input file and events.
//   drive --out FILE --frames N [--name NAME] [--roll] [--in WAV --to PORT...] [--midi-to PORT]
//         [--event FRAME:HEXBYTES...] [--timeout SECONDS] PORT...
// Two clients: "NAME_send" feeds channel k of WAV to the k-th --to port (silence past its end) and the
// events to --midi-to at their frames; "NAME_rec" records PORT... JACK runs the sender before the
// plug-in (to which it must be connected) and the plug-in before the recorder in each cycle, so all
// three start in the same cycle.
// With --roll, playing starts in the first cycle in which the transport rolls. Prints "armed" once
// every port is connected, then the JACK (or transport) frame at which playing started.
#include <jack/jack.h>
#include <jack/midiport.h>
#include <jack/transport.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <thread>

#include "HostTool.h"

namespace BR::HostTool {

namespace {

struct Event {
    size_t frame = 0;
    std::vector<unsigned char> bytes;
};

struct Drive {
    jack_client_t* sender = nullptr;
    jack_client_t* recorder = nullptr;
    std::vector<jack_port_t*> outs, ins;
    jack_port_t* midiOut = nullptr;
    Audio input;
    std::vector<Event> events;  // by frame
    std::vector<std::vector<float>> data;
    size_t frames = 0, sent = 0, nextEvent = 0, written = 0;
    bool roll = false;
    std::atomic<bool> armed{false}, done{false}, late{false};
    std::atomic<uint64_t> cycles{0};
    std::atomic<int64_t> startFrame{-1}, transportFrame{-1};
};

Event ParseEventText(const std::string& text) {
    const size_t colon = text.find(':');
    if (colon == std::string::npos || (text.size() - colon - 1) % 2 != 0 || text.size() == colon + 1)
        throw std::runtime_error("--event \"" + text + "\": expected FRAME:HEXBYTES");
    Event event;
    event.frame = std::stoul(text.substr(0, colon));
    for (size_t i = colon + 1; i < text.size(); i += 2)
        event.bytes.push_back(static_cast<unsigned char>(std::stoul(text.substr(i, 2), nullptr, 16)));
    return event;
}

int Send(jack_nframes_t n, void* arg) {
    Drive& d = *static_cast<Drive*>(arg);
    void* midi = d.midiOut ? jack_port_get_buffer(d.midiOut, n) : nullptr;
    if (midi) jack_midi_clear_buffer(midi);
    d.cycles.fetch_add(1);
    for (jack_port_t* port : d.outs) {
        auto* out = static_cast<float*>(jack_port_get_buffer(port, n));
        std::fill(out, out + n, 0.0f);
    }
    if (!d.armed.load()) return 0;
    if (d.startFrame.load() < 0) {
        jack_position_t position;
        const bool rolling = jack_transport_query(d.sender, &position) == JackTransportRolling;
        if (d.roll && !rolling) return 0;
        d.transportFrame.store(int64_t(position.frame));
        d.startFrame.store(int64_t(jack_last_frame_time(d.sender)));
    }
    const size_t have = d.input.Frames();
    for (size_t c = 0; c < d.outs.size(); ++c) {
        auto* out = static_cast<float*>(jack_port_get_buffer(d.outs[c], n));
        for (size_t i = 0; i < n && d.sent + i < have; ++i)
            out[i] = d.input.channels[c][d.sent + i];
    }
    for (; d.nextEvent < d.events.size() && d.events[d.nextEvent].frame < d.sent + n; ++d.nextEvent) {
        const Event& e = d.events[d.nextEvent];
        if (midi)
            jack_midi_event_write(midi, jack_nframes_t(e.frame - d.sent), e.bytes.data(), e.bytes.size());
    }
    d.sent += n;
    return 0;
}

int Record(jack_nframes_t n, void* arg) {
    Drive& d = *static_cast<Drive*>(arg);
    const int64_t start = d.startFrame.load();
    if (start < 0 || d.done.load()) return 0;
    if (d.written == 0 && int64_t(jack_last_frame_time(d.recorder)) != start) {
        // The recorder ran before the sender in the cycle that played first.
        d.late.store(true);
        d.done.store(true);
        return 0;
    }
    const size_t take = std::min<size_t>(n, d.frames - d.written);
    for (size_t c = 0; c < d.ins.size(); ++c) {
        const auto* in = static_cast<const float*>(jack_port_get_buffer(d.ins[c], n));
        std::memcpy(d.data[c].data() + d.written, in, take * sizeof(float));
    }
    d.written += take;
    if (d.written == d.frames) d.done.store(true);
    return 0;
}

// Connects `from` to `to`, waiting for ports of clients still starting; false past the deadline.
bool ConnectWhenThere(jack_client_t* client, const std::string& from, const std::string& to,
                      std::chrono::steady_clock::time_point deadline) {
    while (jack_connect(client, from.c_str(), to.c_str()) != 0) {
        if (std::chrono::steady_clock::now() > deadline) {
            std::fprintf(stderr, "drive: cannot connect %s to %s\n", from.c_str(), to.c_str());
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    return true;
}

}  // namespace

int DriveCommand(const std::vector<std::string>& args) {
    std::string out, in, midiTo, name = "corvane_drive";
    std::vector<std::string> to, sources;
    double timeout = 30;
    Drive d;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        auto next = [&]() -> const std::string& {
            if (i + 1 >= args.size()) throw std::runtime_error(a + " needs a value");
            return args[++i];
        };
        if (a == "--out") {
            out = next();
        } else if (a == "--frames") {
            d.frames = std::stoul(next());
        } else if (a == "--name") {
            name = next();
        } else if (a == "--in") {
            in = next();
        } else if (a == "--to") {
            to.push_back(next());
        } else if (a == "--midi-to") {
            midiTo = next();
        } else if (a == "--event") {
            d.events.push_back(ParseEventText(next()));
        } else if (a == "--timeout") {
            timeout = std::stod(next());
        } else if (a == "--roll") {
            d.roll = true;
        } else {
            sources.push_back(a);
        }
    }
    if (out.empty() || d.frames == 0 || sources.empty())
        throw std::runtime_error("usage: drive --out FILE --frames N [--in WAV --to PORT...] PORT...");
    if (!in.empty()) d.input = ReadAudio(in);
    if (d.input.channels.size() != to.size())
        throw std::runtime_error("one --to port is needed for each channel of the --in file");
    // The sender runs before the plug-in only if connected to it; without, JACK may run it last.
    if (midiTo.empty() && to.empty()) throw std::runtime_error("--midi-to or --to is needed");
    if (!d.events.empty() && midiTo.empty()) throw std::runtime_error("--event needs --midi-to");
    std::stable_sort(d.events.begin(), d.events.end(),
                     [](const Event& x, const Event& y) { return x.frame < y.frame; });
    d.data.assign(sources.size(), std::vector<float>(d.frames, 0.0f));

    jack_status_t status;
    d.sender = jack_client_open((name + "_send").c_str(), JackNoStartServer, &status);
    d.recorder = jack_client_open((name + "_rec").c_str(), JackNoStartServer, &status);
    if (!d.sender || !d.recorder) throw std::runtime_error("cannot reach the JACK server");
    if (!in.empty() && int(jack_get_sample_rate(d.sender)) != d.input.sampleRate)
        throw std::runtime_error(in + " is not at JACK's sample rate");
    for (size_t c = 0; c < to.size(); ++c)
        d.outs.push_back(jack_port_register(d.sender, ("out_" + std::to_string(c + 1)).c_str(),
                                            JACK_DEFAULT_AUDIO_TYPE, JackPortIsOutput, 0));
    if (!midiTo.empty())
        d.midiOut = jack_port_register(d.sender, "midi_out", JACK_DEFAULT_MIDI_TYPE, JackPortIsOutput, 0);
    for (size_t c = 0; c < sources.size(); ++c)
        d.ins.push_back(jack_port_register(d.recorder, ("in_" + std::to_string(c + 1)).c_str(),
                                           JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput, 0));
    jack_set_process_callback(d.sender, Send, &d);
    jack_set_process_callback(d.recorder, Record, &d);
    if (jack_activate(d.sender) != 0 || jack_activate(d.recorder) != 0)
        throw std::runtime_error("cannot activate the JACK clients");

    const auto deadline =
        std::chrono::steady_clock::now() + std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                                               std::chrono::duration<double>(timeout));
    bool connected = true;
    for (size_t c = 0; c < to.size() && connected; ++c)
        connected = ConnectWhenThere(d.sender, jack_port_name(d.outs[c]), to[c], deadline);
    if (connected && d.midiOut)
        connected = ConnectWhenThere(d.sender, jack_port_name(d.midiOut), midiTo, deadline);
    for (size_t c = 0; c < sources.size() && connected; ++c)
        connected = ConnectWhenThere(d.recorder, sources[c], jack_port_name(d.ins[c]), deadline);
    int result = connected ? 0 : 1;
    if (connected) {
        // A connection takes effect at the start of a later cycle: let two pass before playing.
        const uint64_t connectedAt = d.cycles.load();
        while (d.cycles.load() < connectedAt + 2 && std::chrono::steady_clock::now() < deadline)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        std::printf("armed\n");
        std::fflush(stdout);
        d.armed.store(true);
        while (!d.done.load() && std::chrono::steady_clock::now() < deadline)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        if (d.late.load()) {
            std::fprintf(stderr, "drive: the recorder did not run in the cycle that played first\n");
            result = 1;
        } else if (!d.done.load()) {
            std::fprintf(stderr, "drive: only %zu of %zu frames arrived in time\n", d.written, d.frames);
            result = 1;
        }
    }
    const int sampleRate = int(jack_get_sample_rate(d.recorder));
    jack_deactivate(d.sender);
    jack_deactivate(d.recorder);
    jack_client_close(d.sender);
    jack_client_close(d.recorder);
    if (result != 0) return result;

    Audio audio;
    audio.sampleRate = sampleRate;
    audio.channels = std::move(d.data);
    WriteAudio(out, audio);
    std::printf("drove %zu frames x %zu channels from %s frame %lld\n", d.frames, sources.size(),
                d.roll ? "transport" : "JACK",
                static_cast<long long>(d.roll ? d.transportFrame.load() : d.startFrame.load()));
    return 0;
}

}  // namespace BR::HostTool
