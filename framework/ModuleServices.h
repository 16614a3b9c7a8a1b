// Hooks through which services built above the framework (OSC server, Lua scripts, the Learner)
// attach to every module without the framework depending on them.
#pragma once

#include <cstdint>
#include <memory>

class BrelCorvaneBase;

namespace BR {

struct MessageQueueItem;

// One instance's OSC helper and script host, created by whichever layer provides them.
class ModuleServices {
public:
    virtual ~ModuleServices() = default;
    virtual void Start() = 0;
    virtual void Stop() = 0;
    // Port 0 closes the server; the helper wakes its threads to act on the change.
    virtual void SetOSCPort(int32_t port) = 0;
    // Echo of a changed table parameter to subscribed clients.
    virtual void ParameterChanged(int32_t tableIndex, float value) = 0;
    // Script callbacks of a dispatched MIDI item, after the module's own handler.
    virtual void HandleMIDI(const MessageQueueItem& item) = 0;
    // What property 64006 hands out.
    virtual void* OSCHelperPointer() = 0;
};

using ModuleServicesFactory = std::unique_ptr<ModuleServices> (*)(BrelCorvaneBase& module);
void SetModuleServicesFactory(ModuleServicesFactory factory);
ModuleServicesFactory GetModuleServicesFactory();

// The Learner's process-wide MIDI table sees every kind 1 item last.
using GlobalMIDIHook = void (*)(BrelCorvaneBase& module, const MessageQueueItem& item);
void SetGlobalMIDIHook(GlobalMIDIHook hook);
GlobalMIDIHook GetGlobalMIDIHook();

// Process-wide OSC base port, read from the preferences by every InitModule.
void SetOSCBasePort(int32_t port);
int32_t GetOSCBasePort();
// A base port that stands in for the preference for the rest of the run (0: none), such as the
// command line's --osc-base-port.
void SetOSCBasePortOverride(int32_t port);
int32_t GetOSCBasePortOverride();

}  // namespace BR
