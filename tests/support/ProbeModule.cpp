// The probe module and the hand-filled host.
#include "ProbeModule.h"

#include <cstring>

namespace BR::Test {

namespace {
ParameterDefinition probeTable[kNumProbeRows] = {
    {"Gain", kUnitGeneric, -1, 1, 0},
    {"Mode", kUnitIndexed, 0, 2, 0},
    {"Switch", kUnitBoolean, 0, 1, 0},
    {"OSC Port Offset", kUnitIndexed, 0, 100, 0},
    {"Smoothing L", kUnitMilliseconds, -500, 500, 0},
    {"Cutoff", kUnitFrequency, 20, 20000, 1000},
};
float probeDefaults[kNumProbeRows];
PresetDefinition probePresets[] = {{"Defaults", 0, probeDefaults}};

ModuleConfig ConfigOf(ProbeLayout layout) {
    return ModuleConfig{layout.numInputs,
                        layout.numOutputs,
                        layout.numSidechains,
                        layout.numAuxOutputs,
                        kOSCPort,
                        1,
                        probePresets,
                        kNumProbeRows,
                        probeTable,
                        -1};
}
}  // namespace

ProbeModule::ProbeModule(ProbeLayout layout) : BrelCorvaneBase(ConfigOf(layout)) {
    calls.reserve(1024);
    sliceInputs.reserve(64);
    ProbeModule::InitModule();
}

bool ProbeModule::BeginBlock(uint32_t frames) {
    if (!BrelCorvaneBase::BeginBlock(frames)) return false;
    blockPosition = 0;
    calls.push_back({"BeginBlock", frames, 0, 0, 0, 0});
    return true;
}

void ProbeModule::EndBlock(uint32_t frames) {
    calls.push_back({"EndBlock", frames, blockPosition, 0, 0, 0});
}

void ProbeModule::ProcessSlice(float** inputs, float** outputs, uint32_t frames) {
    calls.push_back({"Slice", frames, blockPosition, 0, 0, 0});
    if (sliceInputs.size() < sliceInputs.capacity())
        sliceInputs.emplace_back(inputs, inputs + numInputPointers);
    for (int32_t c = 0; c < numOutputs; ++c) {
        const float* x = c < numInputPointers ? inputs[c] : silence;
        for (uint32_t i = 0; i < frames; ++i)
            outputs[c][i] = outputValue + x[i];
        // Scratch pointers are the module's to move.
        outputs[c] += frames;
    }
    blockPosition += frames;
}

void ProbeModule::HandleQueuedMessage(MessageQueueItem* item) {
    calls.push_back({"Queued", 0, blockPosition, int32_t(item->Command()), 0, 0});
}
void ProbeModule::HandleNoteOn(int32_t channel, int32_t note, int32_t velocity) {
    calls.push_back({"NoteOn", 0, blockPosition, channel, note, velocity});
}
void ProbeModule::HandleNoteOff(int32_t channel, int32_t note, int32_t velocity) {
    calls.push_back({"NoteOff", 0, blockPosition, channel, note, velocity});
}
void ProbeModule::HandleControlChange(int32_t channel, int32_t controller, int32_t value) {
    calls.push_back({"CC", 0, blockPosition, channel, controller, value});
}
void ProbeModule::HandlePitchBend(int32_t channel, int32_t lsb, int32_t msb) {
    calls.push_back({"Bend", 0, blockPosition, channel, lsb, msb});
}

int32_t ProbeModule::GetParameterValueStrings(int32_t tableIndex, CountedTextList** out) {
    if (tableIndex != kMode) return kErrInvalidParameter;
    static CountedTextList* names = new CountedTextList({"Free", "Tempo", "A name far longer than the text"});
    names->Retain();
    *out = names;
    return kNoErr;
}

uint32_t ProbeModule::GetParameterFlags(int32_t tableIndex) {
    return tableIndex == kOSCPort || tableIndex == kSmoothing ? kDisplayStringFlag : 0;
}

int32_t ProbeModule::GetParameterDisplayString(DisplayStringRequest& request) {
    return OffDisplayString(request, request.index == kOSCPort, request.index == kSmoothing);
}

ManualHost::ManualHost(BrelCorvaneBase& module_, uint32_t inputStem, uint32_t outputStem, float sampleRate)
    : module(module_), slot(&module_) {
    controller.sampleRate = sampleRate;
    controller.inputStem = inputStem;
    controller.outputStem = outputStem;
    module.Initialize(&controller, nullptr, nullptr);
}

void ManualHost::Render(std::vector<float*> inputs, std::vector<float*> outputs, uint32_t frames,
                        std::vector<HostMidiPacket> packets) {
    HostMidiNode node{{uint32_t(packets.size()), packets.data()}};
    int32_t length = int32_t(frames);
    RenderRecord record;
    ResetFieldData(record, &slot);
    record.inputs = inputs.data();
    record.outputs = outputs.data();
    for (int k = 0; k < kMaxSidechains; ++k)
        record.sidechainIndex[k] = &sidechainIndex[k];
    record.bufferLength = &length;
    record.inputMIDI = &node;
    module.RenderAudio(&record);
}

HostMidiPacket Packet(uint32_t timeStamp, std::vector<uint8_t> bytes) {
    HostMidiPacket packet{};
    packet.timeStamp = timeStamp;
    packet.length = uint32_t(bytes.size());
    std::memcpy(packet.data, bytes.data(), std::min<size_t>(bytes.size(), 4));
    return packet;
}

}  // namespace BR::Test
