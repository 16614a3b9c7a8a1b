// time:Position parsing, musical position in quarter notes, and loop-wrap detection.
#include "Lv2Transport.h"

#include <lv2/atom/util.h>

#include <algorithm>
#include <cmath>

namespace BR {

namespace {

// Quarter notes of host rounding: four ticks of 1/1920 beat.
constexpr double kHostRounding = 4.0 / 1920.0;

bool ReadNumber(const LV2_Atom* atom, const Lv2Urids& urids, double& out) {
    if (!atom) return false;
    if (atom->type == urids.atomFloat && atom->size >= sizeof(float)) {
        out = double(reinterpret_cast<const LV2_Atom_Float*>(atom)->body);
    } else if (atom->type == urids.atomDouble && atom->size >= sizeof(double)) {
        out = reinterpret_cast<const LV2_Atom_Double*>(atom)->body;
    } else if (atom->type == urids.atomInt && atom->size >= sizeof(int32_t)) {
        out = double(reinterpret_cast<const LV2_Atom_Int*>(atom)->body);
    } else if (atom->type == urids.atomLong && atom->size >= sizeof(int64_t)) {
        out = double(reinterpret_cast<const LV2_Atom_Long*>(atom)->body);
    } else {
        return false;
    }
    return std::isfinite(out);
}

}  // namespace

bool ParseLv2Position(const LV2_Atom_Object* object, const Lv2Urids& urids, Lv2Position& out) {
    if (object->body.otype != urids.timePosition) return false;
    out = Lv2Position{};
    LV2_ATOM_OBJECT_FOREACH(object, property) {
        const LV2_Atom* value = &property->value;
        double number = 0;
        if (!ReadNumber(value, urids, number)) continue;
        if (property->key == urids.timeFrame) {
            out.hasFrame = true;
            out.frame = int64_t(number);
        } else if (property->key == urids.timeSpeed) {
            out.hasSpeed = true;
            out.speed = number;
        } else if (property->key == urids.timeBeatsPerMinute && number > 0) {
            out.hasBpm = true;
            out.bpm = number;
        } else if (property->key == urids.timeBar) {
            out.hasBar = true;
            out.bar = int64_t(number);
        } else if (property->key == urids.timeBarBeat) {
            out.hasBarBeat = true;
            out.barBeat = number;
        } else if (property->key == urids.timeBeat) {
            out.hasBeat = true;
            out.beat = number;
        } else if (property->key == urids.timeBeatsPerBar && number > 0) {
            out.hasBeatsPerBar = true;
            out.beatsPerBar = number;
        } else if (property->key == urids.timeBeatUnit && number >= 1) {
            out.hasBeatUnit = true;
            out.beatUnit = int32_t(number);
        }
    }
    return true;
}

Lv2Transport::Lv2Transport(double sampleRate) {
    transport.sampleRate = sampleRate;
    transport.playing = false;
}

bool Lv2Transport::Apply(const Lv2Position& position) {
    const bool wasKnown = known, wasPlaying = transport.playing;
    const double previousTempo = transport.tempo;
    // Where the transport stands now if nothing jumped: the driver advanced it to this point.
    const double expectedQuarter = transport.blockQuarter;
    const int64_t expectedFrame = transport.blockSampleLocation;

    if (position.hasSpeed) transport.playing = position.speed != 0.0;
    if (position.hasBeatUnit) transport.meterDenominator = position.beatUnit;
    if (position.hasBeatsPerBar)
        transport.meterNumerator = std::max(1, int32_t(std::lround(position.beatsPerBar)));
    // Beats count in units of the beat unit; the driver's tempo and position are in quarter notes.
    const double quarterPerBeat =
        4.0 / double(transport.meterDenominator > 0 ? transport.meterDenominator : 4);
    if (position.hasBpm) transport.tempo = position.bpm * quarterPerBeat;

    double quarter = expectedQuarter;
    if (position.hasBeat) {
        quarter = position.beat * quarterPerBeat;
    } else if (position.hasBar && position.hasBarBeat) {
        const double perBar =
            position.hasBeatsPerBar ? position.beatsPerBar : double(transport.meterNumerator);
        quarter = (double(position.bar) * perBar + position.barBeat) * quarterPerBeat;
    } else if (position.hasFrame) {
        // Only a frame: move the musical position along with it at the current tempo.
        const int64_t from = wasKnown ? expectedFrame : 0;
        const double startQuarter = wasKnown ? expectedQuarter : 0.0;
        quarter =
            startQuarter + double(position.frame - from) * transport.tempo / 60.0 / transport.sampleRate;
    }
    // Hosts that send a position every block round it (to ticks of 1/1920 beat, to single precision):
    // where time ran on without a jump and the tempo stayed, a small difference is that rounding, and
    // the driver's own position, exact to the sample, stands.
    const bool continuous = wasKnown && position.hasFrame && position.frame == expectedFrame &&
                            transport.playing == wasPlaying && transport.tempo == previousTempo;
    if (continuous && std::fabs(quarter - expectedQuarter) <= kHostRounding) quarter = expectedQuarter;
    if (position.hasFrame) transport.blockSampleLocation = position.frame;
    transport.blockQuarter = quarter;
    known = true;

    transport.looping = false;
    // Single precision alone: anything within a frame and a half is no jump either.
    const double tolerance = std::max(1e-6, 1.5 * transport.tempo / 60.0 / transport.sampleRate);
    const double jump = expectedQuarter - quarter;
    if (wasKnown && wasPlaying && transport.playing && jump > tolerance) {
        transport.looping = true;
        transport.loopStart = quarter;
        transport.loopEnd = expectedQuarter;
        return true;
    }
    return false;
}

void Lv2Transport::EndWrapBlock() {
    transport.looping = false;
    transport.loopStart = transport.loopEnd = 0.0;
}

}  // namespace BR
