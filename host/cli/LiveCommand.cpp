// `corvane live`: a patch as a JACK client (or against a real-time clock with no audio device),
// running until SIGINT or SIGTERM or --seconds, then disconnecting and saving its state files.
#include <jack/jack.h>
#include <jack/midiport.h>
#include <signal.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <functional>
#include <memory>
#include <thread>

#include "CommandLine.h"
#include "LiveHost.h"
#include "StateFile.h"

namespace BR {

namespace {

struct LiveOptions {
    std::string patchPath;
    std::string driver = "jack";
    double seconds = 0;  // 0: until a signal
    std::string clientName = "corvane";
    RemoteSettings remote;
};

// What the JACK thread touches: the host, its ports, and a flag the server's shutdown raises.
struct JackSide {
    LiveHost* host = nullptr;
    std::vector<std::vector<jack_port_t*>> outPorts, inPorts;
    jack_port_t* midiPort = nullptr;
    std::atomic<bool> serverGone{false};
};

int Process(jack_nframes_t frames, void* arg) {
    JackSide& side = *static_cast<JackSide*>(arg);
    LiveHost& host = *side.host;
    for (size_t i = 0; i < side.outPorts.size(); ++i) {
        for (size_t c = 0; c < side.outPorts[i].size(); ++c)
            host.Output(i, c) = static_cast<float*>(jack_port_get_buffer(side.outPorts[i][c], frames));
        for (size_t c = 0; c < side.inPorts[i].size(); ++c)
            host.Input(i, c) = static_cast<const float*>(jack_port_get_buffer(side.inPorts[i][c], frames));
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

LiveOptions ParseLiveOptions(int argc, char** argv) {
    if (argc < 3 || argv[2][0] == '-') throw UsageError("live needs exactly one patch file");
    LiveOptions options;
    options.patchPath = argv[2];
    ArgumentCursor cursor(argc, argv, 3);
    std::string option;
    while (cursor.Next(option)) {
        if (option == "--seconds") {
            options.seconds = ParseNumber(cursor.Value(option), "--seconds");
            if (!(options.seconds > 0 && options.seconds <= 86400 * 365))
                throw UsageError("--seconds: must lie above 0 and up to a year");
        } else if (option == "--driver") {
            options.driver = cursor.Value(option);
            if (options.driver != "jack" && options.driver != "clock")
                throw UsageError("--driver: \"" + options.driver + "\" is neither \"jack\" nor \"clock\"");
        } else if (option == "--name") {
            options.clientName = cursor.Value(option);
            if (options.clientName.empty()) throw UsageError("--name: must not be empty");
        } else if (option == "--realtime") {
            throw UsageError("live: --realtime is what live always does");
        } else if (!ParseRemoteOption(option, cursor, options.remote)) {
            throw UsageError("live: unknown option \"" + option + "\"");
        }
    }
    return options;
}

// Waits for SIGINT or SIGTERM (blocked in every thread since before any was started), the end of
// --seconds, or `stop` turning true. A second signal while the patch winds down changes nothing:
// it stays blocked and pending.
const char* Wait(const sigset_t& signals, double seconds, const std::function<bool()>& stop) {
    const auto start = std::chrono::steady_clock::now();
    for (;;) {
        timespec tick{0, 20 * 1000 * 1000};
        const int got = sigtimedwait(&signals, nullptr, &tick);
        if (got == SIGINT) return "SIGINT";
        if (got == SIGTERM) return "SIGTERM";
        if (stop()) return nullptr;
        if (seconds > 0 &&
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() >= seconds)
            return "--seconds";
    }
}

// Where each instance's state is saved at the end: the patch's "state", read at start when it exists.
std::vector<std::string> savePaths;

void SaveStates(const Patch& patch, LiveHost& host) {
    for (size_t i = 0; i < patch.instances.size(); ++i) {
        const std::string& path = savePaths[i];
        if (path.empty()) continue;
        WriteStateFile(path, host.Engine().Driver(i));
        std::fprintf(stderr, "corvane: saved the state of \"%s\" to %s\n", patch.instances[i].name.c_str(),
                     path.c_str());
    }
}

// Our own buffers, paced by the clock: OSC, Lua and MIDI output run as with a device.
int RunOnClock(Patch& patch, LiveHost& host, const LiveOptions& options, const sigset_t& signals) {
    const uint32_t period = host.Engine().MaxBlock();
    std::vector<std::vector<float>> buffers;
    for (size_t i = 0; i < host.Engine().Count(); ++i)
        for (int32_t c = 0; c < host.Engine().Driver(i).NumHostOutputs(); ++c) {
            buffers.emplace_back(period, 0.0f);
            host.Output(i, size_t(c)) = buffers.back().data();
        }
    std::atomic<bool> quit{false};
    std::thread audio([&] {
        const RealTimePacer pacer(true, patch.sampleRate);
        while (!quit.load()) {
            host.Cycle(period, 0);
            pacer.Wait(host.FramesDone());
        }
    });
    const char* why = Wait(signals, options.seconds, [] { return false; });
    quit.store(true);
    audio.join();
    std::fprintf(stderr, "corvane: %s: stopped after %lld frames\n", why, (long long)host.FramesDone());
    SaveStates(patch, host);
    return 0;
}

int RunOnJack(Patch& patch, const LiveOptions& options, const sigset_t& signals) {
    // The library's own chatter would bury the one line that says what is wrong.
    jack_set_error_function([](const char*) {});
    jack_set_info_function([](const char*) {});
    jack_status_t status{};
    jack_client_t* client = jack_client_open(options.clientName.c_str(), JackNoStartServer, &status);
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
    LiveHost host(patch);
    JackSide side;
    side.host = &host;
    bool anyMidi = false;
    for (size_t i = 0; i < patch.instances.size(); ++i) {
        const PatchInstance& instance = patch.instances[i];
        HostDriver& driver = host.Engine().Driver(i);
        side.outPorts.emplace_back();
        side.inPorts.emplace_back();
        for (int32_t c = 0; c < driver.NumHostOutputs(); ++c) {
            const std::string name = instance.name + "_out_" + std::to_string(c);
            jack_port_t* port =
                jack_port_register(client, name.c_str(), JACK_DEFAULT_AUDIO_TYPE, JackPortIsOutput, 0);
            if (!port)
                throw InputError(patch.path + ": " + instance.place + ": JACK refused the port \"" + name +
                                 "\"");
            side.outPorts.back().push_back(port);
        }
        for (int32_t c = 0; c < driver.NumHostInputs(); ++c) {
            const std::string name = instance.name + "_in_" + std::to_string(c);
            jack_port_t* port =
                jack_port_register(client, name.c_str(), JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput, 0);
            if (!port)
                throw InputError(patch.path + ": " + instance.place + ": JACK refused the port \"" + name +
                                 "\"");
            side.inPorts.back().push_back(port);
        }
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
    std::fprintf(stderr, "corvane: live as JACK client \"%s\" at %g Hz, period %u frames\n",
                 jack_get_client_name(client), rate, unsigned(jack_get_buffer_size(client)));
    const char* why = Wait(signals, options.seconds, [&] { return side.serverGone.load(); });
    if (!why) {
        std::fprintf(stderr, "corvane: the JACK server went away after %lld frames\n",
                     (long long)host.FramesDone());
        SaveStates(patch, host);
        return 1;
    }
    jack_deactivate(client);
    std::fprintf(stderr, "corvane: %s: stopped after %lld frames\n", why, (long long)host.FramesDone());
    SaveStates(patch, host);
    return 0;
}

}  // namespace

int RunLive(int argc, char** argv) {
    const LiveOptions options = ParseLiveOptions(argc, argv);
    Patch patch = ParsePatch(options.patchPath);
    // A state file that is not there yet is where the first run saves: it starts from the defaults.
    savePaths.clear();
    for (PatchInstance& instance : patch.instances) {
        savePaths.push_back(instance.statePath);
        std::error_code ec;
        if (!instance.statePath.empty() && !std::filesystem::exists(instance.statePath, ec))
            instance.statePath.clear();
    }
    ApplyRemoteSettings(options.remote);
    // Blocked before any thread starts (JACK's, the OSC servers'), so that only Wait() takes them.
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    if (options.driver == "clock") {
        LiveHost host(patch);
        return RunOnClock(patch, host, options, signals);
    }
    return RunOnJack(patch, options, signals);
}

}  // namespace BR
