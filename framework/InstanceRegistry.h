// The process-wide list of live modules behind one recursive lock, through which instances find
// each other: identity numbers, parameter notifications, and lookups by OSC port or address.
#pragma once

#include <cstdint>
#include <mutex>
#include <string>

class BrelCorvaneBase;

class IBrelParameterNotificationReceiver {
public:
    virtual ~IBrelParameterNotificationReceiver() = default;
    virtual void ParameterChanged(BrelCorvaneBase* instance, int32_t tableIndex, float value) = 0;
};

namespace BR {

struct InstanceEntry {
    BrelCorvaneBase* instance;
    const char* shortName;  // property 64004, cached at first need
    uint32_t localId;       // among instances of the same short name, from 1; 0 until first asked
    uint32_t globalId;      // among all instances, from 1
};

// What the OSC server resolves an address naming a module to.
struct ParameterAddress {
    const char* moduleName;     // short name, or null to select by global id
    int32_t id;                 // global id; or local id, negative for every instance of the name
    const char* parameterName;  // path name, or null to use parameterIndex
    int32_t parameterIndex;     // table index
    int32_t indexOffset;        // added to the table index found
};

namespace InstanceRegistry {

// The lock is process-wide and recursive; every operation below takes it unless told.
std::recursive_mutex& Lock();

void AddInstance(BrelCorvaneBase* instance);
void RemoveInstance(BrelCorvaneBase* instance);
// Returns the instance if registered and leaves the lock held for the caller; else releases it.
BrelCorvaneBase* FindInstance(BrelCorvaneBase* instance);
// Caller holds the lock. Assigns either number when it is still 0. False when not registered.
bool GetInstanceIds(BrelCorvaneBase* instance, uint32_t& localId, uint32_t& globalId);
// The numbers as they stand, 0 where none is given yet; assigns nothing. False when not registered.
bool PeekInstanceIds(BrelCorvaneBase* instance, uint32_t& localId, uint32_t& globalId);
// A 0 leaves that number as it is. Others holding an equal number are renumbered.
void SetInstanceIds(BrelCorvaneBase* instance, uint32_t localId, uint32_t globalId);
size_t NumInstances();
// Caller holds the lock: the instance at a place in the list, in order of adding; null past the end.
BrelCorvaneBase* InstanceAt(size_t index);

void AddReceiver(IBrelParameterNotificationReceiver* receiver);
void RemoveReceiver(IBrelParameterNotificationReceiver* receiver);
void NotifyParameterChanged(BrelCorvaneBase* instance, int32_t tableIndex, float value);
bool AnyLearnerPresent();

// Instances are named by their "OSC Port Offset" (property 64009). Setters act on every match,
// getters on the first, giving 0 or false when none matches.
void SetParameterByPort(int32_t port, int32_t tableIndex, float value);
float GetParameterByPort(int32_t port, int32_t tableIndex);
void SetIndicatorByPort(int32_t port, int32_t id, bool on);
bool GetIndicatorByPort(int32_t port, int32_t id);

// True when at least one parameter was set.
bool SetParameterByAddress(const ParameterAddress& address, float value);

}  // namespace InstanceRegistry
}  // namespace BR
