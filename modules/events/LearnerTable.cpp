// The process-wide MIDI learn table: learning, applying, removing, pending mappings and their payload.
#include "LearnerTable.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <functional>
#include <iterator>
#include <map>
#include <mutex>

#include "framework/ActiveParameter.h"
#include "framework/BrelCorvaneBase.h"
#include "framework/InstanceRegistry.h"
#include "framework/MessageQueue.h"
#include "framework/ModuleServices.h"
#include "framework/SharedState.h"
#include "framework/StateChunkStore.h"

namespace BrelCorvaneLearner {

namespace {

using Guard = std::lock_guard<std::recursive_mutex>;

struct TargetOrder {
    bool operator()(const MidiMappingTarget& a, const MidiMappingTarget& b) const {
        if (a.instance != b.instance) return std::less<BrelCorvaneBase*>()(a.instance, b.instance);
        return a.parameter < b.parameter;
    }
};

struct SourceOrder {
    bool operator()(const MidiMappingSource& a, const MidiMappingSource& b) const {
        if (a.instance != b.instance) return std::less<BrelCorvaneBase*>()(a.instance, b.instance);
        if (a.channel != b.channel) return a.channel < b.channel;
        if (a.kind != b.kind) return a.kind < b.kind;
        return a.number < b.number;
    }
};

bool SameSource(const MidiMappingSource& a, const MidiMappingSource& b) {
    return a.instance == b.instance && a.channel == b.channel && a.kind == b.kind && a.number == b.number;
}

bool SameTarget(const MidiMappingTarget& a, const MidiMappingTarget& b) {
    return a.instance == b.instance && a.parameter == b.parameter;
}

// Built on first use and never destroyed: the tables outlive every instance, including those torn
// down during static destruction.
struct Tables {
    std::map<MidiMappingTarget, MidiMapping, TargetOrder> byTarget;
    std::multimap<MidiMappingSource, MidiMappingTarget, SourceOrder> bySource;
    std::vector<PendingMidiMapping> pending;
    RecentMessage recent[kNumRecentMessages] = {};
    int32_t recentIndex = 0;
};

Tables& TheTables() {
    static Tables* tables = new Tables;
    return *tables;
}

std::recursive_mutex& Lock() {
    return BR::InstanceRegistry::Lock();
}

bool IsRegistered(BrelCorvaneBase* instance) {
    if (!instance || !BR::InstanceRegistry::FindInstance(instance)) return false;
    Lock().unlock();  // FindInstance left it held once more
    return true;
}

// Caller holds the lock. The live instance that holds a global id, giving one to any that has none.
BrelCorvaneBase* InstanceByGlobalId(uint32_t globalId) {
    for (size_t i = 0; BrelCorvaneBase* instance = BR::InstanceRegistry::InstanceAt(i); ++i) {
        uint32_t localId = 0, id = 0;
        BR::InstanceRegistry::PeekInstanceIds(instance, localId, id);
        if (id == 0) BR::InstanceRegistry::GetInstanceIds(instance, localId, id);
        if (id == globalId) return instance;
    }
    return nullptr;
}

// Caller holds the lock. What the notification path of an instance builds lazily (its short name,
// paths and local id) is built here, off the steady state, so that later changes allocate nothing.
void Prepare(BrelCorvaneBase* instance) {
    instance->ShortName();
    instance->ParameterPaths();
    uint32_t localId = 0, globalId = 0;
    BR::InstanceRegistry::GetInstanceIds(instance, localId, globalId);
}

void Record(BrelCorvaneBase& module, const BR::MessageQueueItem& item) {
    Tables& t = TheTables();
    t.recentIndex = (t.recentIndex + 1) % kNumRecentMessages;
    t.recent[t.recentIndex] = {&module,        item.status,    item.channel,
                               item.dataByte1, item.dataByte2, item.timeStamp};
}

void PutU32(std::vector<uint8_t>& out, uint32_t value) {
    BR::AppendU32(out, value);
}

void PutFloat(std::vector<uint8_t>& out, float value) {
    uint32_t bits;
    std::memcpy(&bits, &value, 4);
    BR::AppendU32(out, bits);
}

float ReadFloat(const uint8_t* bytes) {
    const uint32_t bits = BR::ReadU32(bytes);
    float value;
    std::memcpy(&value, &bits, 4);
    return value;
}

}  // namespace

void HandleMIDI(BrelCorvaneBase& module, const BR::MessageQueueItem& item) {
    if (item.kind != BR::kMessageShortMIDI) return;
    uint32_t kind;
    if (item.status == 0xB0) {
        kind = kKindCC;
    } else if (item.status == 0xA0) {
        kind = kKindPolyPressure;
    } else if (item.status == 0xD0) {
        kind = kKindChannelPressure;
    } else {
        return;  // notes, program changes, pitch wheel: never learned, never applied
    }
    const MidiMappingSource source{&module, 0, uint32_t(item.channel & 15), kind,
                                   kind == kKindChannelPressure ? 0u : uint32_t(item.dataByte1)};
    {
        Guard guard(Lock());
        Record(module, item);
    }
    if (LearnActive()) {
        BrelCorvaneBase* active = nullptr;
        int32_t parameter = -1;
        BR::GetActiveParameter(active, parameter);
        if (active && BR::InstanceRegistry::FindInstance(active)) {
            if (parameter >= 0 && parameter < active->NumTableParameters()) {
                const BR::ParameterDefinition& row = active->ParameterTable()[parameter];
                ResolvePendingMappings();
                AddMapping(source, {active, 0, parameter}, row.minimum, row.maximum, row.unit);
            }
            Lock().unlock();
        }
    }
    // Learning needs no value change: the message that made the mapping applies at once.
    const int32_t v = kind == kKindChannelPressure ? item.dataByte1 : item.dataByte2;
    Guard guard(Lock());
    ResolvePendingMappings();
    ApplyValue(source, v);
}

void InstallHook() {
    BR::SetGlobalMIDIHook(&HandleMIDI);
}

// The one process-wide byte that the Soundplane's learn button writes too: either module switches
// learning for both.
bool LearnActive() {
    return BR::GetLearnActive() != 0;
}

void SetLearnActive(bool on) {
    BR::SetLearnActive(on ? 1 : 0);
}

float MappedValue(float minimum, float maximum, uint32_t unit, int32_t v) {
    const float a = minimum, b = maximum;
    float value;
    if (a == -b) {
        // A bipolar range: 64 is exactly the middle, and the 126 steps either side of it reach both ends.
        value = v == 64 ? 0.0f : float(std::max(v - 1, 0)) * (b - a) * 0.007936508f + a;
    } else {
        value = (b - a) * float(v) * 0.007874016f + a;
    }
    if (unit == BR::kUnitIndexed || unit == BR::kUnitRelativeSemitones) {
        value = std::floor(value);
    } else if (unit == BR::kUnitBoolean) {
        value = value != 0.0f ? 1.0f : 0.0f;
    }
    return value;
}

void AddMapping(const MidiMappingSource& source, const MidiMappingTarget& target, float minimum,
                float maximum, uint32_t unit) {
    Tables& t = TheTables();
    auto it = t.byTarget.find(target);
    if (it == t.byTarget.end()) {
        t.byTarget.emplace(target, MidiMapping{source, minimum, maximum, unit});
    } else {
        if (SameSource(it->second.source, source)) return;
        // A parameter has at most one source: the new one replaces the old, range included.
        const MidiMappingSource old = it->second.source;
        it->second = MidiMapping{source, minimum, maximum, unit};
        auto range = t.bySource.equal_range(old);
        for (auto s = range.first; s != range.second; ++s)
            if (SameTarget(s->second, target)) {
                t.bySource.erase(s);
                break;
            }
    }
    t.bySource.emplace(source, target);
    Prepare(target.instance);
}

void ResolvePendingMappings() {
    Tables& t = TheTables();
    if (t.pending.empty()) return;
    // Mappings whose instances are not there (yet) are lost here, as they would be in a session
    // whose instances have all come up by the first message or save.
    for (const PendingMidiMapping& p : t.pending) {
        BrelCorvaneBase* target = InstanceByGlobalId(p.targetGlobalId);
        BrelCorvaneBase* source = InstanceByGlobalId(p.sourceGlobalId);
        if (target && source)
            AddMapping({source, 0, p.channel, p.kind, p.number}, {target, 0, p.targetParameter}, p.minimum,
                       p.maximum, p.unit);
    }
    t.pending.clear();
}

void ApplyValue(const MidiMappingSource& source, int32_t v) {
    Tables& t = TheTables();
    auto range = t.bySource.equal_range(source);
    for (auto s = range.first; s != range.second; ++s) {
        const MidiMappingTarget& target = s->second;
        if (!IsRegistered(target.instance)) continue;  // deleted instances keep their entries
        auto it = t.byTarget.find(target);
        if (it == t.byTarget.end()) continue;
        const MidiMapping& m = it->second;
        target.instance->SetTableValue(target.parameter, MappedValue(m.minimum, m.maximum, m.unit, v));
    }
}

void RemoveActiveMapping() {
    Guard guard(Lock());
    Tables& t = TheTables();
    ResolvePendingMappings();
    MidiMappingTarget target{nullptr, 0, -1};
    BR::GetActiveParameter(target.instance, target.parameter);
    auto it = t.byTarget.find(target);
    if (it == t.byTarget.end()) return;
    for (auto s = t.bySource.begin(); s != t.bySource.end();)
        s = SameTarget(s->second, target) ? t.bySource.erase(s) : std::next(s);
    t.byTarget.erase(it);
}

void RemoveAllMappings() {
    Guard guard(Lock());
    Tables& t = TheTables();
    t.byTarget.clear();
    t.bySource.clear();
    t.pending.clear();
}

std::vector<uint8_t> SaveMappings() {
    Guard guard(Lock());
    Tables& t = TheTables();
    ResolvePendingMappings();
    std::vector<uint8_t> out;
    if (t.byTarget.empty()) return out;
    PutU32(out, 2);
    for (const auto& [target, m] : t.byTarget) {
        uint32_t localId = 0, targetId = 0, sourceId = 0;
        // Instances that are gone have no ids, and their mappings are not saved.
        if (!BR::InstanceRegistry::GetInstanceIds(target.instance, localId, targetId)) continue;
        if (!BR::InstanceRegistry::GetInstanceIds(m.source.instance, localId, sourceId)) continue;
        PutU32(out, targetId);
        PutU32(out, uint32_t(target.parameter));
        PutU32(out, sourceId);
        PutU32(out, m.source.channel);
        PutU32(out, m.source.kind);
        PutU32(out, m.source.number);
        PutFloat(out, m.minimum);
        PutFloat(out, m.maximum);
        PutU32(out, m.unit & 0xFF);  // one byte of unit, three of zero
    }
    return out;
}

void LoadMappings(const uint8_t* bytes, uint32_t length) {
    Guard guard(Lock());
    Tables& t = TheTables();
    t.byTarget.clear();
    t.bySource.clear();
    t.pending.clear();
    if (!bytes || length < 4) return;
    const uint32_t version = BR::ReadU32(bytes);
    const uint32_t entryBytes = version == 1 ? 32 : version == 2 ? 36 : 0;
    if (entryBytes == 0) return;  // an unknown version loads nothing
    for (uint32_t at = 4; at + entryBytes <= length; at += entryBytes) {
        const uint8_t* e = bytes + at;
        t.pending.push_back({BR::ReadU32(e), int32_t(BR::ReadU32(e + 4)), BR::ReadU32(e + 8),
                             BR::ReadU32(e + 12), BR::ReadU32(e + 16), BR::ReadU32(e + 20), ReadFloat(e + 24),
                             ReadFloat(e + 28), version == 2 ? uint32_t(e[32]) : 0u});
    }
}

void DescribeMapping(BrelCorvaneBase* instance, int32_t parameter, char* out, uint32_t size) {
    if (size == 0) return;
    out[0] = '\0';
    Guard guard(Lock());
    Tables& t = TheTables();
    auto it = t.byTarget.find({instance, 0, parameter});
    if (it == t.byTarget.end()) return;
    const MidiMappingSource& s = it->second.source;
    uint32_t localId = 0, globalId = 0;
    if (!BR::InstanceRegistry::GetInstanceIds(s.instance, localId, globalId)) return;  // source gone
    static const char* const kKindNames[] = {"CC", "Note", "PP", "CP"};
    const char* kindName = s.kind < 4 ? kKindNames[s.kind] : "?";
    if (s.kind == kKindChannelPressure) {
        std::snprintf(out, size, "%s %d (%d) Ch%d %s", s.instance->GetModuleName(), int(localId),
                      int(globalId), int(s.channel + 1), kindName);
    } else {
        std::snprintf(out, size, "%s %d (%d) Ch%d %s%d", s.instance->GetModuleName(), int(localId),
                      int(globalId), int(s.channel + 1), kindName, int(s.number));
    }
}

int32_t NumMappings() {
    Guard guard(Lock());
    return int32_t(TheTables().byTarget.size());
}

int32_t NumPendingMappings() {
    Guard guard(Lock());
    return int32_t(TheTables().pending.size());
}

bool FindMapping(BrelCorvaneBase* instance, int32_t parameter, MidiMapping& out) {
    Guard guard(Lock());
    const Tables& t = TheTables();
    auto it = t.byTarget.find({instance, 0, parameter});
    if (it == t.byTarget.end()) return false;
    out = it->second;
    return true;
}

RecentMessage RecentMessageAt(int32_t k) {
    Guard guard(Lock());
    const Tables& t = TheTables();
    if (k < 0 || k >= kNumRecentMessages) return {};
    return t.recent[(t.recentIndex - k + kNumRecentMessages) % kNumRecentMessages];
}

}  // namespace BrelCorvaneLearner
