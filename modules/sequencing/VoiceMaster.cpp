// Polyphony across instances: the master's distribution of events into its ring with a marker sample
// per batch, the choice of a voice by envelope stage, and the voices' scan of their input for markers.
#include <algorithm>
#include <cstring>
#include <mutex>
#include <typeinfo>

#include "VoiceController.h"
#include "framework/InstanceRegistry.h"

namespace BrelCorvaneVoiceController {

namespace {

constexpr float kVelocityScale = 0.007874016f;

// The instance as a Voice Controller, or null. Only Voice Controllers have a poly place; the test of
// the exact type (no class derives from this one) costs a compare where a dynamic_cast walked the
// type tree, and it runs for every instance at every marker and note.
const BrelCorvane* AsVoiceController(const BrelCorvaneBase* instance) {
    return typeid(*instance) == typeid(BrelCorvane) ? static_cast<const BrelCorvane*>(instance) : nullptr;
}

// Caller holds the registry lock: the first instance that says it is a master.
const BrelCorvane* FindMaster() {
    for (size_t k = 0; BrelCorvaneBase* instance = BR::InstanceRegistry::InstanceAt(k); ++k) {
        const BrelCorvane* vc = AsVoiceController(instance);
        if (vc && vc->PolyPlace() == -1) return vc;
    }
    return nullptr;
}

}  // namespace

int32_t pickVoice(int32_t current, int32_t polyphony) {
    std::lock_guard<std::recursive_mutex> lock(BR::InstanceRegistry::Lock());
    if (!BR::InstanceRegistry::InstanceAt(0)) return current;
    int32_t best = 1, bestScore = 999;
    int32_t scores[kMaxVoices + 1] = {};
    for (size_t k = 0; BrelCorvaneBase* instance = BR::InstanceRegistry::InstanceAt(k); ++k) {
        const BrelCorvane* voice = AsVoiceController(instance);
        if (!voice) continue;
        const int32_t q = voice->PolyPlace();
        if (q < 1 || q > polyphony) continue;
        // Idle 0; in release 1 to 3; in attack or sustain at least 11.
        int32_t score = 0;
        for (int32_t e = 0; e < kNumEnvelopes; ++e) {
            const BR::Envelope& envelope = voice->GetEnvelope(e);
            if (envelope.stageIndex >= envelope.sustainStage) score += 10;
            if (envelope.stageIndex > 0) score += 1;
        }
        scores[q] = score;
        if (score == 0 && q == current) {
            best = current;
            break;
        }
        if (score < bestScore) {
            best = q;
            bestScore = score;
        }
    }
    // All busy: the oldest allocation is stolen in rotation. Otherwise the rotation goes on as long as
    // the next voice is as good as any; a voice number that no instance holds scores 0.
    if (bestScore >= 10) return current;
    const bool currentInRange = current >= 0 && current <= kMaxVoices;
    return currentInRange && scores[current] == bestScore ? current : best;
}

bool BrelCorvane::DistributeGroup(BR::MessageQueueItem* first, BR::MessageQueueItem*& pending,
                                  float** outputs, uint32_t position) {
    const int32_t start = eventWrite;
    int32_t added = 0;
    const uint32_t stamp = first->timeStamp;
    for (BR::MessageQueueItem* item = first; item;) {
        MasterEvent(*item, added);
        NotifyScripts(*item);
        BR::MessageQueueItem* next = midiToAudioQueue.Read();
        if (next && next->timeStamp != stamp) {
            pending = next;
            next = nullptr;
        }
        item = next;
    }
    if (added == 0) return false;

    int32_t count = eventWrite - start;
    if (count <= 0) count += kRingSize;
    const int32_t batch = batchWrite;
    batches[batch] = EventBatch{start, count};
    batchWrite = (batchWrite + 1) & (kRingSize - 1);
    // The batch is complete before its marker goes out.
    outputs[0][position] = MarkerSample(batch);
    outputs[1][position] = 0.0f;
    float* out[kNumOutputs];
    for (int32_t o = 0; o < kNumOutputs; ++o)
        out[o] = outputs[o] + position;
    BeginSlice(1, 0);
    Render(out, 0, 1);
    return true;
}

void BrelCorvane::MasterEvent(const BR::MessageQueueItem& item, int32_t& added) {
    if (item.kind != BR::kMessageShortMIDI) return;
    switch (item.status) {
        case 0x80:
            MasterNoteOff(item, added);
            break;
        case 0x90:
            MasterNoteOn(item, added);  // velocity 0 included
            break;
        case 0xB0:
            if (item.dataByte1 == 64) MasterSustain(item.dataByte2 >= 64, item, added);
            if (item.dataByte1 == 123) MasterAllNotesOff(item, added);
            if (item.dataByte1 == 120) {
                AllGatesOff();
                nextVoice = 1;
                std::fill(voiceNote, voiceNote + kMaxVoices + 1, -1);
                AddToRing(item, 0, added);
            }
            break;
        case 0xE0:
            AddToRing(item, 0, added);  // for the voices only
            break;
        default:
            break;
    }
}

void BrelCorvane::AddToRing(const BR::MessageQueueItem& item, int32_t voice, int32_t& added) {
    VoiceEvent& event = eventRing[eventWrite];
    eventWrite = (eventWrite + 1) & (kRingSize - 1);
    event.kind = item.kind;
    event.status = item.status;
    event.channel = item.channel;
    event.dataByte1 = item.dataByte1;
    event.dataByte2 = item.dataByte2;
    event.timeStamp = item.timeStamp;
    event.voice = voice;
    ++added;
}

void BrelCorvane::SendNoteOff(const BR::MessageQueueItem& cause, int32_t note, int32_t voice,
                              int32_t& added) {
    BR::MessageQueueItem noteOff;
    noteOff.kind = BR::kMessageShortMIDI;
    noteOff.status = 0x80;
    noteOff.channel = cause.channel;
    noteOff.dataByte1 = uint8_t(note);
    noteOff.dataByte2 = 127;
    noteOff.timeStamp = cause.timeStamp;
    AddToRing(noteOff, voice, added);
}

void BrelCorvane::MasterNoteOn(const BR::MessageQueueItem& item, int32_t& added) {
    const int32_t n = std::clamp(int32_t(item.dataByte1), 0, 127);
    if (heldNotes[n]) {
        SendNoteOff(item, n, heldNotes[n], added);  // playing already: ends on its old voice
    } else {
        ++heldCount;
    }
    const int32_t v = std::clamp(pickVoice(nextVoice, polyphony), 1, kMaxVoices);
    nextVoice = v + 1 > polyphony ? 1 : v + 1;
    if (voiceNote[v] >= 0) SendNoteOff(item, voiceNote[v], v, added);
    heldNotes[n] = uint8_t(v);
    voiceNote[v] = n;
    AddToRing(item, v, added);
    // The master's own outputs follow the newest note, with no portamento and no priority.
    currentNote = float(n);
    noteVelocity = float(item.dataByte2) * kVelocityScale;
    if (gateOpen && retriggerMode == 1) return;
    StartVoice();
}

void BrelCorvane::MasterNoteOff(const BR::MessageQueueItem& item, int32_t& added) {
    const int32_t n = std::clamp(int32_t(item.dataByte1), 0, 127);
    const int32_t v = heldNotes[n];
    if (v == 0) return;
    heldNotes[n] = 0;
    --heldCount;
    if (!sustainPedal) {
        voiceNote[v] = -1;
        AddToRing(item, v, added);
    }
    if (heldCount == 0) {
        // Unlike the mono path this ignores the pedal.
        gateOpen = false;
        releaseVelocity = float(item.dataByte2) * kVelocityScale;
        ReleaseEnvelopes();
    }
}

void BrelCorvane::MasterSustain(bool on, const BR::MessageQueueItem& item, int32_t& added) {
    if (on == sustainPedal) return;
    sustainPedal = on;
    if (on) return;
    for (int32_t v = 1; v <= kMaxVoices; ++v)
        if (voiceNote[v] >= 0 && heldNotes[voiceNote[v]] == 0) {
            SendNoteOff(item, voiceNote[v], v, added);
            voiceNote[v] = -1;
        }
}

void BrelCorvane::MasterAllNotesOff(const BR::MessageQueueItem& item, int32_t& added) {
    for (int32_t v = 1; v <= kMaxVoices; ++v)
        if (voiceNote[v] >= 0) {
            const int32_t note = voiceNote[v];
            voiceNote[v] = -1;
            SendNoteOff(item, note, v, added);
        }
    std::memset(heldNotes, 0, sizeof heldNotes);
    heldCount = 0;
}

void BrelCorvane::ScanVoiceInput(const float* input, float** outputs, uint32_t frames) {
    uint32_t start = 0;  // first sample not rendered yet
    for (uint32_t k = 0; k < frames; ++k) {
        uint32_t b;
        std::memcpy(&b, &input[k], 4);
        if ((b >> 24) != 0x40) continue;
        if (k > start) Render(outputs, start, k - start);
        start = k;  // the marker sample renders with the ones after it, so events act from it on
        // Snap to a multiple of 0x10000, which forgives small gain errors on the way.
        const uint32_t low = b & 0xFFFF;
        b = int16_t(low) < 0 ? b + (0x10000 - low) : b - low;
        const int32_t batch = int32_t((b >> 16) & 127);
        if (batch >= kRingSize || (b & 0xFFFF) != 0) continue;
        std::lock_guard<std::recursive_mutex> lock(BR::InstanceRegistry::Lock());
        const BrelCorvane* master = FindMaster();
        // Gate, pitch and velocity of a new note from this sample on.
        if (master && PlayBatch(*master, batch)) UpdateNoteOutputs();
    }
    if (frames > start) Render(outputs, start, frames - start);
}

bool BrelCorvane::PlayBatch(const BrelCorvane& master, int32_t batch) {
    // Read without a lock: a batch is complete before its marker leaves the master.
    const EventBatch& entry = master.Batch(batch);
    bool played = false;
    for (int32_t i = 0; i < entry.count; ++i) {
        const VoiceEvent& event = master.RingEvent(entry.start + i);
        if (event.kind != BR::kMessageShortMIDI) continue;
        if (event.voice != 0 && event.voice != voiceId) continue;
        MonoEvent(event.status, event.dataByte1, event.dataByte2);
        played = true;
    }
    return played;
}

}  // namespace BrelCorvaneVoiceController
