// The per-block record a host hands to RenderAudio, and the MIDI packets of its input node.
#pragma once

#include <cstdint>

#include "HostInterfaces.h"

class BrelCorvaneBase;

namespace BR {

// One host MIDI packet: 16 bytes, time stamp in frames from the block's start.
struct HostMidiPacket {
    uint32_t timeStamp;
    uint32_t length;
    uint8_t data[4];
    uint8_t immediate;
};
static_assert(sizeof(HostMidiPacket) == 16);

struct HostMidiStream {
    uint32_t numPackets;
    const HostMidiPacket* packets;
};

struct HostMidiNode {
    HostMidiStream stream;
};

constexpr int kMaxSidechains = 6;
constexpr int kMaxFurtherMidiNodes = 15;

// Pointer-sized fields in a fixed order; field numbers in comments.
struct RenderRecord {
    float** inputs;                                   // 0
    float** outputs;                                  // 1
    int32_t* sidechainIndex[kMaxSidechains];          // 2-7: host input channel, 0 = not connected
    int32_t* bufferLength;                            // 8
    int64_t* clock;                                   // 9
    HostMidiNode* inputMIDI;                          // 10
    HostMidiNode* globalMIDI;                         // 11
    HostTransport* transport;                         // 12
    HostMidiNode* furtherMIDI[kMaxFurtherMidiNodes];  // 13-27
    BrelCorvaneBase** privateData;                    // 28
    float* meters;                                    // 29
};
static_assert(sizeof(RenderRecord) == 30 * sizeof(void*));

// Field contents before the host fills a record: the instance pointer in field 28, zero elsewhere.
void ResetFieldData(RenderRecord& record, BrelCorvaneBase** instanceSlot);

// The host's algorithm callback over an array of record pointers.
void AlgorithmCallback(RenderRecord* const* begin, RenderRecord* const* end);

}  // namespace BR
