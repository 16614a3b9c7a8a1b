// Process-wide hook slots, the OSC base port and the active parameter.
#include "ModuleServices.h"

#include <atomic>
#include <mutex>

#include "ActiveParameter.h"
#include "InstanceRegistry.h"

namespace BR {

namespace {
std::atomic<ModuleServicesFactory> servicesFactory{nullptr};
std::atomic<GlobalMIDIHook> globalMIDIHook{nullptr};
std::atomic<int32_t> oscBasePort{7000};
std::atomic<int32_t> oscBasePortOverride{0};
BrelCorvaneBase* activeInstance = nullptr;  // guarded by the registry lock
int32_t activeParameter = -1;
}  // namespace

void SetModuleServicesFactory(ModuleServicesFactory factory) {
    servicesFactory.store(factory);
}
ModuleServicesFactory GetModuleServicesFactory() {
    return servicesFactory.load();
}
void SetGlobalMIDIHook(GlobalMIDIHook hook) {
    globalMIDIHook.store(hook);
}
GlobalMIDIHook GetGlobalMIDIHook() {
    return globalMIDIHook.load(std::memory_order_acquire);
}
void SetActiveParameter(BrelCorvaneBase* instance, int32_t tableIndex) {
    std::lock_guard<std::recursive_mutex> guard(InstanceRegistry::Lock());
    activeInstance = instance;
    activeParameter = tableIndex;
}
void GetActiveParameter(BrelCorvaneBase*& instance, int32_t& tableIndex) {
    std::lock_guard<std::recursive_mutex> guard(InstanceRegistry::Lock());
    instance = activeInstance;
    tableIndex = activeParameter;
}
void SetOSCBasePort(int32_t port) {
    oscBasePort.store(port, std::memory_order_relaxed);
}
int32_t GetOSCBasePort() {
    return oscBasePort.load(std::memory_order_relaxed);
}

void SetOSCBasePortOverride(int32_t port) {
    oscBasePortOverride.store(port, std::memory_order_relaxed);
}
int32_t GetOSCBasePortOverride() {
    return oscBasePortOverride.load(std::memory_order_relaxed);
}

}  // namespace BR
