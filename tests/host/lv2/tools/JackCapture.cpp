// capture: a JACK client that records its input ports as 32-bit floats, exactly as they arrive.
//   capture --out FILE --frames N [--roll] [--name NAME] [--timeout SECONDS] PORT...
// Recording starts at the first cycle after every port is connected, or with --roll at the first
// cycle in which the transport rolls; the JACK frame (or transport frame) of its first sample is printed.
#include <jack/jack.h>
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

struct Recorder {
    jack_client_t* client = nullptr;
    std::vector<jack_port_t*> ports;
    std::vector<std::vector<float>> data;
    size_t frames = 0;
    size_t written = 0;
    bool roll = false;
    std::atomic<bool> armed{false};
    std::atomic<uint64_t> cycles{0};
    std::atomic<bool> done{false};
    std::atomic<int64_t> startFrame{-1};
};

int Process(jack_nframes_t n, void* arg) {
    Recorder& r = *static_cast<Recorder*>(arg);
    r.cycles.fetch_add(1);
    if (!r.armed.load() || r.done.load()) return 0;
    if (r.written == 0) {
        if (r.roll) {
            jack_position_t position;
            if (jack_transport_query(r.client, &position) != JackTransportRolling) return 0;
            r.startFrame.store(int64_t(position.frame));
        } else {
            r.startFrame.store(int64_t(jack_last_frame_time(r.client)));
        }
    }
    const size_t take = std::min<size_t>(n, r.frames - r.written);
    for (size_t c = 0; c < r.ports.size(); ++c) {
        const auto* in = static_cast<const float*>(jack_port_get_buffer(r.ports[c], n));
        std::memcpy(r.data[c].data() + r.written, in, take * sizeof(float));
    }
    r.written += take;
    if (r.written == r.frames) r.done.store(true);
    return 0;
}

}  // namespace

int Capture(const std::vector<std::string>& args) {
    std::string out, name = "corvane_capture";
    size_t frames = 0;
    double timeout = 30;
    bool roll = false;
    std::vector<std::string> sources;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        auto next = [&]() -> const std::string& {
            if (i + 1 >= args.size()) throw std::runtime_error(a + " needs a value");
            return args[++i];
        };
        if (a == "--out") {
            out = next();
        } else if (a == "--frames") {
            frames = std::stoul(next());
        } else if (a == "--name") {
            name = next();
        } else if (a == "--timeout") {
            timeout = std::stod(next());
        } else if (a == "--roll") {
            roll = true;
        } else {
            sources.push_back(a);
        }
    }
    if (out.empty() || frames == 0 || sources.empty())
        throw std::runtime_error("usage: capture --out FILE --frames N [--roll] [--name NAME] PORT...");

    Recorder r;
    r.frames = frames;
    r.roll = roll;
    r.data.assign(sources.size(), std::vector<float>(frames, 0.0f));
    jack_status_t status;
    r.client = jack_client_open(name.c_str(), JackNoStartServer, &status);
    if (!r.client) throw std::runtime_error("cannot reach the JACK server");
    for (size_t c = 0; c < sources.size(); ++c)
        r.ports.push_back(jack_port_register(r.client, ("in_" + std::to_string(c + 1)).c_str(),
                                             JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput, 0));
    jack_set_process_callback(r.client, Process, &r);
    if (jack_activate(r.client) != 0) throw std::runtime_error("cannot activate the JACK client");

    const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(timeout);
    int status_ = 0;
    for (size_t c = 0; c < sources.size() && status_ == 0; ++c) {
        // The source's client may still be starting: wait for its port.
        while (jack_connect(r.client, sources[c].c_str(), jack_port_name(r.ports[c])) != 0) {
            if (std::chrono::steady_clock::now() > deadline) {
                std::fprintf(stderr, "capture: port %s did not appear\n", sources[c].c_str());
                status_ = 1;
                break;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
    }
    if (status_ == 0) {
        // A connection takes effect at the start of a later cycle: let two pass before recording.
        const uint64_t connectedAt = r.cycles.load();
        while (r.cycles.load() < connectedAt + 2 && std::chrono::steady_clock::now() < deadline)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        r.armed.store(true);
        while (!r.done.load() && std::chrono::steady_clock::now() < deadline)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        if (!r.done.load()) {
            std::fprintf(stderr, "capture: only %zu of %zu frames arrived in time\n", r.written, frames);
            status_ = 1;
        }
    }
    const int sampleRate = int(jack_get_sample_rate(r.client));
    jack_deactivate(r.client);
    jack_client_close(r.client);
    if (status_ != 0) return status_;

    Audio audio;
    audio.sampleRate = sampleRate;
    audio.channels = std::move(r.data);
    WriteAudio(out, audio);
    std::printf("captured %zu frames x %zu channels from %s frame %lld\n", frames, sources.size(),
                roll ? "transport" : "JACK", static_cast<long long>(r.startFrame.load()));
    return 0;
}

}  // namespace BR::HostTool
