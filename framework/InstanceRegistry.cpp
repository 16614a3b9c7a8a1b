// The list of live instances, their identity numbers and the lookups between them.
#include "InstanceRegistry.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "BrelCorvaneBase.h"

namespace BR::InstanceRegistry {

namespace {

struct Registry {
    std::recursive_mutex lock;
    std::vector<InstanceEntry> entries;
    std::vector<IBrelParameterNotificationReceiver*> receivers;
};

// Built on first use so that modules constructed during static initialisation find it.
Registry& TheRegistry() {
    static Registry registry;
    return registry;
}

using Guard = std::lock_guard<std::recursive_mutex>;

InstanceEntry* EntryOf(BrelCorvaneBase* instance) {
    for (InstanceEntry& entry : TheRegistry().entries)
        if (entry.instance == instance) return &entry;
    return nullptr;
}

const char* EntryShortName(InstanceEntry& entry) {
    if (!entry.shortName) entry.instance->GetProperty(kPropertyShortName, &entry.shortName);
    return entry.shortName;
}

uint32_t LowestFreeGlobalId(const InstanceEntry* except) {
    std::vector<uint32_t> held;
    for (const InstanceEntry& entry : TheRegistry().entries)
        if (&entry != except) held.push_back(entry.globalId);
    uint32_t id = 1;
    while (std::find(held.begin(), held.end(), id) != held.end())
        ++id;
    return id;
}

uint32_t LowestFreeLocalId(InstanceEntry& self) {
    std::vector<uint32_t> held;
    const char* name = EntryShortName(self);
    for (InstanceEntry& entry : TheRegistry().entries)
        if (&entry != &self && std::strcmp(EntryShortName(entry), name) == 0) held.push_back(entry.localId);
    uint32_t id = 1;
    while (std::find(held.begin(), held.end(), id) != held.end())
        ++id;
    return id;
}

// An instance whose parameter objects are not built yet (or no longer) has no port and takes no
// parameter changes from other threads.
int32_t PortOf(BrelCorvaneBase* instance) {
    int32_t port = 0;
    if (instance->ParametersReady()) instance->GetProperty(kPropertyOSCPortOffset, &port);
    return port;
}

}  // namespace

std::recursive_mutex& Lock() {
    return TheRegistry().lock;
}

void AddInstance(BrelCorvaneBase* instance) {
    Guard guard(Lock());
    TheRegistry().entries.push_back(InstanceEntry{instance, nullptr, 0, LowestFreeGlobalId(nullptr)});
}

void RemoveInstance(BrelCorvaneBase* instance) {
    Guard guard(Lock());
    auto& entries = TheRegistry().entries;
    entries.erase(std::remove_if(entries.begin(), entries.end(),
                                 [instance](const InstanceEntry& e) { return e.instance == instance; }),
                  entries.end());
}

BrelCorvaneBase* FindInstance(BrelCorvaneBase* instance) {
    Lock().lock();
    if (EntryOf(instance)) return instance;
    Lock().unlock();
    return nullptr;
}

bool GetInstanceIds(BrelCorvaneBase* instance, uint32_t& localId, uint32_t& globalId) {
    Guard guard(Lock());
    InstanceEntry* entry = EntryOf(instance);
    if (!entry) return false;
    if (entry->localId == 0) entry->localId = LowestFreeLocalId(*entry);
    if (entry->globalId == 0) entry->globalId = LowestFreeGlobalId(entry);
    localId = entry->localId;
    globalId = entry->globalId;
    return true;
}

bool PeekInstanceIds(BrelCorvaneBase* instance, uint32_t& localId, uint32_t& globalId) {
    Guard guard(Lock());
    const InstanceEntry* entry = EntryOf(instance);
    if (!entry) return false;
    localId = entry->localId;
    globalId = entry->globalId;
    return true;
}

void SetInstanceIds(BrelCorvaneBase* instance, uint32_t localId, uint32_t globalId) {
    Guard guard(Lock());
    InstanceEntry* self = EntryOf(instance);
    if (!self) return;
    if (localId != 0) self->localId = localId;
    if (globalId != 0) self->globalId = globalId;
    for (InstanceEntry& other : TheRegistry().entries) {
        if (&other == self) continue;
        if (localId != 0 && other.localId == localId) {
            other.localId = 0;
            other.localId = LowestFreeLocalId(other);
        }
        if (globalId != 0 && other.globalId == globalId) other.globalId = LowestFreeGlobalId(&other);
    }
}

size_t NumInstances() {
    Guard guard(Lock());
    return TheRegistry().entries.size();
}

BrelCorvaneBase* InstanceAt(size_t index) {
    const auto& entries = TheRegistry().entries;
    return index < entries.size() ? entries[index].instance : nullptr;
}

void AddReceiver(IBrelParameterNotificationReceiver* receiver) {
    Guard guard(Lock());
    TheRegistry().receivers.push_back(receiver);
}

void RemoveReceiver(IBrelParameterNotificationReceiver* receiver) {
    Guard guard(Lock());
    auto& receivers = TheRegistry().receivers;
    receivers.erase(std::remove(receivers.begin(), receivers.end(), receiver), receivers.end());
}

void NotifyParameterChanged(BrelCorvaneBase* instance, int32_t tableIndex, float value) {
    Guard guard(Lock());
    for (IBrelParameterNotificationReceiver* receiver : TheRegistry().receivers)
        receiver->ParameterChanged(instance, tableIndex, value);
}

bool AnyLearnerPresent() {
    Guard guard(Lock());
    for (const InstanceEntry& entry : TheRegistry().entries) {
        bool isLearner = false;
        if (entry.instance->GetProperty(kPropertyIsLearner, &isLearner) == kNoErr && isLearner) return true;
    }
    return false;
}

void SetParameterByPort(int32_t port, int32_t tableIndex, float value) {
    Guard guard(Lock());
    // A setter notifies receivers, which may add or remove entries: walk a copy.
    const std::vector<InstanceEntry> snapshot = TheRegistry().entries;
    for (const InstanceEntry& entry : snapshot)
        if (EntryOf(entry.instance) && entry.instance->ParametersReady() && PortOf(entry.instance) == port)
            entry.instance->SetParameterValue(tableIndex + 1, value);
}

float GetParameterByPort(int32_t port, int32_t tableIndex) {
    Guard guard(Lock());
    for (const InstanceEntry& entry : TheRegistry().entries) {
        if (!entry.instance->ParametersReady() || PortOf(entry.instance) != port) continue;
        const Parameter* parameter = entry.instance->GetParameter(tableIndex + 1);
        return parameter ? parameter->GetValueAsFloat() : 0.0f;
    }
    return 0.0f;
}

void SetIndicatorByPort(int32_t port, int32_t id, bool on) {
    if (id < 0 || id >= kNumGUIBoolValues) return;
    Guard guard(Lock());
    for (const InstanceEntry& entry : TheRegistry().entries)
        if (PortOf(entry.instance) == port) entry.instance->GetStatusBlock()->GUIBoolValues[id] = on;
}

bool GetIndicatorByPort(int32_t port, int32_t id) {
    if (id < 0 || id >= kNumGUIBoolValues) return false;
    Guard guard(Lock());
    for (const InstanceEntry& entry : TheRegistry().entries)
        if (PortOf(entry.instance) == port) return entry.instance->GetStatusBlock()->GUIBoolValues[id];
    return false;
}

bool SetParameterByAddress(const ParameterAddress& address, float value) {
    Guard guard(Lock());
    bool setAny = false;
    // Setting a parameter may notify receivers that add or remove entries: walk a copy.
    const std::vector<InstanceEntry> snapshot = TheRegistry().entries;
    for (const InstanceEntry& snap : snapshot) {
        InstanceEntry* entry = EntryOf(snap.instance);
        if (!entry || !entry->instance->ParametersReady()) continue;
        bool endsSearch = false;
        if (!address.moduleName) {
            // Every entry holds its global id from AddInstance on; local ids stay unassigned here.
            if (int64_t(entry->globalId) != address.id) continue;
            endsSearch = true;
        } else {
            if (std::strcmp(EntryShortName(*entry), address.moduleName) != 0) continue;
            if (address.id >= 0) {
                uint32_t localId = 0, globalId = 0;
                GetInstanceIds(entry->instance, localId, globalId);
                if (int64_t(localId) != address.id) continue;
                endsSearch = true;
            }
        }
        int32_t tableIndex = address.parameterIndex;
        if (address.parameterName) {
            tableIndex = -1;
            const auto& paths = entry->instance->ParameterPaths();
            for (size_t k = 0; k < paths.size(); ++k)
                if (paths[k] == address.parameterName) {
                    tableIndex = int32_t(k);
                    break;
                }
        }
        tableIndex += address.indexOffset;
        if (tableIndex >= 0 && tableIndex < entry->instance->NumTableParameters()) {
            entry->instance->SetParameterValue(tableIndex + 1, value);
            setAny = true;
            if (endsSearch) break;
        }
    }
    return setAny;
}

}  // namespace BR::InstanceRegistry
