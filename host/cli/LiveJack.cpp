// `corvane live` as a JACK client: one audio port per instance channel, the MIDI input port, the
// connections of the patch, and JACK's transport followed, or driven as its timebase master.
#include <jack/jack.h>
#include <jack/midiport.h>
#include <jack/transport.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "CommandLine.h"
#include "InputLimits.h"
#include "LiveRun.h"

namespace BR {

namespace {

// Ticks per beat the timebase master gives.
constexpr double kTicksPerBeat = 1920.0;

// What the JACK thread touches: the host, its ports, the transport mode and a flag the server's
// shutdown raises.
struct JackSide {
    jack_client_t* client = nullptr;
    LiveHost* host = nullptr;
    std::vector<std::vector<jack_port_t*>> outPorts, inPorts;
    jack_port_t* midiPort = nullptr;
    Patch::JackTransport mode = Patch::JackTransport::Follow;
    // As master, the patch's frame 0 is JACK's frame 0 of the roll the client started from its first
    // period (relocating and starting are real-time safe); until then its outputs are silent.
    bool startPending = false;
    bool waitForRoll = false;
    uint32_t waited = 0;  // periods; after a second of a transport that will not roll, the patch starts
    TransportSettings settings;  // the master's tempo, meter and position at frame 0
    double sampleRate = 48000;
    std::atomic<bool> serverGone{false};
};

// Bar, beat and tick of the patch's transport at a frame, for the clients that follow ours.
void Timebase(jack_transport_state_t, jack_nframes_t, jack_position_t* position, int, void* arg) {
    const JackSide& side = *static_cast<JackSide*>(arg);
    const TransportSettings& s = side.settings;
    const double quarters = s.position + double(position->frame) * s.tempo / (60.0 * side.sampleRate);
    const double beats = quarters * s.meterDenominator / 4.0;  // in the meter's beat unit
    const double bar = std::floor(beats / s.meterNumerator);
    const double inBar = beats - bar * s.meterNumerator;
    const double beat = std::floor(inBar);
    position->valid = jack_position_bits_t(JackPositionBBT | JackTickDouble);
    position->bar = int32_t(bar) + 1;
    position->beat = int32_t(beat) + 1;
    position->tick_double = (inBar - beat) * kTicksPerBeat;
    position->tick = int32_t(position->tick_double);
    position->bar_start_tick = bar * s.meterNumerator * kTicksPerBeat;
    position->beats_per_bar = float(s.meterNumerator);
    position->beat_type = float(s.meterDenominator);
    position->ticks_per_beat = kTicksPerBeat;
    position->beats_per_minute = s.tempo * s.meterDenominator / 4.0;
}

// JACK's transport as the modules see it: frame and play state; bar, beat and tempo when a
// timebase master gives them (beats of the meter's unit, so a quarter is 4 / beat_type beats).
OutsideTransport ReadTransport(const JackSide& side, bool& rolling) {
    jack_position_t position;
    rolling = jack_transport_query(side.client, &position) == JackTransportRolling;
    OutsideTransport outside;
    outside.rolling = rolling;
    outside.frame = int64_t(position.frame);
    if (side.mode == Patch::JackTransport::Follow && (position.valid & JackPositionBBT) &&
        position.beats_per_bar >= 1 && position.beat_type >= 1 && position.ticks_per_beat > 0 &&
        position.beats_per_minute > 0) {
        const double tick = (position.valid & JackTickDouble) ? position.tick_double : double(position.tick);
        const double beats = double(position.bar - 1) * position.beats_per_bar + double(position.beat - 1) +
                             tick / position.ticks_per_beat;
        outside.hasBeats = true;
        outside.quarters =
            std::clamp(beats * 4.0 / position.beat_type, -kMaxPositionQuarters, kMaxPositionQuarters);
        outside.tempo =
            std::clamp(position.beats_per_minute * 4.0 / position.beat_type, kMinTempo, kMaxTempo);
        outside.meterNumerator = int32_t(std::clamp(std::lround(position.beats_per_bar), 1L, 64L));
        outside.meterDenominator = int32_t(std::clamp(std::lround(position.beat_type), 1L, 64L));
    }
    return outside;
}

int Process(jack_nframes_t frames, void* arg) {
    JackSide& side = *static_cast<JackSide*>(arg);
    LiveHost& host = *side.host;
    for (size_t i = 0; i < side.outPorts.size(); ++i) {
        for (size_t c = 0; c < side.outPorts[i].size(); ++c)
            host.Output(i, c) = static_cast<float*>(jack_port_get_buffer(side.outPorts[i][c], frames));
        for (size_t c = 0; c < side.inPorts[i].size(); ++c)
            host.Input(i, c) = static_cast<const float*>(jack_port_get_buffer(side.inPorts[i][c], frames));
    }
    if (side.mode != Patch::JackTransport::Own) {
        if (side.startPending) {
            jack_transport_locate(side.client, 0);
            jack_transport_start(side.client);
            side.startPending = false;
            side.waitForRoll = true;
        }
        bool rolling = false;
        const OutsideTransport outside = ReadTransport(side, rolling);
        if (side.waitForRoll && !(rolling && outside.frame == 0) &&
            uint64_t(++side.waited) * frames < uint64_t(side.sampleRate)) {
            for (size_t i = 0; i < side.outPorts.size(); ++i)
                for (size_t c = 0; c < side.outPorts[i].size(); ++c)
                    std::memset(host.Output(i, c), 0, sizeof(float) * frames);
            return 0;
        }
        side.waitForRoll = false;
        host.Follow(outside);
    }
    uint32_t count = 0;
    if (side.midiPort) {
        void* buffer = jack_port_get_buffer(side.midiPort, frames);
        const uint32_t events = jack_midi_get_event_count(buffer);
        TimedMidi* slots = host.MidiSlots();
        for (uint32_t k = 0; k < events && count < LiveHost::kMidiCapacity; ++k) {
            jack_midi_event_t event;
            if (jack_midi_event_get(&event, buffer, k) != 0 || event.size == 0) continue;
            slots[count++] =
                TimedMidi{std::min<uint32_t>(event.time, frames - 1), uint32_t(event.size), event.buffer};
        }
    }
    host.Cycle(frames, count);
    return 0;
}

void ServerShutdown(void* arg) {
    static_cast<JackSide*>(arg)->serverGone.store(true);
}

jack_port_t* RegisterPort(jack_client_t* client, const Patch& patch, const PatchInstance& instance,
                          const std::string& name, const char* type, unsigned long flags) {
    jack_port_t* port = jack_port_register(client, name.c_str(), type, flags, 0);
    if (!port)
        throw InputError(patch.path + ": " + instance.place + ": JACK refused the port \"" + name + "\"");
    return port;
}

}  // namespace

int RunOnJack(Patch& patch, LiveRun& run) {
    // The library's own chatter would bury the one line that says what is wrong.
    jack_set_error_function([](const char*) {});
    jack_set_info_function([](const char*) {});
    jack_status_t status{};
    jack_client_t* client = jack_client_open(run.options.clientName.c_str(), JackNoStartServer, &status);
    if (!client) throw InputError("live: no JACK server is running (start one, or use --driver clock)");
    struct Closer {
        jack_client_t* client;
        ~Closer() { jack_client_close(client); }
    } closer{client};
    const double rate = double(jack_get_sample_rate(client));
    if (rate != patch.sampleRate) {
        if (!patch.files.empty())
            throw InputError(patch.path + ": its input files run at " +
                             std::to_string(int64_t(patch.sampleRate)) + " Hz and the JACK server at " +
                             std::to_string(int64_t(rate)) + " Hz");
        patch.sampleRate = rate;
    }
    // JACK's timeline has no loop: following it, or driving it, leaves the patch's loop aside.
    if (patch.jackTransport != Patch::JackTransport::Own) patch.transport.looping = false;
    LiveHost host(patch);
    JackSide side;
    side.client = client;
    side.host = &host;
    side.mode = patch.jackTransport;
    side.settings = patch.transport;
    side.sampleRate = rate;
    bool anyMidi = false;
    for (size_t i = 0; i < patch.instances.size(); ++i) {
        const PatchInstance& instance = patch.instances[i];
        HostDriver& driver = host.Engine().Driver(i);
        side.outPorts.emplace_back();
        side.inPorts.emplace_back();
        for (int32_t c = 0; c < driver.NumHostOutputs(); ++c)
            side.outPorts.back().push_back(RegisterPort(client, patch, instance,
                                                        instance.name + "_out_" + std::to_string(c),
                                                        JACK_DEFAULT_AUDIO_TYPE, JackPortIsOutput));
        for (int32_t c = 0; c < driver.NumHostInputs(); ++c)
            side.inPorts.back().push_back(RegisterPort(client, patch, instance,
                                                       instance.name + "_in_" + std::to_string(c),
                                                       JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput));
        anyMidi = anyMidi || host.Engine().takesMidi[i];
    }
    if (anyMidi)
        side.midiPort = jack_port_register(client, "midi_in", JACK_DEFAULT_MIDI_TYPE, JackPortIsInput, 0);
    // Every connection is checked before the client starts, so that a wrong name changes nothing.
    std::vector<std::pair<std::string, std::string>> links;
    for (const Patch::Connection& c : patch.connections) {
        const std::string outside = c.fromInstance ? c.to : c.from;
        jack_port_t* port = jack_port_by_name(client, outside.c_str());
        if (!port)
            throw InputError(patch.path + ": " + c.place + ": the JACK server has no port \"" + outside +
                             "\"");
        const std::string ours = std::string(jack_get_client_name(client)) + ":" +
                                 patch.instances[c.instance].name + (c.fromInstance ? "_out_" : "_in_") +
                                 std::to_string(c.channel);
        links.emplace_back(c.fromInstance ? ours : outside, c.fromInstance ? outside : ours);
    }
    const bool master = patch.jackTransport == Patch::JackTransport::Master;
    if (master) {
        if (jack_set_timebase_callback(client, 0, Timebase, &side) != 0)
            throw InputError("live: JACK refused to make the client its timebase master");
        side.startPending = patch.transport.playing;
    }
    jack_set_process_callback(client, Process, &side);
    jack_on_shutdown(client, ServerShutdown, &side);
    if (jack_activate(client) != 0) throw InputError("live: the JACK server refused to start the client");
    for (size_t k = 0; k < links.size(); ++k) {
        const int result = jack_connect(client, links[k].first.c_str(), links[k].second.c_str());
        if (result != 0 && result != EEXIST) {
            jack_deactivate(client);
            throw InputError(patch.path + ": " + patch.connections[k].place + ": JACK could not connect \"" +
                             links[k].first + "\" to \"" + links[k].second + "\"");
        }
    }
    const char* modes[] = {"following JACK's transport", "JACK's timebase master", "on its own transport"};
    std::fprintf(stderr, "corvane: live as JACK client \"%s\" at %g Hz, period %u frames, %s\n",
                 jack_get_client_name(client), rate, unsigned(jack_get_buffer_size(client)),
                 modes[int(patch.jackTransport)]);
    run.OpenEditor(patch, host);
    const char* why = run.Wait([&] { return side.serverGone.load(); });
    run.CloseEditor();
    if (!why) {
        std::fprintf(stderr, "corvane: the JACK server went away after %lld frames\n",
                     (long long)host.FramesDone());
        run.SaveStates(patch, host);
        return 1;
    }
    if (master) {
        // The master that started the transport stops it, and leaves the timebase to others.
        jack_transport_stop(client);
        jack_release_timebase(client);
    }
    jack_deactivate(client);
    std::fprintf(stderr, "corvane: %s: stopped after %lld frames\n", why, (long long)host.FramesDone());
    run.SaveStates(patch, host);
    return 0;
}

}  // namespace BR
