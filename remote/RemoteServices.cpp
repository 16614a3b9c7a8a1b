// One instance's OSC server and Lua helper behind the framework's service hooks.
#include "RemoteServices.h"

#include "LuaMIDIHelper.h"
#include "OSCHelper.h"
#include "framework/BrelCorvaneBase.h"

namespace BR {

namespace {

thread_local std::vector<std::string> scriptsForNextModules;

class RemoteServices : public ModuleServices {
public:
    // Runs inside the module's base constructor: nothing of the module is asked here.
    explicit RemoteServices(BrelCorvaneBase& module)
        : lua(&module, &module.MidiToAudioQueue()), osc(&module, &lua) {
        lua.SetOSCHelper(&osc);
        lua.SetExtraScripts(scriptsForNextModules);
    }
    ~RemoteServices() override {
        osc.StopTasks();
        lua.StopTimers();
    }

    void Start() override {
        osc.Init();
        osc.StartTasks();
    }
    // Ends the server's threads and the script timers, so that nothing acts on a module that is
    // being taken down.
    void Stop() override {
        osc.StopTasks();
        lua.StopTimers();
    }
    void SetOSCPort(int32_t port) override { osc.SetRequestedPort(port); }
    void ParameterChanged(int32_t tableIndex, float value) override {
        osc.ParameterChanged(tableIndex, value);
    }
    void HandleMIDI(const MessageQueueItem& item) override { lua.HandleEvent(item); }
    void* OSCHelperPointer() override { return &osc; }
    LuaMIDIHelper& Lua() { return lua; }

private:
    CorvLuaMIDIHelper lua;
    OSCHelper osc;
};

}  // namespace

std::unique_ptr<ModuleServices> CreateRemoteServices(BrelCorvaneBase& module) {
    return std::make_unique<RemoteServices>(module);
}

void InstallRemoteServices() {
    SetModuleServicesFactory(&CreateRemoteServices);
    InstallOSCTransmitter();
}

void SetScriptsForNextModules(std::vector<std::string> paths) {
    scriptsForNextModules = std::move(paths);
}

OSCHelper* OSCHelperOf(BrelCorvaneBase& module) {
    void* pointer = nullptr;
    module.GetProperty(kPropertyOSCHelper, &pointer);
    return static_cast<OSCHelper*>(pointer);
}

LuaMIDIHelper* LuaHelperOf(BrelCorvaneBase& module) {
    OSCHelper* osc = OSCHelperOf(module);
    return osc ? osc->LuaHelper() : nullptr;
}

}  // namespace BR
