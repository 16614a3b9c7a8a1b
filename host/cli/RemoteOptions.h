// The command's side of remote control and scripting: real-time pacing so that servers, timers
// and sender threads act while a render runs, the base port of one run, extra scripts per
// instance, and the report of every port that starts listening.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "framework/BrelCorvaneBase.h"

namespace BR {

class ArgumentCursor;

struct RemoteSettings {
    bool realtime = false;    // blocks paced at real time
    int32_t oscBasePort = 0;  // 0: the preference "OSC Base Port"
};

// Takes "--realtime" and "--osc-base-port N"; false when `option` is neither.
bool ParseRemoteOption(const std::string& option, ArgumentCursor& cursor, RemoteSettings& settings);
// Applies the base port for the rest of the run.
void ApplyRemoteSettings(const RemoteSettings& settings);
// Throws UsageError (InputError with a `place`) when a script cannot be read.
void CheckScripts(const std::vector<std::string>& scripts, const std::string& place);
// Makes a module whose Lua helper runs `scripts` after the per-user folder's, and whose opened
// ports are reported on standard error under `name`.
std::unique_ptr<BrelCorvaneBase> CreateScriptedModule(
    const std::function<std::unique_ptr<BrelCorvaneBase>()>& make, const std::vector<std::string>& scripts,
    const std::string& name);
// Sleeps until the frames rendered so far are due, when pacing is on.
class RealTimePacer {
public:
    RealTimePacer(bool on, double sampleRate) : on(on), sampleRate(sampleRate) {}
    void Wait(int64_t framesDone) const;

private:
    bool on;
    double sampleRate;
    std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
};

}  // namespace BR
