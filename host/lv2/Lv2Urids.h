// The URIDs a running plug-in needs, mapped once at instantiation through the host's urid:map.
#pragma once

#include <lv2/atom/atom.h>
#include <lv2/buf-size/buf-size.h>
#include <lv2/midi/midi.h>
#include <lv2/time/time.h>
#include <lv2/urid/urid.h>

#include <string>

namespace BR {

struct Lv2Urids {
    LV2_URID atomBlank, atomObject, atomSequence, atomChunk;
    LV2_URID atomInt, atomLong, atomFloat, atomDouble;
    LV2_URID midiEvent;
    LV2_URID timePosition, timeFrame, timeSpeed, timeBar, timeBarBeat, timeBeat, timeBeatsPerBar,
        timeBeatUnit, timeBeatsPerMinute;
    LV2_URID maxBlockLength;
    LV2_URID stateControls, stateChunky;  // keys of the two chunks

    void Map(const LV2_URID_Map& map, const std::string& controlsKey, const std::string& chunkyKey) {
        auto m = [&](const char* uri) { return map.map(map.handle, uri); };
        atomBlank = m(LV2_ATOM__Blank);
        atomObject = m(LV2_ATOM__Object);
        atomSequence = m(LV2_ATOM__Sequence);
        atomChunk = m(LV2_ATOM__Chunk);
        atomInt = m(LV2_ATOM__Int);
        atomLong = m(LV2_ATOM__Long);
        atomFloat = m(LV2_ATOM__Float);
        atomDouble = m(LV2_ATOM__Double);
        midiEvent = m(LV2_MIDI__MidiEvent);
        timePosition = m(LV2_TIME__Position);
        timeFrame = m(LV2_TIME__frame);
        timeSpeed = m(LV2_TIME__speed);
        timeBar = m(LV2_TIME__bar);
        timeBarBeat = m(LV2_TIME__barBeat);
        timeBeat = m(LV2_TIME__beat);
        timeBeatsPerBar = m(LV2_TIME__beatsPerBar);
        timeBeatUnit = m(LV2_TIME__beatUnit);
        timeBeatsPerMinute = m(LV2_TIME__beatsPerMinute);
        maxBlockLength = m(LV2_BUF_SIZE__maxBlockLength);
        stateControls = m(controlsKey.c_str());
        stateChunky = m(chunkyKey.c_str());
    }
};

}  // namespace BR
