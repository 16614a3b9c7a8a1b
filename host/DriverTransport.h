// A transport that a driver runs itself: tempo, meter, play state, loop range and a position that
// advances block by block. Hosts that report their own transport set its fields before each block.
#pragma once

#include <cstdint>

#include "framework/HostInterfaces.h"

namespace BR {

class DriverTransport : public HostTransport {
public:
    bool IsTransportPlaying() const override { return playing; }
    double GetCurrentTempo() const override { return tempo; }
    int64_t GetCurrentNativeSampleLocation() const override { return blockSampleLocation; }
    int64_t GetCustomTickPosition(int64_t sampleLocation) const override;
    void GetCurrentMeter(int32_t& numerator, int32_t& denominator) const override;
    void GetCurrentLoopPosition(bool& looping, int64_t& loopStartTick, int64_t& loopEndTick) const override;
    void GetBarBeatPosition(int32_t& bars, int32_t& beats, int64_t& displayTicks,
                            int64_t sampleLocation) const override;

    // Quarter notes at a sample location, extrapolated from the block's start at the current tempo.
    double QuarterAt(int64_t sampleLocation) const;
    // Frames from the block's start until the loop end is reached (at least 1), or -1 when no wrap is
    // due: not playing, no loop, or a start at or past the loop's end.
    int64_t FramesUntilLoopEnd() const;
    // Moves the block start on by `frames` while playing, wrapping at the loop end.
    void Advance(uint32_t frames);

    bool playing = true;
    double tempo = 120.0;  // quarter notes per minute
    double sampleRate = 48000.0;
    int32_t meterNumerator = 4;
    int32_t meterDenominator = 4;
    bool looping = false;
    double loopStart = 0.0;  // quarter notes
    double loopEnd = 0.0;
    int64_t blockSampleLocation = 0;
    double blockQuarter = 0.0;  // quarter notes at blockSampleLocation
};

}  // namespace BR
