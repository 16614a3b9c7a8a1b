// The soak: one patch holding an instance of every module this build makes (and more, to at least
// 22), fed by each other under one shared transport, each with its OSC server and a Lua script, run
// for a number of frames with random MIDI, random parameter changes through the parameter objects and
// through OSC packets from another thread, and random transport jumps. It fails when an output is
// NaN or infinite, when a queue reports an overflow (the load it makes stays within every ring), when
// resident memory grows after the warm-up, or when a state saved at the end does not restore to the
// same parameters. Prints its figures on standard output.
//
// Usage: corvane_soak [--frames N] [--seed S] [--instances K] [--block B]
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "SoakParts.h"
#include "framework/ModuleServices.h"
#include "host/cli/StateFile.h"
#include "modules/ModuleFactory.h"
#include "remote/OSCHelper.h"
#include "remote/RemoteServices.h"

namespace BR::Soak {

namespace {

struct Options {
    uint64_t frames = 100000000;
    uint64_t seed = 1;
    size_t instances = 22;
    uint32_t block = 256;
};

Options ParseOptions(int argc, char** argv) {
    Options options;
    for (int i = 1; i + 1 < argc; i += 2) {
        const std::string key = argv[i];
        const double value = std::strtod(argv[i + 1], nullptr);
        if (key == "--frames") {
            options.frames = uint64_t(value);
        } else if (key == "--seed") {
            options.seed = uint64_t(value);
        } else if (key == "--instances") {
            options.instances = size_t(value);
        } else if (key == "--block") {
            options.block = uint32_t(std::clamp(value, 1.0, 1024.0));
        } else {
            std::fprintf(stderr, "corvane_soak: unknown option %s\n", argv[i]);
            std::exit(2);
        }
    }
    return options;
}

// The script every instance runs: MIDI sets a parameter, a timer reads one.
const char kScript[] = R"(
notes = 0
requestAllNoteOn(function(channel, note, velocity)
  notes = notes + 1
  setGUIBoolValue(note % 8, velocity > 64)
end)
requestAllCC(function(channel, controller, value) getParameter(1) end)
ticks = 0
requestPeriodicCallback(0.01, function() ticks = ticks + getParameter(1) * 0 + 1 end)
)";

double Seconds(std::chrono::steady_clock::time_point since) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
}

// Every parameter of a fresh instance restored from `path` equals the soaked one's.
bool StateRestoresSameParameters(Instance& soaked, const std::string& path, std::string& failure) {
    WriteStateFile(path, *soaked.driver);
    std::unique_ptr<HostDriver> fresh = MakeInstance(soaked.driver->Entry().stem);
    RestoreStateFile(path, *fresh);
    BrelCorvaneBase& a = soaked.driver->Module();
    BrelCorvaneBase& b = fresh->Module();
    for (int32_t p = 0; p < a.GetNumberOfParameters(); ++p) {
        const float va = a.GetParameter(p)->GetValueAsFloat(), vb = b.GetParameter(p)->GetValueAsFloat();
        if (va != vb) {
            failure = std::string(soaked.driver->Entry().stem) + " \"" + a.GetParameter(p)->Name() +
                      "\": " + std::to_string(va) + " saved, " + std::to_string(vb) + " restored";
            return false;
        }
    }
    return true;
}

