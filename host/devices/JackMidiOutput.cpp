// JACK devices: a client of our own with one MIDI output port connected to the target. The sender
// thread hands messages over through a ring; the client's process callback writes them at the start
// of the next cycle, in order, as fast as the sender delivers them (the sender keeps no timing).
#include "JackMidiOutput.h"

#include <jack/jack.h>
#include <jack/midiport.h>

#include <atomic>
#include <cstring>
#include <mutex>

namespace BR {

namespace {

void Quiet(const char*) {}

// JACK reports a server that is not running on its error stream; here that is the ordinary case of a
// machine without one. The library's reporters are process-wide: they are swapped under a lock of
// our own and put back at once.
class QuietJack {
public:
    QuietJack() : hold(Lock()), error(jack_error_callback), info(jack_info_callback) {
        jack_set_error_function(&Quiet);
        jack_set_info_function(&Quiet);
    }
    ~QuietJack() {
        jack_set_error_function(error);
        jack_set_info_function(info);
    }

private:
    static std::recursive_mutex& Lock() {
        static std::recursive_mutex lock;
        return lock;
    }
    std::lock_guard<std::recursive_mutex> hold;
    void (*error)(const char*);
    void (*info)(const char*);
};

jack_client_t* OpenClient(const char* name) {
    jack_status_t status;
    return jack_client_open(name, jack_options_t(JackNoStartServer), &status);
}

class JackMidiOutput : public MIDIOutputDevice {
public:
    static constexpr uint32_t kRing = 1024;  // messages; a power of two

    explicit JackMidiOutput(jack_client_t* client_) : client(client_) {}
    ~JackMidiOutput() override {
        QuietJack quiet;
        jack_deactivate(client);
        jack_client_close(client);
    }

    bool Start(const std::string& target) {
        port = jack_port_register(client, "out", JACK_DEFAULT_MIDI_TYPE, JackPortIsOutput, 0);
        if (!port || jack_set_process_callback(client, &Process, this) != 0 || jack_activate(client) != 0)
            return false;
        return jack_connect(client, jack_port_name(port), target.c_str()) == 0;
    }

    // Sender thread. A full ring (JACK stopped calling back) loses the message.
    void Send(const uint8_t* bytes, int32_t length) override {
        const uint32_t w = writeCount.load(std::memory_order_relaxed);
        if (length <= 0 || length > 3 || w - readCount.load(std::memory_order_acquire) == kRing) return;
        Message& m = ring[w % kRing];
        std::memcpy(m.bytes, bytes, size_t(length));
        m.length = uint8_t(length);
        writeCount.store(w + 1, std::memory_order_release);
    }

private:
    struct Message {
        uint8_t bytes[3];
        uint8_t length;
    };

    // JACK's real-time thread: no allocation, no lock.
    static int Process(jack_nframes_t frames, void* arg) {
        auto& self = *static_cast<JackMidiOutput*>(arg);
        void* buffer = jack_port_get_buffer(self.port, frames);
        jack_midi_clear_buffer(buffer);
        uint32_t r = self.readCount.load(std::memory_order_relaxed);
        const uint32_t w = self.writeCount.load(std::memory_order_acquire);
        for (; r != w; ++r) {
            const Message& m = self.ring[r % kRing];
            // A full port buffer keeps the rest for the next cycle.
            if (jack_midi_event_write(buffer, 0, m.bytes, m.length) != 0) break;
        }
        self.readCount.store(r, std::memory_order_release);
        return 0;
    }

    jack_client_t* client;
    jack_port_t* port = nullptr;
    Message ring[kRing] = {};
    std::atomic<uint32_t> writeCount{0}, readCount{0};
};

}  // namespace

std::vector<std::string> JackMidiSystem::ListOutputs() {
    QuietJack quiet;
    jack_client_t* client = OpenClient("corvane_midi_list");
    if (!client) return {};
    std::vector<std::string> names;
    if (const char** ports = jack_get_ports(client, nullptr, JACK_DEFAULT_MIDI_TYPE, JackPortIsInput)) {
        for (const char** p = ports; *p; ++p)
            names.emplace_back(*p);
        jack_free(ports);
    }
    jack_client_close(client);
    return names;
}

std::unique_ptr<MIDIOutputDevice> JackMidiSystem::Open(const std::string& name) {
    jack_client_t* client;
    {
        QuietJack quiet;
        client = OpenClient("corvane_midi_out");
    }
    if (!client) return nullptr;
    auto device = std::make_unique<JackMidiOutput>(client);
    QuietJack quiet;
    if (!device->Start(name)) {
        device.reset();
    }
    return device;
}

}  // namespace BR
