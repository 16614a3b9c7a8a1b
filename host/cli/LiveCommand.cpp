// `corvane live`: the options, the clock driver (a real-time clock and buffers of our own, no audio
// device), the wait for a signal and the state files saved at the end; the JACK driver is LiveJack.
#include <signal.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <thread>

#include "CommandLine.h"
#include "EditorWindow.h"
#include "LiveRun.h"
#include "StateFile.h"

namespace BR {

namespace {

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
        } else if (option == "--edit") {
            options.editInstance = cursor.Value(option);
            if (options.editInstance.empty()) throw UsageError("--edit: must name an instance");
        } else if (option == "--realtime") {
            throw UsageError("live: --realtime is what live always does");
        } else if (!ParseRemoteOption(option, cursor, options.remote)) {
            throw UsageError("live: unknown option \"" + option + "\"");
        }
    }
    return options;
}

// Our own buffers, paced by the clock: OSC, Lua and MIDI output run as with a device.
int RunOnClock(Patch& patch, LiveRun& run) {
    LiveHost host(patch);
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
    std::fprintf(stderr, "corvane: live on the clock at %g Hz, period %u frames\n", patch.sampleRate,
                 unsigned(period));
    run.OpenEditor(patch, host);
    const char* why = run.Wait([] { return false; });
    run.CloseEditor();
    quit.store(true);
    audio.join();
    std::fprintf(stderr, "corvane: %s: stopped after %lld frames\n", why, (long long)host.FramesDone());
    run.SaveStates(patch, host);
    return 0;
}

}  // namespace

const char* LiveRun::Wait(const std::function<bool()>& stop) {
    const auto start = std::chrono::steady_clock::now();
    for (;;) {
        // With a window open, its events are served for the tick and the signals only polled.
        const bool editing = editor && editor->Pump(20);
        timespec tick{0, editing ? 0 : 20 * 1000 * 1000};
        const int got = sigtimedwait(&signals, nullptr, &tick);
        if (got == SIGINT) return "SIGINT";
        if (got == SIGTERM) return "SIGTERM";
        if (stop()) return nullptr;
        if (options.seconds > 0 &&
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() >=
                options.seconds)
            return "--seconds";
    }
}

void LiveRun::OpenEditor(const Patch& patch, LiveHost& host) {
    if (options.editInstance.empty()) return;
    for (size_t i = 0; i < patch.instances.size(); ++i) {
        if (patch.instances[i].name != options.editInstance) continue;
        editor = std::make_shared<EditorWindow>();
        BrelCorvaneBase& module = host.Engine().Driver(i).Module();
        if (editor->Open(module,
                         "corvane " + patch.instances[i].name + " (" + module.GetModuleName() + ")")) {
            std::fprintf(stderr, "corvane: the editor of \"%s\" is open\n", options.editInstance.c_str());
        } else {
            std::fprintf(stderr, "corvane: the editor cannot open: %s\n", editor->LastError().c_str());
            editor.reset();
        }
        return;
    }
}

void LiveRun::CloseEditor() {
    editor.reset();
}

void LiveRun::SaveStates(const Patch& patch, LiveHost& host) const {
    for (size_t i = 0; i < patch.instances.size(); ++i) {
        const std::string& path = savePaths[i];
        if (path.empty()) continue;
        WriteStateFile(path, host.Engine().Driver(i));
        std::fprintf(stderr, "corvane: saved the state of \"%s\" to %s\n", patch.instances[i].name.c_str(),
                     path.c_str());
    }
}

int RunLive(int argc, char** argv) {
    LiveRun run;
    run.options = ParseLiveOptions(argc, argv);
    Patch patch = ParsePatch(run.options.patchPath);
    if (!run.options.editInstance.empty()) {
        bool known = false;
        for (const PatchInstance& instance : patch.instances)
            known = known || instance.name == run.options.editInstance;
        if (!known)
            throw UsageError("--edit: the patch has no instance \"" + run.options.editInstance + "\"");
    }
    // A state file that is not there yet is where the first run saves: it starts from the defaults.
    for (PatchInstance& instance : patch.instances) {
        run.savePaths.push_back(instance.statePath);
        std::error_code ec;
        if (!instance.statePath.empty() && !std::filesystem::exists(instance.statePath, ec))
            instance.statePath.clear();
    }
    ApplyRemoteSettings(run.options.remote);
    // Blocked before any thread starts (JACK's, the OSC servers'), so that only Wait() takes them.
    sigemptyset(&run.signals);
    sigaddset(&run.signals, SIGINT);
    sigaddset(&run.signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &run.signals, nullptr);
    if (run.options.driver == "clock") return RunOnClock(patch, run);
    return RunOnJack(patch, run);
}

}  // namespace BR