int Run(const Options& options) {
    const std::string folder = MakeScratchFolder();
    DiagnosticCapture diagnostics(folder + "/diagnostics.txt");  // stdout and stderr of the modules
    const std::string script = folder + "/soak.lua";
    std::ofstream(script) << kScript;
    setenv("XDG_DATA_HOME", (folder + "/data").c_str(), 1);
    setenv("XDG_CONFIG_HOME", (folder + "/config").c_str(), 1);
    SetOSCBasePortOverride(kBasePort);
    InstallRemoteServices();
    SetScriptsForNextModules({script});
    Patch patch = BuildPatch(options.instances, options.block);
    SetScriptsForNextModules({});
    OscTraffic traffic(patch, options.seed);

    Random random(options.seed);
    Figures figures;
    const auto start = std::chrono::steady_clock::now();
    const uint64_t warmUpFrames = options.frames / 10;
    long warmResident = 0;
    for (uint64_t frame = 0; frame < options.frames; frame += options.block) {
        const uint32_t frames = uint32_t(std::min<uint64_t>(options.block, options.frames - frame));
        if (random.OneIn(400)) JumpTransport(patch.transport, random, figures);
        ChangeParameters(patch, random, figures);
        if (!RenderBlock(patch, frames, random, figures)) {
            diagnostics.Restore();
            std::printf("soak: FAILED: %s\n", figures.failure.c_str());
            return 1;
        }
        patch.transport.Advance(frames);
        if (frame < warmUpFrames && frame + options.block >= warmUpFrames) warmResident = ResidentBytes();
    }
    const double seconds = Seconds(start);
    traffic.Stop();
    const long endResident = ResidentBytes();

    std::string failure;
    for (size_t i = 0; i < patch.instances.size() && failure.empty(); ++i)
        StateRestoresSameParameters(patch.instances[i], folder + "/" + std::to_string(i) + ".state", failure);
    for (Instance& instance : patch.instances)
        figures.oscReceived += OSCHelperOf(instance.driver->Module())->NumMessages();
    patch.instances.clear();
    diagnostics.Restore();
    // CV To OSC's ring is emptied by a thread that sends at the wall clock's pace, and this loop renders
    // many times faster than real time: its overflows have that cause and are counted apart. Every other
    // ring is emptied by the render itself, so any overflow of theirs is a fault.
    const size_t paced = diagnostics.CountLines("OSCSender::SetParamQueue::Write() overflow");
    const size_t overflows = diagnostics.CountLines("overflow") - paced;
    std::filesystem::remove_all(folder);

    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("soak: %zu instances of %zu modules, seed %llu, block %u\n", options.instances, patch.modules,
                static_cast<unsigned long long>(options.seed), options.block);
    std::printf("soak: frames %llu (%.1f s of audio at 48 kHz), %.1f s, %.1fx real time\n",
                static_cast<unsigned long long>(options.frames), double(options.frames) / 48000.0, seconds,
                double(options.frames) / 48000.0 / seconds);
    std::printf(
        "soak: MIDI events %llu, parameter changes %llu direct and %llu OSC packets sent (%llu "
        "messages taken), transport jumps %llu\n",
        static_cast<unsigned long long>(figures.midiEvents),
        static_cast<unsigned long long>(figures.parameterChanges),
        static_cast<unsigned long long>(traffic.Sent()), static_cast<unsigned long long>(figures.oscReceived),
        static_cast<unsigned long long>(figures.transportJumps));
    std::printf("soak: peak memory %.1f MiB; resident %.1f MiB after the warm-up, %.1f MiB at the end\n",
                double(usage.ru_maxrss) / 1024.0, double(warmResident) / 1048576.0,
                double(endResident) / 1048576.0);
    std::string silent;
    for (size_t i = 0; i < figures.heard.size(); ++i)
        if (!figures.heard[i]) silent += " " + std::to_string(i);
    std::printf("soak: instances whose outputs never left zero:%s\n",
                silent.empty() ? " none" : silent.c_str());
    std::printf(
        "soak: queue overflows %zu (and %zu of CV To OSC's wall-clock sender), state round trips %s\n",
        overflows, paced, failure.empty() ? "all equal" : failure.c_str());
    bool ok = failure.empty() && overflows == 0;
    // Resident memory may move by what the allocator keeps; a leak grows with the frames. Under the
    // thread sanitizer its own shadow memory and histories grow with the run, so memory is not judged.
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
    // AddressSanitizer's quarantine keeps freed memory resident too; its leak checker judges leaks.
    constexpr bool judgeMemory = false;
    std::printf("soak: memory not judged under a sanitizer\n");
#else
    constexpr bool judgeMemory = true;
#endif
    if (judgeMemory && endResident > warmResident + kMemoryTolerance) {
        std::printf("soak: FAILED: memory grew by %.1f MiB after the warm-up\n",
                    double(endResident - warmResident) / 1048576.0);
        ok = false;
    }
    if (overflows) std::printf("soak: FAILED: a queue overflowed under a load within its size\n");
    if (traffic.Sent() > 0 && figures.oscReceived == 0) {
        std::printf("soak: FAILED: no OSC packet reached an instance\n");
        ok = false;
    }
    std::printf("soak: %s\n", ok ? "passed" : "FAILED");
    return ok ? 0 : 1;
}

}  // namespace

}  // namespace BR::Soak

int main(int argc, char** argv) {
    return BR::Soak::Run(BR::Soak::ParseOptions(argc, argv));
}
