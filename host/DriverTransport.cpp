// Position arithmetic of the driver's transport.
#include "DriverTransport.h"

#include <algorithm>
#include <cmath>

namespace BR {

namespace {

// Positions, tick counts and loop lengths come from whatever a host or a file says: conversions to
// whole numbers saturate at the int64 range (NaN gives 0) rather than overflow.
constexpr double kWholeLimit = 9.2e18;  // just inside the int64 range, and exact in a double

int64_t SaturatingRound(double value) {
    if (!(value == value)) return 0;
    return std::llround(std::clamp(value, -kWholeLimit, kWholeLimit));
}

int64_t SaturatingAdd(int64_t a, int64_t b) {
    int64_t sum = 0;
    if (__builtin_add_overflow(a, b, &sum)) return b > 0 ? INT64_MAX : INT64_MIN;
    return sum;
}

}  // namespace

double DriverTransport::QuarterAt(int64_t sampleLocation) const {
    const double rate = playing ? tempo / 60.0 / sampleRate : 0.0;
    return blockQuarter + (double(sampleLocation) - double(blockSampleLocation)) * rate;
}

int64_t DriverTransport::GetCustomTickPosition(int64_t sampleLocation) const {
    return SaturatingRound(QuarterAt(sampleLocation) * double(kTicksPerQuarter));
}

void DriverTransport::GetCurrentMeter(int32_t& numerator, int32_t& denominator) const {
    numerator = meterNumerator;
    denominator = meterDenominator;
}

void DriverTransport::GetCurrentLoopPosition(bool& on, int64_t& loopStartTick, int64_t& loopEndTick) const {
    on = looping;
    loopStartTick = SaturatingRound(loopStart * double(kTicksPerQuarter));
    loopEndTick = SaturatingRound(loopEnd * double(kTicksPerQuarter));
}

void DriverTransport::GetBarBeatPosition(int32_t& bars, int32_t& beats, int64_t& displayTicks,
                                         int64_t sampleLocation) const {
    // Beats count quarter notes within the bar, so that position - (displayTicks / 960000 + beats - 1)
    // is the bar's start in any meter, as the modules compute it. A bar lasts numerator * 4 / denominator
    // quarter notes; positions before 0 fall in bar 0 and below. Integer ticks keep bar lines exact.
    const int32_t numerator = meterNumerator > 0 ? meterNumerator : 4;
    const int32_t denominator = meterDenominator > 0 ? meterDenominator : 4;
    const int64_t barTicks = std::max<int64_t>(
        1, SaturatingRound(double(numerator) * 4.0 * double(kTicksPerQuarter) / denominator));
    const int64_t ticks = GetCustomTickPosition(sampleLocation);
    // Division and remainder only: a position from an absurd tempo must not overflow.
    int64_t bar = ticks / barTicks;
    int64_t intoBar = ticks % barTicks;
    if (intoBar < 0) {
        --bar;
        intoBar += barTicks;
    }
    bars = int32_t(bar + 1);
    beats = int32_t(intoBar / kTicksPerQuarter) + 1;
    displayTicks = intoBar % kTicksPerQuarter;
}

int64_t DriverTransport::FramesUntilLoopEnd() const {
    if (!playing || !looping || !(loopEnd > loopStart) || !(tempo > 0.0) || !(sampleRate > 0.0) ||
        !(blockQuarter < loopEnd))
        return -1;
    const double framesPerQuarter = 60.0 * sampleRate / tempo;
    // At least one frame: an end less than a frame away wraps after the next frame. The tolerance
    // absorbs the rounding that builds up as the position is moved on block by block.
    return std::max<int64_t>(1,
                             SaturatingRound(std::ceil((loopEnd - blockQuarter) * framesPerQuarter - 1e-6)));
}

void DriverTransport::Advance(uint32_t frames) {
    if (!playing) return;
    const int64_t untilEnd = FramesUntilLoopEnd();
    blockSampleLocation = SaturatingAdd(blockSampleLocation, int64_t(frames));
    blockQuarter += double(frames) * (tempo / 60.0 / sampleRate);  // as QuarterAt moves it
    if (untilEnd >= 0 && int64_t(frames) >= untilEnd) {
        // The host jumps back by the loop's length: position and timeline both.
        const double length = loopEnd - loopStart;
        blockQuarter -= length;
        blockSampleLocation =
            SaturatingAdd(blockSampleLocation, -SaturatingRound(length * 60.0 * sampleRate / tempo));
    }
}

}  // namespace BR
