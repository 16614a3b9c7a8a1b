// The block path on the host's real-time thread: checks, queue drain, MIDI intake, slicing at MIDI
// time stamps, and the bypass copy. Allocates nothing except for system exclusive messages.
#include <algorithm>
#include <cstring>

#include "BrelCorvaneBase.h"
#include "ModuleServices.h"

#if defined(__SSE2__) || defined(_M_X64)
#include <emmintrin.h>
#endif

namespace BR {

void ResetFieldData(RenderRecord& record, BrelCorvaneBase** instanceSlot) {
#if defined(__SSE2__) || defined(_M_X64)
    // Sixteen bytes a store, unrolled: the compiler turns a memset of this fixed size, or a loop it
    // recognises as one, into `rep stos`, whose start-up costs more than all these stores, at every
    // host block.
    static_assert(sizeof record % 16 == 0);
    unsigned char* bytes = reinterpret_cast<unsigned char*>(&record);
    const __m128i zero = _mm_setzero_si128();
#pragma GCC unroll 16
    for (size_t k = 0; k < sizeof record; k += 16)
        _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes + k), zero);
#else
    std::memset(&record, 0, sizeof record);
#endif
    record.privateData = instanceSlot;
}

void AlgorithmCallback(RenderRecord* const* begin, RenderRecord* const* end) {
    const uintptr_t first = reinterpret_cast<uintptr_t>(begin);
    const uintptr_t last = reinterpret_cast<uintptr_t>(end);
    if (first > last) return;
    const size_t count = (last - first + 7) / 8;
    for (size_t i = 0; i < count; ++i) {
        RenderRecord* record = begin[i];
        if (record && record->privateData && *record->privateData)
            (*record->privateData)->RenderAudio(record);
    }
}

}  // namespace BR

void BrelCorvaneBase::RenderAudio(BR::RenderRecord* record) {
    const uint32_t frames = record->bufferLength ? uint32_t(std::max(*record->bufferLength, 0)) : 0;
    if (!controller) return;
    if (controller != stemController) {
        // A host's stem formats are part of the instance's description and never change while it
        // lives: they are asked for once per controller, not at every block.
        stemController = controller;
        hostInputChannels = BR::StemChannelCount(controller->GetInputStemFormat());
        hostOutputChannels = BR::StemChannelCount(controller->GetOutputStemFormat());
    }
    const int32_t hostInputs = hostInputChannels;
    const int32_t hostOutputs = hostOutputChannels;
    if (numSidechains == 0 && numInputs != 0 && hostInputs != numInputs) return;
    if (numAuxOutputs == 0 && hostOutputs != numOutputs) return;

    const bool bypass = masterBypass && masterBypass->GetValueAsBool();
    // A record without a transport falls back to the host's own, never to an earlier block's, which
    // may be gone.
    transport = record->transport ? record->transport : initialTransport;

    if (!NothingToPoll()) PollParameters();
    if (!BeginBlock(frames)) {
        MarkAllRowsChanged();  // the module saw none of this block's changes
        return;
    }

    while (BR::MessageQueueItem* item = toAudioQueue.Read())
        HandleQueuedMessage(item);

    // A node without packets leaves the intake as it is; most blocks carry none.
    if (record->inputMIDI && record->inputMIDI->stream.numPackets != 0) TransferHostMIDI(record->inputMIDI);

    float* inputs[BR::kMaxModuleChannels];
    const int32_t pointerCount = std::min(numInputPointers, BR::kMaxModuleChannels);
    auto hostInput = [&](int32_t channel) {
        return channel < hostInputs && record->inputs ? record->inputs[channel] : silence;
    };
    if (numInputs == 0) {
        for (int32_t i = 0; i < pointerCount; ++i)
            inputs[i] = silence;
    } else if (numSidechains != 0) {
        inputs[0] = hostInput(0);
        inputs[1] = pointerCount > 1 ? hostInput(1) : silence;
        // A record has six sidechain fields; a module that declares more is served six, and its
        // entries behind them read silence rather than whatever the stack held. An unconnected
        // sidechain (index 0) reads silence too.
        const int32_t served = std::min(numSidechains, BR::kMaxSidechains);
        for (int32_t i = 2; i < pointerCount; ++i) {
            const int32_t k = i - 2;
            const int32_t index = k < served && record->sidechainIndex[k] ? *record->sidechainIndex[k] : 0;
            inputs[i] = index != 0 && record->inputs ? record->inputs[index] : silence;
        }
    } else {
        for (int32_t i = 0; i < pointerCount; ++i)
            inputs[i] = record->inputs[i];
    }

    float* outputs[BR::kMaxModuleChannels];
    const int32_t outputCount = std::min(numOutputs, BR::kMaxModuleChannels);
    for (int32_t i = 0; i < outputCount; ++i)
        outputs[i] = record->outputs[i];

    ProcessBlock(inputs, outputs, frames);

    if (bypass) {
        for (int32_t i = 0; i < outputCount; ++i) {
            float* out = record->outputs[i];
            if (i < hostInputs && record->inputs) {
                if (out != record->inputs[i]) std::memmove(out, record->inputs[i], frames * sizeof(float));
            } else {
                std::memset(out, 0, frames * sizeof(float));
            }
        }
    }

    EndBlock(frames);
}

