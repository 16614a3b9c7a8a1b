// ALSA sequencer devices: a client of our own with one port connected to the target port, through
// which each message goes out directly (no queue), as it arrives from the sender thread.
#include "AlsaMidiOutput.h"

#include <alsa/asoundlib.h>

#include <mutex>

namespace BR {

namespace {

// The library reports a missing sequencer on its error stream; here that is the ordinary case of a
// machine without one. Its reporter is process-wide: it is swapped under a lock of our own while the
// calls below run, and put back.
void Quiet(const char*, int, const char*, int, const char*, ...) {}

class QuietAlsa {
public:
    QuietAlsa() : hold(Lock()), previous(snd_lib_error) { snd_lib_error_set_handler(&Quiet); }
    ~QuietAlsa() { snd_lib_error_set_handler(previous); }

private:
    static std::recursive_mutex& Lock() {
        static std::recursive_mutex lock;
        return lock;
    }
    std::lock_guard<std::recursive_mutex> hold;
    snd_lib_error_handler_t previous;
};

struct Target {
    std::string name;
    int client, port;
};

// Ports that accept writes and subscriptions, of every client but the system's own and `self`.
std::vector<Target> WritablePorts(snd_seq_t* seq) {
    std::vector<Target> targets;
    const int self = snd_seq_client_id(seq);
    snd_seq_client_info_t* client;
    snd_seq_port_info_t* port;
    snd_seq_client_info_alloca(&client);
    snd_seq_port_info_alloca(&port);
    snd_seq_client_info_set_client(client, -1);
    while (snd_seq_query_next_client(seq, client) >= 0) {
        const int id = snd_seq_client_info_get_client(client);
        if (id == SND_SEQ_CLIENT_SYSTEM || id == self) continue;
        snd_seq_port_info_set_client(port, id);
        snd_seq_port_info_set_port(port, -1);
        while (snd_seq_query_next_port(seq, port) >= 0) {
            const unsigned caps = snd_seq_port_info_get_capability(port);
            const unsigned wanted = SND_SEQ_PORT_CAP_WRITE | SND_SEQ_PORT_CAP_SUBS_WRITE;
            if ((caps & wanted) != wanted || (caps & SND_SEQ_PORT_CAP_NO_EXPORT)) continue;
            targets.push_back(
                {std::string(snd_seq_client_info_get_name(client)) + ":" + snd_seq_port_info_get_name(port),
                 id, snd_seq_port_info_get_port(port)});
        }
    }
    return targets;
}

class AlsaMidiOutput : public MIDIOutputDevice {
public:
    AlsaMidiOutput(snd_seq_t* seq_, int port_, snd_midi_event_t* encoder_)
        : seq(seq_), port(port_), encoder(encoder_) {}
    ~AlsaMidiOutput() override {
        snd_midi_event_free(encoder);
        snd_seq_close(seq);
    }
    void Send(const uint8_t* bytes, int32_t length) override {
        snd_seq_event_t event;
        snd_seq_ev_clear(&event);
        snd_midi_event_reset_encode(encoder);
        if (snd_midi_event_encode(encoder, bytes, length, &event) != length ||
            event.type == SND_SEQ_EVENT_NONE)
            return;
        snd_seq_ev_set_source(&event, port);
        snd_seq_ev_set_subs(&event);
        snd_seq_ev_set_direct(&event);
        snd_seq_event_output_direct(seq, &event);
    }

private:
    snd_seq_t* seq;
    int port;
    snd_midi_event_t* encoder;
};

}  // namespace

std::vector<std::string> AlsaMidiSystem::ListOutputs() {
    QuietAlsa quiet;
    snd_seq_t* seq = nullptr;
    if (snd_seq_open(&seq, "default", SND_SEQ_OPEN_OUTPUT, 0) < 0) return {};
    std::vector<std::string> names;
    for (const Target& target : WritablePorts(seq))
        names.push_back(target.name);
    snd_seq_close(seq);
    return names;
}

std::unique_ptr<MIDIOutputDevice> AlsaMidiSystem::Open(const std::string& name) {
    QuietAlsa quiet;
    snd_seq_t* seq = nullptr;
    if (snd_seq_open(&seq, "default", SND_SEQ_OPEN_OUTPUT, 0) < 0) return nullptr;
    snd_seq_set_client_name(seq, "Corvane MIDI Out");
    for (const Target& target : WritablePorts(seq)) {
        if (target.name != name) continue;
        const int port =
            snd_seq_create_simple_port(seq, "out", SND_SEQ_PORT_CAP_READ | SND_SEQ_PORT_CAP_SUBS_READ,
                                       SND_SEQ_PORT_TYPE_MIDI_GENERIC | SND_SEQ_PORT_TYPE_APPLICATION);
        snd_midi_event_t* encoder = nullptr;
        if (port < 0 || snd_seq_connect_to(seq, port, target.client, target.port) < 0 ||
            snd_midi_event_new(16, &encoder) < 0)
            break;
        return std::make_unique<AlsaMidiOutput>(seq, port, encoder);
    }
    snd_seq_close(seq);
    return nullptr;
}

}  // namespace BR
