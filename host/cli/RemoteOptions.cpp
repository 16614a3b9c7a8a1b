// Real-time pacing, the run's OSC base port, per-instance scripts and the report of open ports.
#include "RemoteOptions.h"

#include <cstdio>
#include <fstream>
#include <map>
#include <mutex>
#include <thread>

#include "CommandLine.h"
#include "remote/OSCHelper.h"
#include "remote/RemoteServices.h"

namespace BR {

namespace {

std::mutex namesLock;
std::map<BrelCorvaneBase*, std::string>& Names() {
    static std::map<BrelCorvaneBase*, std::string> names;
    return names;
}

// Runs on the instance's receive thread each time its socket starts listening.
void ReportListening(BrelCorvaneBase* owner, int32_t port) {
    std::string name = "?";
    {
        std::lock_guard<std::mutex> guard(namesLock);
        auto it = Names().find(owner);
        if (it != Names().end()) name = it->second;
    }
    std::fprintf(stderr, "corvane: %s listens for OSC on port %d\n", name.c_str(), int(port));
}

}  // namespace

bool ParseRemoteOption(const std::string& option, ArgumentCursor& cursor, RemoteSettings& settings) {
    if (option == "--realtime") {
        settings.realtime = true;
    } else if (option == "--osc-base-port") {
        settings.oscBasePort = int32_t(ParseInteger(cursor.Value(option), "--osc-base-port", 1, 65435));
    } else {
        return false;
    }
    return true;
}

void ApplyRemoteSettings(const RemoteSettings& settings) {
    SetOSCBasePortOverride(settings.oscBasePort);
    OSCHelper::SetListeningReporter(&ReportListening);
}

void CheckScripts(const std::vector<std::string>& scripts, const std::string& place) {
    for (const std::string& script : scripts) {
        if (std::ifstream(script).good()) continue;
        if (place.empty()) throw UsageError("--script: cannot read \"" + script + "\"");
        throw InputError(place + ": cannot read \"" + script + "\"");
    }
}

std::unique_ptr<BrelCorvaneBase> CreateScriptedModule(
    const std::function<std::unique_ptr<BrelCorvaneBase>()>& make, const std::vector<std::string>& scripts,
    const std::string& name) {
    SetScriptsForNextModules(scripts);
    std::unique_ptr<BrelCorvaneBase> module;
    try {
        module = make();
    } catch (...) {
        SetScriptsForNextModules({});
        throw;
    }
    SetScriptsForNextModules({});
    if (module) {
        std::lock_guard<std::mutex> guard(namesLock);
        Names()[module.get()] = name;
    }
    return module;
}

void RealTimePacer::Wait(int64_t framesDone) const {
    if (!on) return;
    const auto due = start + std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                                 std::chrono::duration<double>(double(framesDone) / sampleRate));
    std::this_thread::sleep_until(due);
}

}  // namespace BR
