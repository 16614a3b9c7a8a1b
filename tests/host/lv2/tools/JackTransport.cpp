// transport: JACK's transport master for a test: BBT at a fixed tempo and meter, located to frame 0
// and stopped ("ready", once a cycle has carried that position); on SIGUSR2 announcing the tempo
// again ("announced"); rolling on SIGUSR1
// ("rolling") until the transport has passed SECONDS of frames (JACK's time, however slowly a loaded machine
// runs it), then stopped again ("stopped") until SIGTERM or SIGINT end it cleanly.
//   transport --tempo BPM --roll SECONDS [--beats-per-bar N] [--beat-type D]
#include <jack/jack.h>
#include <jack/transport.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <stdexcept>
#include <thread>

#include "HostTool.h"

namespace BR::HostTool {

namespace {

std::atomic<bool> quit{false};
std::atomic<bool> go{false};
std::atomic<bool> announce{false};

struct Meter {
    std::atomic<double> tempo{120};  // changed by the main thread while announcing
    double beatsPerBar = 4, beatType = 4;
};

// BBT of a frame at a constant tempo from frame 0, ticks of 1/1920 beat.
void Timebase(jack_transport_state_t, jack_nframes_t, jack_position_t* pos, int, void* arg) {
    const Meter& m = *static_cast<const Meter*>(arg);
    const double ticksPerBeat = 1920.0;
    const double tempo = m.tempo.load();
    const double beats = double(pos->frame) * tempo / 60.0 / double(pos->frame_rate);
    const long whole = long(beats);
    pos->valid = JackPositionBBT;
    pos->bar = int32_t(whole / long(m.beatsPerBar)) + 1;
    pos->beat = int32_t(whole % long(m.beatsPerBar)) + 1;
    pos->tick = int32_t((beats - double(whole)) * ticksPerBeat);
    pos->bar_start_tick = double(pos->bar - 1) * m.beatsPerBar * ticksPerBeat;
    pos->beats_per_bar = float(m.beatsPerBar);
    pos->beat_type = float(m.beatType);
    pos->ticks_per_beat = ticksPerBeat;
    pos->beats_per_minute = tempo;
}

void OnSignal(int signal) {
    if (signal == SIGUSR1) {
        go.store(true);
    } else if (signal == SIGUSR2) {
        announce.store(true);
    } else {
        quit.store(true);
    }
}

// Waits until a cycle has carried the stopped transport at frame 0 with its BBT at `tempo`; false on
// SIGTERM.
bool AwaitStoppedAt0(jack_client_t* client, double tempo) {
    for (jack_position_t position{};;) {
        const jack_transport_state_t state = jack_transport_query(client, &position);
        if (state == JackTransportStopped && position.frame == 0 && (position.valid & JackPositionBBT) &&
            position.beats_per_minute == tempo)
            return true;
        if (quit.load()) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

void Say(const char* what) {
    std::printf("%s\n", what);
    std::fflush(stdout);
}

}  // namespace

int Transport(const std::vector<std::string>& args) {
    Meter meter;
    double roll = 1;
    for (size_t i = 0; i + 1 < args.size(); i += 2) {
        if (args[i] == "--tempo") {
            meter.tempo = std::stod(args[i + 1]);
        } else if (args[i] == "--roll") {
            roll = std::stod(args[i + 1]);
        } else if (args[i] == "--beats-per-bar") {
            meter.beatsPerBar = std::stod(args[i + 1]);
        } else if (args[i] == "--beat-type") {
            meter.beatType = std::stod(args[i + 1]);
        } else {
            throw std::runtime_error("usage: transport --tempo BPM --roll SECONDS");
        }
    }
    std::signal(SIGTERM, OnSignal);
    std::signal(SIGINT, OnSignal);
    std::signal(SIGUSR1, OnSignal);
    std::signal(SIGUSR2, OnSignal);
    jack_status_t status;
    jack_client_t* client = jack_client_open("corvane_transport", JackNoStartServer, &status);
    if (!client) throw std::runtime_error("cannot reach the JACK server");
    if (jack_activate(client) != 0 || jack_set_timebase_callback(client, 0, Timebase, &meter) != 0)
        throw std::runtime_error("cannot become the timebase master");
    jack_transport_stop(client);
    jack_transport_locate(client, 0);
    const double tempo = meter.tempo.load();
    if (!AwaitStoppedAt0(client, tempo)) return 1;
    Say("ready");
    while (!quit.load() && !go.load()) {
        if (announce.exchange(false)) {
            // A client that tells its plug-in of the transport only when it changes, and missed the
            // first cycles, tells it again when the tempo changes. A relocation carries no BBT in its
            // first cycle, so the position stays at 0 and only the tempo moves, to one BPM more and back.
            meter.tempo.store(tempo + 1);
            jack_transport_locate(client, 0);
            if (!AwaitStoppedAt0(client, tempo + 1)) return 1;
            meter.tempo.store(tempo);
            jack_transport_locate(client, 0);
            if (!AwaitStoppedAt0(client, tempo)) return 1;
            Say("announced");
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    jack_transport_start(client);
    Say("rolling");
    const jack_nframes_t end = jack_nframes_t(roll * double(jack_get_sample_rate(client)));
    while (!quit.load() && jack_get_current_transport_frame(client) < end)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    jack_transport_stop(client);
    Say("stopped");
    while (!quit.load())
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    jack_release_timebase(client);
    jack_deactivate(client);
    jack_client_close(client);
    return 0;
}

}  // namespace BR::HostTool