void BrelCorvaneBase::ProcessBlock(float** inputs, float** outputs, uint32_t frames) {
    if (frames == 0) return;
    BR::MessageQueueItem* item = midiToAudioQueue.Read();
    if (!item) {
        // No MIDI waiting, what most blocks are: the block is one slice, given the block's own
        // pointer arrays (nothing reads them after it, so the slice may move them as it likes).
        BeginSlice(frames, 0);
        ProcessSlice(inputs, outputs, frames);
        return;
    }
    ProcessSlices(inputs, outputs, frames, item);
}

void BrelCorvaneBase::ProcessSlices(float** inputs, float** outputs, uint32_t frames,
                                    BR::MessageQueueItem* item) {
    uint32_t position = 0;
    uint32_t remaining = frames;
    float* scratchInputs[BR::kMaxModuleChannels];
    float* scratchOutputs[BR::kMaxModuleChannels];
    const int32_t inputCount = std::min(numInputPointers, BR::kMaxModuleChannels);
    const int32_t outputCount = std::min(numOutputs, BR::kMaxModuleChannels);

    for (bool first = true; remaining != 0; first = false) {
        if (!first) item = midiToAudioQueue.Read();
        uint32_t run = remaining;
        if (item) {
            if (item->timeStamp <= position) {
                DispatchMIDI(item);
                continue;
            }
            run = std::min(item->timeStamp - position, remaining);
            position = item->timeStamp;
        }
        if (run != 0) {
            BeginSlice(run, 0);
            if (run == remaining) {
                ProcessSlice(inputs, outputs, run);  // the last slice: as in ProcessBlock
            } else {
                std::copy(inputs, inputs + inputCount, scratchInputs);
                std::copy(outputs, outputs + outputCount, scratchOutputs);
                ProcessSlice(scratchInputs, scratchOutputs, run);
                for (int32_t i = 0; i < inputCount; ++i)
                    inputs[i] += run;
                for (int32_t i = 0; i < outputCount; ++i)
                    outputs[i] += run;
            }
            remaining -= run;
        }
        if (item) DispatchMIDI(item);
    }
}

void BrelCorvaneBase::DispatchMIDI(BR::MessageQueueItem* item) {
    if (item->kind != BR::kMessageShortMIDI) return;
    const int32_t channel = item->channel, data1 = item->dataByte1, data2 = item->dataByte2;
    switch (item->status) {
        case 0x90:
            if (data2 != 0) {
                HandleNoteOn(channel, data1, data2);
            } else {
                HandleNoteOff(channel, data1, data2);
            }
            break;
        case 0x80:
            HandleNoteOff(channel, data1, data2);
            break;
        case 0xB0:
            HandleControlChange(channel, data1, data2);
            break;
        case 0xE0:
            HandlePitchBend(channel, data1, data2);
            break;
        default:
            break;
    }
    if (services) services->HandleMIDI(*item);
    if (BR::GlobalMIDIHook hook = BR::GetGlobalMIDIHook()) hook(*this, *item);
}

void BrelCorvaneBase::TransferHostMIDI(const BR::HostMidiNode* node) {
    if (!node || !node->stream.packets) return;
    for (uint32_t p = 0; p < node->stream.numPackets; ++p) {
        const BR::HostMidiPacket& packet = node->stream.packets[p];
        if (!inSysEx && packet.data[0] != 0xF0) {
            midiToAudioQueue.Write(packet.data[0] & 0xF0, packet.data[0] & 0x0F, packet.data[1] & 0x7F,
                                   packet.data[2] & 0x7F, packet.timeStamp);
            continue;
        }
        inSysEx = 1;
        uint32_t n = std::min<uint32_t>(packet.length, 4);
        const uint8_t* bytes = packet.data;
        if (sysExBuffer.empty()) {
            if (n == 0) continue;
            ++bytes;  // the 0xF0 that opens the message, or the first byte of a continuation
            --n;
        }
        for (uint32_t i = 0; i < n; ++i) {
            sysExBuffer.push_back(bytes[i]);
            if (bytes[i] == 0xF7) {
                midiToAudioQueue.WriteSysEx(sysExBuffer.data(), uint32_t(sysExBuffer.size()));
                sysExBuffer.clear();
                inSysEx = 0;
            }
        }
    }
}
