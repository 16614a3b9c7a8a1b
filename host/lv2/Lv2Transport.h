// The host's time:Position objects turned into the driver's transport. LV2 tells no loop range, so
// a backward jump while playing is taken as a loop wrap whose length is the jump.
#pragma once

#include <lv2/atom/atom.h>

#include <cstdint>

#include "host/DriverTransport.h"
#include "host/lv2/Lv2Urids.h"

namespace BR {

// The fields of one time:Position object; each flag tells whether the host sent the field.
struct Lv2Position {
    bool hasFrame = false, hasSpeed = false, hasBpm = false, hasBar = false, hasBarBeat = false,
         hasBeat = false, hasBeatsPerBar = false, hasBeatUnit = false;
    int64_t frame = 0, bar = 0;
    double speed = 0, bpm = 0, barBeat = 0, beat = 0, beatsPerBar = 0;
    int32_t beatUnit = 0;
};

// Reads a time:Position object (numbers of any atom number type). False for any other object.
bool ParseLv2Position(const LV2_Atom_Object* object, const Lv2Urids& urids, Lv2Position& out);

class Lv2Transport {
public:
    explicit Lv2Transport(double sampleRate);

    // False until the first position arrives: until then the module runs without a transport.
    bool Known() const { return known; }
    DriverTransport& Driver() { return transport; }

    // Applies a position at the point the driver's transport has been advanced to. Returns true for a
    // loop wrap: the loop range [new position, old position) is then set for the next block only.
    bool Apply(const Lv2Position& position);
    // Clears the loop range of a wrap once its first block has been rendered.
    void EndWrapBlock();

private:
    DriverTransport transport;
    bool known = false;
};

}  // namespace BR
