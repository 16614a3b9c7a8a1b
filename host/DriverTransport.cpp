// Position arithmetic of the driver's transport.
#include "DriverTransport.h"

#include <algorithm>
#include <cmath>

namespace BR {

double DriverTransport::QuarterAt(int64_t sampleLocation) const {
    const double rate = playing ? tempo / 60.0 / sampleRate : 0.0;
    return blockQuarter + double(sampleLocation - blockSampleLocation) * rate;
}

int64_t DriverTransport::GetCustomTickPosition(int64_t sampleLocation) const {
    return int64_t(std::llround(QuarterAt(sampleLocation) * double(kTicksPerQuarter)));
}

void DriverTransport::GetCurrentMeter(int32_t& numerator, int32_t& denominator) const {
    numerator = meterNumerator;
    denominator = meterDenominator;
}

void DriverTransport::GetCurrentLoopPosition(bool& on, int64_t& loopStartTick, int64_t& loopEndTick) const {
    on = looping;
    loopStartTick = int64_t(std::llround(loopStart * double(kTicksPerQuarter)));
    loopEndTick = int64_t(std::llround(loopEnd * double(kTicksPerQuarter)));
}

void DriverTransport::GetBarBeatPosition(int32_t& bars, int32_t& beats, int64_t& displayTicks,
                                         int64_t sampleLocation) const {
    // Beats count in units of the meter's denominator; ticks within the beat stay in quarter-note ticks.
    const double quarterPerBeat = 4.0 / double(meterDenominator > 0 ? meterDenominator : 4);
    const double beatCount = std::max(0.0, QuarterAt(sampleLocation)) / quarterPerBeat;
    const double whole = std::floor(beatCount);
    const int64_t beatIndex = int64_t(whole);
    const int32_t perBar = meterNumerator > 0 ? meterNumerator : 4;
    bars = int32_t(beatIndex / perBar) + 1;
    beats = int32_t(beatIndex % perBar) + 1;
    displayTicks = int64_t(std::llround((beatCount - whole) * quarterPerBeat * double(kTicksPerQuarter)));
}

int64_t DriverTransport::FramesUntilLoopEnd() const {
    if (!playing || !looping || loopEnd <= loopStart || tempo <= 0.0 || blockQuarter >= loopEnd) return -1;
    const double framesPerQuarter = 60.0 * sampleRate / tempo;
    return int64_t(std::ceil((loopEnd - blockQuarter) * framesPerQuarter - 1e-9));
}

void DriverTransport::Advance(uint32_t frames) {
    if (!playing) return;
    const int64_t untilEnd = FramesUntilLoopEnd();
    blockQuarter = QuarterAt(blockSampleLocation + frames);
    blockSampleLocation += frames;
    if (untilEnd >= 0 && int64_t(frames) >= untilEnd) {
        // The host jumps back by the loop's length: position and timeline both.
        const double length = loopEnd - loopStart;
        blockQuarter -= length;
        blockSampleLocation -= int64_t(std::llround(length * 60.0 * sampleRate / tempo));
    }
}

}  // namespace BR
