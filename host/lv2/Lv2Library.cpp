// C entry points of every plug-in in a bundle, forwarding to Lv2Instance.
#include "Lv2Library.h"

#include <lv2/state/state.h>
#include <lv2/worker/worker.h>

#include <cstring>

#include "Lv2Instance.h"

namespace BR {

namespace {

Lv2Instance* Self(LV2_Handle handle) {
    return static_cast<Lv2Instance*>(handle);
}

LV2_Handle Instantiate(const LV2_Descriptor* descriptor, double rate, const char*,
                       const LV2_Feature* const* features) {
    const auto* plugin = reinterpret_cast<const Lv2Library::PluginClass*>(descriptor);
    return Lv2Instance::Create(plugin->library->Bundle(), *plugin->source, rate, features).release();
}

void ConnectPort(LV2_Handle handle, uint32_t port, void* data) {
    Self(handle)->ConnectPort(port, data);
}

void Activate(LV2_Handle handle) {
    Self(handle)->Activate();
}

void Run(LV2_Handle handle, uint32_t frames) {
    Self(handle)->Run(frames);
}

void Deactivate(LV2_Handle) {}

void Cleanup(LV2_Handle handle) {
    delete Self(handle);
}

LV2_State_Status Save(LV2_Handle handle, LV2_State_Store_Function store, LV2_State_Handle storeHandle,
                      uint32_t, const LV2_Feature* const*) {
    return Self(handle)->Save(store, storeHandle);
}

LV2_State_Status Restore(LV2_Handle handle, LV2_State_Retrieve_Function retrieve,
                         LV2_State_Handle retrieveHandle, uint32_t, const LV2_Feature* const*) {
    return Self(handle)->Restore(retrieve, retrieveHandle);
}

LV2_Worker_Status Work(LV2_Handle handle, LV2_Worker_Respond_Function, LV2_Worker_Respond_Handle, uint32_t,
                       const void*) {
    return Self(handle)->Work();
}

LV2_Worker_Status WorkResponse(LV2_Handle, uint32_t, const void*) {
    return LV2_WORKER_SUCCESS;
}

const void* ExtensionData(const char* uri) {
    static const LV2_State_Interface state{Save, Restore};
    static const LV2_Worker_Interface worker{Work, WorkResponse, nullptr};
    if (std::strcmp(uri, LV2_STATE__interface) == 0) return &state;
    if (std::strcmp(uri, LV2_WORKER__interface) == 0) return &worker;
    return nullptr;
}

}  // namespace

Lv2Library::Lv2Library(Lv2BundleInfo bundle_) : bundle(std::move(bundle_)) {
    uris.reserve(bundle.modules.size());
    for (const Lv2ModuleSource& source : bundle.modules)
        uris.push_back(bundle.PluginUri(*source.entry));
    for (size_t i = 0; i < bundle.modules.size(); ++i) {
        auto plugin = std::make_unique<PluginClass>();
        plugin->descriptor = LV2_Descriptor{uris[i].c_str(), Instantiate, ConnectPort,  Activate, Run,
                                            Deactivate,      Cleanup,     ExtensionData};
        plugin->library = this;
        plugin->source = &bundle.modules[i];
        classes.push_back(std::move(plugin));
    }
}

const LV2_Descriptor* Lv2Library::Descriptor(uint32_t index) const {
    return index < classes.size() ? &classes[index]->descriptor : nullptr;
}

}  // namespace BR
