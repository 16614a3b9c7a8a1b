// Block cutting, MIDI packets and the render record of the shared host driver.
#include "HostDriver.h"

#include <algorithm>
#include <cstring>

#include "framework/InstanceRegistry.h"

namespace BR {

HostDriver::HostDriver(std::unique_ptr<BrelCorvaneBase> module_, const CatalogueEntry& entry_,
                       float sampleRate, uint32_t maxBlockSize_)
    : module(std::move(module_)), entry(entry_), maxBlockSize(std::max<uint32_t>(1, maxBlockSize_)) {
    controller.sampleRate = sampleRate;
    controller.inputStem = entry.inputStem;
    controller.outputStem = entry.outputStem;
    module->Initialize(&controller, nullptr, nullptr);
    module->SetMaxBlockSize(maxBlockSize);
    instanceSlot = module.get();
    packets.resize(kMaxPackets);
    zeros.assign(maxBlockSize, 0.0f);
    inputPointers.resize(size_t(std::max(NumHostInputs(), 2)));
    outputPointers.resize(size_t(std::max(NumHostOutputs(), 1)));
    numHostInputs = uint32_t(std::max(NumHostInputs(), 0));
    numHostOutputs = uint32_t(std::max(NumHostOutputs(), 0));
    // Sidechain k arrives on host input channel 2 + k.
    for (int32_t k = 0; k < kMaxSidechains; ++k)
        sidechainIndex[size_t(k)] = k < module->NumSidechains() ? 2 + k : 0;

    // Modules only read the record, so the fields that never change are filled here once.
    ResetFieldData(record, &instanceSlot);
    record.inputs = inputPointers.data();
    record.outputs = outputPointers.data();
    for (int32_t k = 0; k < kMaxSidechains; ++k)
        record.sidechainIndex[k] = &sidechainIndex[size_t(k)];
    record.bufferLength = &blockLength;
    node.stream.packets = packets.data();
    record.inputMIDI = &node;
}

HostDriver::~HostDriver() {
    // Out of the registry first: a /brel/ dispatch of another instance's server, which holds the
    // registry's lock, then either finishes before this returns or no longer finds the module, and
    // never reaches it while its derived part is being destroyed.
    InstanceRegistry::RemoveInstance(module.get());
    // The module's server threads and script timers end before any part of it is taken down.
    module->ShutdownModule();
}

int32_t HostDriver::ParameterIndexByName(const std::string& name) const {
    if (name == "Master Bypass") return 0;
    const ParameterDefinition* table = module->ParameterTable();
    for (int32_t k = 0; k < module->NumTableParameters(); ++k)
        if (name == table[k].name) return k + 1;
    return -1;
}

bool HostDriver::SetParameterByName(const std::string& name, float value) {
    const int32_t index = ParameterIndexByName(name);
    if (index < 0) return false;
    return module->SetParameterValue(index, value) == kNoErr;
}

// The part of a module block that every block runs: channel pointers at `offset`, the length,
// the transport, and the module's render call. Inline in both callers.
inline void HostDriver::RenderRecordBlock(const float* const* inputs, float* const* outputs, uint32_t offset,
                                          uint32_t frames, uint32_t numPackets) {
    node.stream.numPackets = numPackets;
    float** inputSlots = inputPointers.data();
    const uint32_t numSlots = uint32_t(inputPointers.size());
    const uint32_t numSources = inputs ? std::min(numHostInputs, numSlots) : 0;
    for (uint32_t i = 0; i < numSources; ++i)
        inputSlots[i] = inputs[i] ? const_cast<float*>(inputs[i]) + offset : zeros.data();
    for (uint32_t i = numSources; i < numSlots; ++i)
        inputSlots[i] = zeros.data();
    float** outputSlots = outputPointers.data();
    for (uint32_t i = 0; i < numHostOutputs; ++i)
        outputSlots[i] = outputs[i] + offset;

    blockLength = int32_t(frames);
    record.transport = currentTransport;
    // What the algorithm callback does with a record that holds an instance, without its checks of
    // a record array: this record always holds this driver's module.
    module->RenderAudio(&record);
    renderedFrames += frames;
    if (currentTransport && advanceTransport) currentTransport->Advance(frames);
}

void HostDriver::Process(const float* const* inputs, float* const* outputs, uint32_t frames,
                         const TimedMidi* midi, uint32_t numMidi) {
    if (frames <= maxBlockSize && numMidi == 0) {
        // One module block without MIDI: what most host blocks are.
        if (frames != 0) RenderRecordBlock(inputs, outputs, 0, frames, 0);
        return;
    }
    ProcessPieces(inputs, outputs, frames, midi, numMidi);
}

// Out of line, so that the common case above saves and restores no more registers than it uses.
[[gnu::noinline]] void HostDriver::ProcessPieces(const float* const* inputs, float* const* outputs,
                                                 uint32_t frames, const TimedMidi* midi, uint32_t numMidi) {
    uint32_t done = 0;
    uint32_t nextMidi = 0;
    while (done < frames) {
        const uint32_t n = std::min(maxBlockSize, frames - done);
        uint32_t firstMidi = nextMidi;
        while (nextMidi < numMidi && midi[nextMidi].frame < done + n)
            ++nextMidi;
        RenderOne(inputs, outputs, done, n, midi + firstMidi, nextMidi - firstMidi);
        done += n;
    }
}

void HostDriver::RenderOne(const float* const* inputs, float* const* outputs, uint32_t offset,
                           uint32_t frames, const TimedMidi* midi, uint32_t numMidi) {
    uint32_t numPackets = 0;
    for (uint32_t m = 0; m < numMidi; ++m) {
        const TimedMidi& event = midi[m];
        const uint32_t stamp = event.frame - offset;
        const bool sysEx = event.length > 0 && event.bytes[0] == 0xF0;
        // Short messages travel in one packet, system exclusive in packets of four bytes.
        const uint32_t chunk = sysEx ? 4 : std::min<uint32_t>(event.length, 4);
        for (uint32_t at = 0; at < event.length || (at == 0 && event.length == 0);
             at += std::max<uint32_t>(chunk, 1)) {
            if (numPackets == kMaxPackets) break;
            HostMidiPacket& packet = packets[numPackets++];
            std::memset(&packet, 0, sizeof packet);
            packet.timeStamp = stamp;
            packet.length = std::min<uint32_t>(chunk, event.length - at);
            std::memcpy(packet.data, event.bytes + at, packet.length);
            if (!sysEx) break;
        }
    }
    RenderRecordBlock(inputs, outputs, offset, frames, numPackets);
}

}  // namespace BR
