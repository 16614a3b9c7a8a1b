// The process-wide MIDI learn table: every instance's controller and pressure messages drive the
// parameters mapped to them, in any instance. Lives as long as the plug-in file, outliving any Learner;
// everything here is guarded by the instance registry's lock.
#pragma once

#include <cstdint>
#include <vector>

class BrelCorvaneBase;

namespace BR {
struct MessageQueueItem;
}

namespace BrelCorvaneLearner {

enum SourceKind : uint32_t {
    kKindCC = 0,
    kKindNote = 1,  // named, never learned
    kKindPolyPressure = 2,
    kKindChannelPressure = 3,
};

struct MidiMappingTarget {
    BrelCorvaneBase* instance;
    uint32_t reserved;  // always 0
    int32_t parameter;  // table index
};

struct MidiMappingSource {
    BrelCorvaneBase* instance;  // where the MIDI arrives
    uint32_t reserved;          // always 0
    uint32_t channel;           // 0 to 15
    uint32_t kind;              // SourceKind
    uint32_t number;            // controller or note; 0 for channel pressure
};

// What a target is driven by; range and unit copied from the parameter's row when learned.
struct MidiMapping {
    MidiMappingSource source;
    float minimum;
    float maximum;
    uint32_t unit;
};

// A mapping read from a saved state, naming its instances by global id until they are found.
struct PendingMidiMapping {
    uint32_t targetGlobalId;
    int32_t targetParameter;
    uint32_t sourceGlobalId;
    uint32_t channel;
    uint32_t kind;
    uint32_t number;
    float minimum;
    float maximum;
    uint32_t unit;
};

// One entry of the history of MIDI seen by the table.
struct RecentMessage {
    BrelCorvaneBase* source;  // null while the slot is empty
    uint8_t status;
    uint8_t channel;
    uint8_t dataByte1;
    uint8_t dataByte2;
    uint32_t timeStamp;
};
constexpr int32_t kNumRecentMessages = 5;

// Where every kind 1 item of any instance ends, after the module's and the scripts' handlers (and
// where CV To MIDI's "Send To Learner" hands its messages). Runs on that instance's audio thread.
void HandleMIDI(BrelCorvaneBase& module, const BR::MessageQueueItem& item);
// Makes HandleMIDI the framework's global MIDI hook; idempotent.
void InstallHook();

bool LearnActive();
void SetLearnActive(bool on);

// The parameter value that controller or pressure value v (0 to 127) gives on a range and unit.
float MappedValue(float minimum, float maximum, uint32_t unit, int32_t v);

// Caller holds the registry lock for these three.
void AddMapping(const MidiMappingSource& source, const MidiMappingTarget& target, float minimum,
                float maximum, uint32_t unit);
void ResolvePendingMappings();
void ApplyValue(const MidiMappingSource& source, int32_t v);

// Takes the lock. Remove the active parameter's mapping; remove everything, pending included.
void RemoveActiveMapping();
void RemoveAllMappings();

// "mmap" payload: empty when there is no mapping, else version 2 and 36 bytes per mapping whose two
// instances are live. Resolves pending mappings first.
std::vector<uint8_t> SaveMappings();
// Empties the table, then keeps each entry of a version 1 or 2 payload as a pending mapping. A null
// payload (no entry) only empties.
void LoadMappings(const uint8_t* bytes, uint32_t length);

// The display's line for a target's mapping: the source's module name, local id, global id in
// brackets, channel from 1, kind name and number ("Corvane DC 1 (2) Ch1 CC7"); empty when the target
// has none. `out` holds `size` bytes.
void DescribeMapping(BrelCorvaneBase* instance, int32_t parameter, char* out, uint32_t size);

// Reading the tables, for displays and tests.
int32_t NumMappings();
int32_t NumPendingMappings();
bool FindMapping(BrelCorvaneBase* instance, int32_t parameter, MidiMapping& out);
// The k-th newest message (0 is the newest); source null when none.
RecentMessage RecentMessageAt(int32_t k);

}  // namespace BrelCorvaneLearner
