// CV To MIDI: parameter table, block settings, the per-sample note and controller logic, device name.
#include "CVToMIDI.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "framework/ModuleServices.h"
#include "framework/PropertyData.h"
#include "framework/StateChunkStore.h"

namespace BrelCorvaneCVToMIDI {

namespace {

#define CHANNEL_ROWS(S)                                                                                    \
    {"Enable " S, BR::kUnitBoolean, 0, 1, 1}, {"Channel " S, BR::kUnitIndexed, 1, 16, 1},                  \
        {"Enable CC " S, BR::kUnitBoolean, 0, 1, 0}, {"Send CC " S, BR::kUnitIndexed, 0, 127, 1},          \
        {"CC Min " S, BR::kUnitGeneric, -1, 1, -1}, {"CC Max " S, BR::kUnitGeneric, -1, 1, 1},             \
        {"Enable Note " S, BR::kUnitBoolean, 0, 1, 0}, {"Note On Mode " S, BR::kUnitIndexed, 0, 2, 0},     \
        {"Note Off Mode " S, BR::kUnitIndexed, 0, 2, 1}, {"Gate Close Msg " S, BR::kUnitIndexed, 0, 1, 1}, \
        {"Pitch Centre " S, BR::kUnitGeneric, 0, 128, 48},                                                 \
        {"Pitch Slope " S, BR::kUnitGeneric, -128, 128, 48},                                               \
        {"Gate Threshold " S, BR::kUnitGeneric, -1, 1, 0.01f}, {                                           \
        "Max Note Length " S, BR::kUnitMilliseconds, 0, 1000, 0                                            \
    }

BR::ParameterDefinition parameterTable[kNumParameters] = {
    {"OSC Port Offset", BR::kUnitIndexed, 0, 100, 0},
    CHANNEL_ROWS("L"),
    CHANNEL_ROWS("R"),
    {"Max Rate L", BR::kUnitFrequency, 10, 1000, 1000},
    {"Max Rate R", BR::kUnitFrequency, 10, 1000, 1000},
    {"Send To Learner", BR::kUnitBoolean, 0, 1, 0},
};
#undef CHANNEL_ROWS

float defaultsValues[kNumParameters];
BR::PresetDefinition presetTable[] = {{"Defaults", 0, defaultsValues}};

constexpr BR::ModuleConfig kConfig{2, 2, 0, 0, kOSCPortOffset, 1, presetTable, kNumParameters, parameterTable,
                                   -1};

BR::CountedTextList* NamedList(int32_t row) {
    static BR::CountedTextList* onMode = new BR::CountedTextList({"Continuous", "Gate Only", "Gated"});
    static BR::CountedTextList* offMode = new BR::CountedTextList({"None", "Normal", "Legato"});
    static BR::CountedTextList* closeMsg = new BR::CountedTextList({"None", "Note Off"});
    if (row < kEnableL || row > 2 * kRowsPerChannel) return nullptr;
    switch (row - (row > kRowsPerChannel ? kRowsPerChannel : 0)) {
        case kNoteOnModeL:
            return onMode;
        case kNoteOffModeL:
            return offMode;
        case kGateCloseMsgL:
            return closeMsg;
        default:
            return nullptr;
    }
}

}  // namespace

BrelCorvane::BrelCorvane() : BrelCorvaneBase(kConfig) {
    BrelCorvane::InitModule();
}

BrelCorvane::~BrelCorvane() {
    sender.Stop();
}

void BrelCorvane::InitModule() {
    for (int c = 0; c < 2; ++c) {
        settings[c] = ChannelSettings();
        state[c] = ChannelState();
    }
    sender.Start();
    for (BR::MessageQueueItem& item : learnerItems)
        item.kind = 1;
    learnerIndex = 0;
    BrelCorvaneBase::InitModule();
}

void BrelCorvane::ShutdownModule() {
    sender.Stop();
    BrelCorvaneBase::ShutdownModule();
}

bool BrelCorvane::BeginBlock(uint32_t frames) {
    if (!BrelCorvaneBase::BeginBlock(frames)) return false;
    sliceStart = 0;
    if (!RowsChanged()) return true;
    nsPerSample = uint64_t(1e9 / double(sampleRate));
    sendToLearner = BlockValue(kSendToLearner) >= 0.5f;
    for (int c = 0; c < 2; ++c) {
        ChannelSettings& s = settings[c];
        const int32_t row = c * kRowsPerChannel;
        s.enable = BlockValue(row + kEnableL) >= 0.5f;
        s.midiChannel = std::clamp(int32_t(BlockValue(row + kChannelL)) - 1, 0, 15);
        s.minInterval = int32_t(sampleRate / BlockValue(kMaxRateL + c));
        s.enableCC = BlockValue(row + kEnableCCL) >= 0.5f;
        // A switched-off group keeps its last values.
        if (s.enableCC) {
            s.ccNumber = std::clamp(int32_t(BlockValue(row + kSendCCL)), 0, 127);
            s.ccMin = BlockValue(row + kCCMinL);
            const float range = BlockValue(row + kCCMaxL) - s.ccMin;
            s.ccScale = std::fabs(range) < 1e-6f ? 0.0f : 128.0f / range;
        }
        s.enableNote = BlockValue(row + kEnableNoteL) >= 0.5f;
        if (s.enableNote) {
            s.noteOnMode = std::clamp(int32_t(BlockValue(row + kNoteOnModeL)), 0, 2);
            s.noteOffMode = std::clamp(int32_t(BlockValue(row + kNoteOffModeL)), 0, 2);
            s.gateCloseMsg = std::clamp(int32_t(BlockValue(row + kGateCloseMsgL)), 0, 1);
            s.pitchCentre = BlockValue(row + kPitchCentreL);
            s.pitchSlope = BlockValue(row + kPitchSlopeL);
            s.gateThreshold = BlockValue(row + kGateThresholdL);
            s.maxNoteSamples = int32_t(BlockValue(row + kMaxNoteLengthL) * 0.001f * sampleRate);
        }
    }
    return true;
}

void BrelCorvane::Send(int32_t c, uint8_t status, uint8_t data1, uint8_t data2, uint32_t frame) {
    const uint8_t statusByte = uint8_t(status | settings[c].midiChannel);
    sender.Write(timeBase + nsPerSample * frame, statusByte, data1, data2);
    if (messageTap) messageTap(tapContext, frame, statusByte, data1, data2);
    if (!sendToLearner) return;
    BR::GlobalMIDIHook hook = BR::GetGlobalMIDIHook();
    if (!hook) return;
    BR::MessageQueueItem& item = learnerItems[learnerIndex];
    learnerIndex = (learnerIndex + 1) & 15;
    item.timeStamp = frame;
    item.status = uint8_t(status & 0xF0);
    item.channel = uint8_t(settings[c].midiChannel);
    item.dataByte1 = data1;
    item.dataByte2 = data2;
    hook(*this, item);
}

int32_t BrelCorvane::NoteValue(int32_t c, float cv) const {
    const float v = settings[c].pitchSlope * cv + settings[c].pitchCentre + 0.5f;
    if (!(v > 0.0f)) return 0;  // NaN too
    return std::min(int32_t(std::min(v, 1e6f)), 127);
}

void BrelCorvane::StartNote(int32_t c, int32_t note, uint32_t frame) {
    ChannelState& st = state[c];
    const int32_t old = st.lastNote;
    if (settings[c].noteOffMode == kOffNormal && old != kNone) Send(c, 0x80, uint8_t(old), 0, frame);
    Send(c, 0x90, uint8_t(note), 64, frame);  // the velocity is always 64
    st.noteRateCountdown = settings[c].minInterval;
    // Legato: the old note ends after the new one began, so that they overlap.
    if (settings[c].noteOffMode == kOffLegato && old != kNone) Send(c, 0x80, uint8_t(old), 0, frame);
    st.noteCountdown = settings[c].maxNoteSamples;
    st.lastNote = st.lastPitch = note;
}

void BrelCorvane::StopNote(int32_t c, uint32_t frame) {
    ChannelState& st = state[c];
    if (st.lastNote == kNone) return;
    Send(c, 0x80, uint8_t(st.lastNote), 0, frame);
    st.lastNote = kNone;
    st.noteRateCountdown = settings[c].minInterval;
}

void BrelCorvane::NoteLengthStep(int32_t c, uint32_t frame) {
    ChannelState& st = state[c];
    if (st.noteCountdown <= 0) return;
    if (--st.noteCountdown == 0 && settings[c].noteOffMode != kOffNone) StopNote(c, frame);
}

void BrelCorvane::MaybeSendCC(int32_t c, float cv, uint32_t frame) {
    ChannelState& st = state[c];
    if (st.ccRateCountdown > 0) {
        --st.ccRateCountdown;
        return;
    }
    if (!settings[c].enableCC) return;
    const float x = (cv - settings[c].ccMin) * settings[c].ccScale + 0.5f;
    const int32_t v = !(x > 0.0f) ? 0 : std::min(int32_t(std::min(x, 1e6f)), 127);
    if (v == st.lastCC) return;
    Send(c, 0xB0, uint8_t(settings[c].ccNumber), uint8_t(v), frame);
    st.ccRateCountdown = settings[c].minInterval;
    st.lastCC = v;
}

void BrelCorvane::ProcessSlice(float** inputs, float** outputs, uint32_t frames) {
    for (int32_t c = 0; c < 2; ++c) {
        const float* cv = inputs[c];
        const float* gate = inputs[1 - c];
        if (outputs[c] != cv) std::memcpy(outputs[c], cv, frames * sizeof(float));
        const ChannelSettings& s = settings[c];
        ChannelState& st = state[c];
        if (!s.enable || frames == 0) continue;
        st.lastSample = cv[frames - 1];
        const uint32_t base = sliceStart;
        if (s.noteOffMode != kOffNone && st.lastNote != kNone && !s.enableNote) StopNote(c, base);
        if (!s.enableNote) {
            if (s.enableCC)
                for (uint32_t i = 0; i < frames; ++i)
                    MaybeSendCC(c, cv[i], base + i);
            continue;
        }
        if (s.noteOnMode == kContinuous) {
            for (uint32_t i = 0; i < frames; ++i) {
                if (st.noteRateCountdown > 0) {
                    --st.noteRateCountdown;
                } else {
                    const int32_t note = NoteValue(c, cv[i]);
                    if (note != st.lastPitch) StartNote(c, note, base + i);
                }
                NoteLengthStep(c, base + i);
                MaybeSendCC(c, cv[i], base + i);
            }
            continue;
        }
        if (!gate) continue;  // no gate input: nothing at all
        const float t = s.gateThreshold;
        for (uint32_t i = 0; i < frames; ++i) {
            if (st.noteRateCountdown > 0) --st.noteRateCountdown;
            // Opens strictly above t and closes strictly below: a gate resting at t keeps its state.
            if (!st.gateOpen) {
                if (gate[i] > t) {
                    st.gateOpen = 1;
                    StartNote(c, NoteValue(c, cv[i]), base + i);  // even the same note again
                    continue;
                }
            } else {
                if (gate[i] < t) {
                    st.gateOpen = 0;
                    if (s.gateCloseMsg == 1) StopNote(c, base + i);
                    continue;
                }
                if (s.noteOnMode == kGated && st.noteRateCountdown == 0) {
                    const int32_t note = NoteValue(c, cv[i]);
                    if (note != st.lastPitch) StartNote(c, note, base + i);
                }
            }
            NoteLengthStep(c, base + i);
            MaybeSendCC(c, cv[i], base + i);
        }
    }
    sliceStart += frames;
}

uint32_t BrelCorvane::GetParameterFlags(int32_t tableIndex) {
    return tableIndex == kOSCPortOffset || tableIndex == kMaxNoteLengthL ||
                   tableIndex == kMaxNoteLengthL + kRowsPerChannel
               ? BR::kDisplayStringFlag
               : 0;
}

int32_t BrelCorvane::GetParameterDisplayString(BR::DisplayStringRequest& request) {
    // "Max Note Length" reads "Off" at 0 as the port row does.
    const bool offAtZero = request.index == kOSCPortOffset || request.index == kMaxNoteLengthL ||
                           request.index == kMaxNoteLengthL + kRowsPerChannel;
    return OffDisplayString(request, offAtZero, false);
}

int32_t BrelCorvane::GetParameterValueStrings(int32_t tableIndex, BR::CountedTextList** out) {
    return BR::HandOutValueStrings(NamedList(tableIndex), out);
}

int32_t BrelCorvane::GetProperty(uint32_t id, void* data) {
    if (id == kPropertyDestinationName) return BR::PutProperty(data, destinationName.c_str());
    return BrelCorvaneBase::GetProperty(id, data);
}

int32_t BrelCorvane::GetPropertyInfo(uint32_t id, uint32_t* size, bool* writable) {
    if (id != kPropertyDestinationName) return BrelCorvaneBase::GetPropertyInfo(id, size, writable);
    if (size) *size = uint32_t(destinationName.size() + 1);
    if (writable) *writable = true;
    return BR::kNoErr;
}

int32_t BrelCorvane::SetProperty(uint32_t id, const void* data, uint32_t size) {
    if (id != kPropertyDestinationName) return BrelCorvaneBase::SetProperty(id, data, size);
    const char* text = static_cast<const char*>(data);
    destinationName.assign(text ? text : "", text ? strnlen(text, size) : 0);
    sender.Open(destinationName);
    return BR::kNoErr;
}

void BrelCorvane::SaveExtraChunks(BR::StateChunkStore& store) {
    store.Add(kTagDestination, destinationName.c_str(), uint32_t(destinationName.size() + 1));
}

void BrelCorvane::LoadExtraChunks(const BR::StateChunkStore& store) {
    BR::StateChunkStore::Blob blob;
    if (!store.Find(kTagDestination, blob) || !blob.data) return;
    const char* text = reinterpret_cast<const char*>(blob.data);
    const std::string name(text, strnlen(text, blob.length));
    SetPropertyAndNotify(kPropertyDestinationName, name.c_str(), uint32_t(name.size() + 1));
}

BrelCorvaneBase* Create() {
    return new BrelCorvane;
}

}  // namespace BrelCorvaneCVToMIDI
