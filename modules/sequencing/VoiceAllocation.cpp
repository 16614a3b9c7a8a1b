// Voice Controller note logic: the held notes of one voice, master distribution through the event
// ring and marker samples, voice choice by envelope stage, and the voices' scan for markers.
#include <algorithm>
#include <cstring>
#include <mutex>

#include "VoiceController.h"
#include "framework/InstanceRegistry.h"
#include "framework/ModuleServices.h"
#include "framework/RandomGenerator.h"

namespace BrelCorvaneVoiceController {

namespace {
constexpr float kVelocityScale = 0.007874016f;  // 1 / 127
constexpr float kBendScale = 0.00012207031f;    // 1 / 8192

int32_t ClampNote(int32_t note) {
    return std::clamp(note, 0, 127);
}
}  // namespace

// The block, cut at MIDI time stamps as the base does; in a master each group of events of one time
// stamp takes one sample of its own for the marker.
void BrelCorvane::ProcessBlock(float** inputs, float** outputs, uint32_t frames) {
    uint32_t position = 0;
    uint32_t remaining = frames;
    BR::MessageQueueItem* pending = nullptr;  // read ahead by a master's group, not yet handled
    while (remaining != 0) {
        BR::MessageQueueItem* item = pending ? pending : midiToAudioQueue.Read();
        pending = nullptr;
        uint32_t run = remaining;
        if (item) run = item->timeStamp <= position ? 0 : std::min(item->timeStamp - position, remaining);
        if (run != 0) {
            float* in[1] = {inputs[0] + position};
            float* out[kNumOutputs];
            for (int32_t o = 0; o < kNumOutputs; ++o)
                out[o] = outputs[o] + position;
            BeginSlice(run, 0);
            RunSubBlock(in, out, run);
            position += run;
            remaining -= run;
        }
        if (!item) continue;
        if (mode != kModeMaster) {
            DispatchMIDI(item);  // the mono handler in mode 0; scripts only while measuring
        } else if (remaining == 0) {
            NotifyScripts(*item);  // no sample left for a marker: lost to the voices
        } else {
            // The marker of the group's batch takes this sample.
            if (DistributeGroup(item, pending, outputs, position)) {
                ++position;
                --remaining;
            }
        }
    }
}

void BrelCorvane::RunSubBlock(float** inputs, float** outputs, uint32_t frames) {
    if (mode == kModeMaster) {
        // A pass-through value of 2.0 up to 4.0 could snap to a marker pattern: clip it at 2.0.
        const float* x = inputs[0];
        float* y = outputs[0];
        for (uint32_t i = 0; i < frames; ++i)
            y[i] = x[i] > 2.0f ? 2.0f : x[i];
        std::memset(outputs[1], 0, frames * sizeof(float));
        Render(outputs, 0, frames);
    } else if (mode == kModeMeasuring) {
        Measure(inputs, outputs, frames);
    } else if (polyMode == kPolyVoice) {
        ScanVoiceInput(inputs[0], outputs, frames);
    } else {
        Render(outputs, 0, frames);
    }
}

void BrelCorvane::NotifyScripts(BR::MessageQueueItem& item) {
    if (services) services->HandleMIDI(item);
    if (BR::GlobalMIDIHook hook = BR::GetGlobalMIDIHook()) hook(*this, item);
}

void BrelCorvane::HandleNoteOn(int32_t, int32_t note, int32_t velocity) {
    if (mode == kModeNormal) MonoEvent(0x90, uint8_t(note), uint8_t(velocity));
}

void BrelCorvane::HandleNoteOff(int32_t, int32_t note, int32_t velocity) {
    if (mode == kModeNormal) MonoEvent(0x80, uint8_t(note), uint8_t(velocity));
}

void BrelCorvane::HandleControlChange(int32_t, int32_t controller, int32_t value) {
    if (mode == kModeNormal) MonoEvent(0xB0, uint8_t(controller), uint8_t(value));
}

void BrelCorvane::HandlePitchBend(int32_t, int32_t lsb, int32_t msb) {
    if (mode == kModeNormal) MonoEvent(0xE0, uint8_t(lsb), uint8_t(msb));
}

void BrelCorvane::MonoEvent(uint8_t status, uint8_t data1, uint8_t data2) {
    switch (status) {
        case 0x90:
            if (data2 != 0) {
                NoteOn(data1, float(data2) * kVelocityScale);
            } else {
                NoteOff(data1, 0.0f);
            }
            break;
        case 0x80:
            NoteOff(data1, float(data2) * kVelocityScale);
            break;
        case 0xB0:
            if (data1 == 64) SustainPedal(data2 >= 64);
            if (data1 == 120) AllGatesOff();
            if (data1 == 123) AllNotesOff();
            break;
        case 0xE0:
            pitchBend = float(((int32_t(data2) << 7) | data1) - 0x2000) * pitchWheelRange * kBendScale;
            break;
        default:
            break;
    }
}

void BrelCorvane::NoteOn(int32_t note, float velocity) {
    NoteOnSteps(ClampNote(note), velocity);
}

void BrelCorvane::NoteOnSteps(int32_t n, float velocity) {
    if (portamentoMode == kPortaFingered || portamentoMode == kPortaCTFingered)
        portamentoActive = heldCount != 0;
    if (portamentoActive && (portamentoMode == kPortaCTAuto || portamentoMode == kPortaCTFingered))
        StartGlide();
    if (heldNotes[n] == 0) {
        ++heldCount;
        heldNotes[n] = uint8_t(heldCount);
    }
    int32_t chosen = n;
    // The note just pressed is marked already, so it takes part in the scan.
    if (heldCount > 1 && notePriority == kLowest) {
        for (int32_t k = 0; k < 128; ++k)
            if (heldNotes[k]) {
                chosen = k;
                break;
            }
    } else if (heldCount > 1 && notePriority == kHighest) {
        for (int32_t k = 127; k >= 0; --k)
            if (heldNotes[k]) {
                chosen = k;
                break;
            }
    }
    noteVelocity = velocity;
    currentNote = float(chosen);
    // "Retrig Off" with the gate open: the pitch moves, the envelopes go on.
    if (gateOpen && retriggerMode == 1) return;
    StartVoice();
}

void BrelCorvane::StartVoice() {
    triggerSamplesLeft = triggerLengthSamples;
    randomState = BR::NextRandomState(randomState);
    randomTuning = BR::RandomStateToFloat(randomState);
    gateOpen = true;
    for (int32_t e = 0; e < kNumEnvelopes; ++e)
        BR::envNoteOn(envelopes[e], noteVelocity, envParameters[e], sampleRate);
}

void BrelCorvane::ReleaseEnvelopes() {
    for (int32_t e = 0; e < kNumEnvelopes; ++e)
        BR::envNoteOff(envelopes[e], envParameters[e], sampleRate);
}

void BrelCorvane::NoteOff(int32_t note, float velocity) {
    const int32_t n = ClampNote(note);
    if (heldNotes[n]) {
        heldNotes[n] = 0;
        --heldCount;
    }
    int32_t fallback = -1;
    if (heldCount != 0) {
        if (notePriority == kLowest) {
            for (int32_t k = 0; k < 128 && fallback < 0; ++k)
                if (heldNotes[k]) fallback = k;
        } else if (notePriority == kHighest) {
            for (int32_t k = 127; k >= 0 && fallback < 0; --k)
                if (heldNotes[k]) fallback = k;
        } else {
            // The latest sequence number; among equal numbers the lowest note, as the scan runs upward.
            int32_t newest = 0;
            for (int32_t k = 0; k < 128; ++k)
                if (heldNotes[k] > newest) {
                    newest = heldNotes[k];
                    fallback = k;
                }
        }
    }
    if (fallback >= 0) {
        if (float(fallback) == currentNote) return;
        NoteOnSteps(fallback, noteVelocity);
        return;
    }
    if (sustainPedal) return;
    releaseVelocity = velocity;
    gateOpen = false;
    ReleaseEnvelopes();
}

void BrelCorvane::SustainPedal(bool on) {
    if (on == sustainPedal) return;
    sustainPedal = on;
    if (!on && gateOpen && heldCount == 0) {
        releaseVelocity = 1.0f;
        gateOpen = false;
        ReleaseEnvelopes();
    }
}

void BrelCorvane::AllGatesOff() {
    gateOpen = false;
    sustainPedal = false;
    for (BR::Envelope& envelope : envelopes) {
        envelope.level = 0.0f;
        envelope.stageIndex = BR::kEnvFinished;
    }
    std::memset(heldNotes, 0, sizeof heldNotes);
    heldCount = 0;
    currentNote = 60.0f;
}

void BrelCorvane::AllNotesOff() {
    // With the pedal down the envelopes stay in their stage while the gate closes.
    for (int32_t n = 0; n < 128; ++n)
        if (heldNotes[n]) NoteOff(n, 1.0f);
    heldCount = 0;
    gateOpen = false;
}

}  // namespace BrelCorvaneVoiceController
