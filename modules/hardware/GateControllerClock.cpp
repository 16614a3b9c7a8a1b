// Gate controller timing: the transport at each block, the MIDI clock with swing, song position and
// loop wraps, and the slicing loop that lands every gate edge, trigger end and clock tick on its sample.
#include <algorithm>
#include <cmath>

#include "GateController.h"

namespace {

constexpr double kClockLimit = 1073741824.0;

// A clock number from a position in clocks; far-off or undefined positions stay inside 32 bits.
int32_t ClockNumber(double x) {
    if (!(x > -kClockLimit)) return x != x ? 0 : int32_t(-kClockLimit);
    return int32_t(std::min(x, kClockLimit));
}

}  // namespace

void BrelGateControllerBase::ReadTransport(double& barStart, bool& looping, double& loopStart,
                                           double& loopEnd, int32_t& numerator, int32_t& denominator) {
    barStart = -1.0;
    looping = false;
    loopStart = loopEnd = 0.0;
    numerator = denominator = 4;
    const BR::HostTransport* host = Transport();
    if (!host) {
        // Without a transport the module plays at tempo 0, where no clock runs.
        playing = 1;
        tempo = 0.0;
        return;
    }
    playing = host->IsTransportPlaying() ? 1 : 0;
    tempo = host->GetCurrentTempo();
    // A tempo that is not a finite positive number runs no clock, like a tempo of 0.
    if (!std::isfinite(tempo) || tempo < 0.0) tempo = 0.0;
    const int64_t location = host->GetCurrentNativeSampleLocation();
    beatPosition = double(host->GetCustomTickPosition(location)) * BR::kBeatsPerTick;
    host->GetCurrentMeter(numerator, denominator);
    int64_t startTick = 0, endTick = 0;
    bool on = false;
    host->GetCurrentLoopPosition(on, startTick, endTick);
    looping = on && startTick < endTick;
    loopStart = double(startTick) * BR::kBeatsPerTick;
    loopEnd = double(endTick) * BR::kBeatsPerTick;
    int32_t bar = 1, beat = 1;
    int64_t beatTicks = 0;
    host->GetBarBeatPosition(bar, beat, beatTicks, location);
    barStart = beatPosition - (double(beatTicks) * BR::kBeatsPerTick + double(beat - 1));
}

bool BrelGateControllerBase::BeginBlock(uint32_t frames) {
    BrelCorvaneBase::BeginBlock(frames);
    if (RowsChanged()) sliceSettingsRead = midiSettingsRead = false;
    // A block of no length moves nothing on; read as a transport it would look like a loop wrap.
    if (frames == 0) return true;
    // The clock's settings as they stand at the block's start, so that the first block after the
    // module was set up already knows whether the clock runs and how it swings. They follow from
    // rows alone, so only a block whose rows changed (and that no slice has read yet) reads them.
    if (!sliceSettingsRead) ReadClockSettings();
    const uint8_t wasPlaying = playing;
    const double oldBeat = beatPosition;
    double barStart, loopStart, loopEnd;
    bool looping;
    int32_t numerator, denominator;
    ReadTransport(barStart, looping, loopStart, loopEnd, numerator, denominator);
    delaySerial = 0;

    if (!wasPlaying && playing) {
        if (BlockValue(rows.delayStart) != 0.0f) delaySerial = 1;
        startPending = 1;
        lastTick = firstTick = sppBeats = 0;
        tickPending = 0;
        if (tempo == 0.0) return true;
        const double start = double(clockOffset) * tempo / 60.0 + beatPosition;
        if (numerator == 0 || denominator == 0) numerator = denominator = 4;
        const double barLength = double(numerator) * 4.0 / double(denominator);
        if (barStart == -1.0) barStart = std::floor(start / barLength) * barLength;
        // The clock waits for the next bar line.
        if (barStart < start) barStart += barLength;
        if (clockOn) {
            firstTick = ClockNumber(barStart * 24.0);
            lastTick = firstTick - 1;
            if (sppOn) sppBeats = firstTick / 6;
        }
    } else if (playing && beatPosition <= oldBeat && looping && clockOn) {
        // The host wrapped round its loop: tick numbers jump back with it, and no start goes out.
        lastTick += ClockNumber((loopEnd - loopStart) * -24.0);
    }

    if (wasPlaying && !playing) {
        if (BlockValue(rows.delayStop) != 0.0f) delaySerial = 1;
        startPending = 0;
        stopPending = 1;
        if (midiOutChannel != 0) {
            if (matchNoteOffs) {
                for (int32_t c = 0; c < 16; ++c) {
                    if (trackedCount[c] <= 0) continue;
                    const uint8_t out = uint8_t(0x80 | (channelise > 0 ? channelise - 1 : c));
                    for (int32_t n = 0; n < 128; ++n) {
                        if (!trackedNote[c][n]) continue;
                        const uint8_t bytes[3] = {out, uint8_t(n), 64};
                        BroadcastSend(bytes, 3);
                    }
                }
            }
            std::fill(&trackedNote[0][0], &trackedNote[0][0] + 16 * 128, uint8_t(0));
            std::fill(std::begin(trackedCount), std::end(trackedCount), 0);
        }
    }
    return true;
}

double BrelGateControllerBase::SwingForward(double x) const {
    const double p = swingPeriod, w = swingAmount;
    const double r = std::fmod(x, p), base = x - r, phase = r / p;
    const double y = phase < w ? (0.5 / w) * phase : 1.0 - (0.5 / (1.0 - w)) * (1.0 - phase);
    return y * p + base;
}

double BrelGateControllerBase::SwingInverse(double x) const {
    const double p = swingPeriod, w = swingAmount;
    const double r = std::fmod(x, p), base = x - r, phase = r / p;
    const double y = phase < 0.5 ? w * 2.0 * phase : 1.0 - (1.0 - w) * 2.0 * (1.0 - phase);
    return y * p + base;
}

uint32_t BrelGateControllerBase::SampleOfClock(int32_t r) const {
    const double place = swingOn ? SwingInverse(double(r)) : double(r);
    const double samples = (place - clockNow) * perClock + 0.5;
    if (!(samples < 4.0e9)) return kNever;  // too far to matter, or not a number
    return samples <= 0.0 ? 0 : uint32_t(samples);
}

void BrelGateControllerBase::Tick() {
    const int32_t d = next - lastTick;
    if (d >= 1) {
        if (startPending) {
            if (sppBeats != 0) {
                const uint8_t position[3] = {0xF2, uint8_t(sppBeats & 127), uint8_t((sppBeats >> 7) & 255)};
                BroadcastSend(position, 3);
                const uint8_t cont = 251;
                BroadcastSend(&cont, 1);
            } else {
                const uint8_t start = 250;
                BroadcastSend(&start, 1);
            }
            startPending = 0;
        }
        const uint8_t clock = 248;
        BroadcastSend(&clock, 1);
        if (d > 1) {
            // The clock catches up by at most two clocks a tick.
            BroadcastSend(&clock, 1);
            lastTick += 2;
        } else {
            lastTick += 1;
        }
    }
    // Between a start and the next bar line d is below 1 and nothing goes out.
    if (next < 0x7FFFFFFF) ++next;
    nextSample = SampleOfClock(next);
}

void BrelGateControllerBase::ProcessBlock(float** inputs, float** outputs, uint32_t frames) {
    // A block of no length renders nothing and leaves its MIDI queued for the next, as the base
    // does; placing a clock in it could only mark a tick as due at its end.
    if (frames == 0) return;
    RefreshMidiSettings();
    nextSample = kNever;
    clockNow = double(clockOffset) * tempo * 0.4 + beatPosition * 24.0;
    // Clock numbers are 32-bit: a position beyond them (tens of millions of bars) runs no clock
    // rather than a wrong one.
    const bool inRange = std::fabs(clockNow) < kClockLimit;
    if (clockOn && tempo != 0.0 && playing && inRange) {
        perClock = double(sampleRate) * 2.5 / tempo;
        const double logical = swingOn ? SwingForward(clockNow) : clockNow;
        next = ClockNumber(std::ceil(logical));
        nextSample = SampleOfClock(next);
    }
    if (stopPending) {
        if (clockOn) {
            const uint8_t stop = 252;
            BroadcastSend(&stop, 1);
        }
        stopPending = 0;
    }
    if (tickPending) {
        next = lastTick + 1;
        nextSample = 0;
        tickPending = 0;
    }

    float* in[BR::kMaxModuleChannels];
    float* out[BR::kMaxModuleChannels];
    const int32_t numIn = std::min(numInputPointers, BR::kMaxModuleChannels);
    const int32_t numOut = std::min(numOutputs, BR::kMaxModuleChannels);
    std::copy(inputs, inputs + numIn, in);
    std::copy(outputs, outputs + numOut, out);

    BR::MessageQueueItem* item = midiToAudioQueue.Read();
    uint32_t position = 0;
    while (position < frames) {
        if (position == nextSample) Tick();
        while (item && item->timeStamp <= position) {
            DispatchMIDI(item);
            HandleMidiItem(*item);
            item = midiToAudioQueue.Read();
        }
        uint32_t end = std::min(frames, nextSample);
        if (item) end = std::min(end, item->timeStamp);
        for (int32_t g = 0; g < rows.numGroups; ++g) {
            const GateGroup& group = groups[g];
            if (group.midiChannel <= 0) continue;
            for (int32_t i = 0; i < 8; ++i)
                if (group.gate[i] && group.countdown[i] != kNever)
                    end = uint32_t(std::min<uint64_t>(end, uint64_t(position) + group.countdown[i]));
        }
        if (end <= position) end = position + 1;
        const uint32_t length = end - position;
        BeginSlice(length, 0);
        EncodeSlice(in, out, length);
        for (int32_t g = 0; g < rows.numGroups; ++g) {
            GateGroup& group = groups[g];
            if (group.midiChannel <= 0) continue;
            for (int32_t i = 0; i < 8; ++i) {
                if (!group.gate[i] || group.countdown[i] == kNever) continue;
                // A gate is on for its full count of samples from the slice in which it went on.
                if (group.countdown[i] <= length) {
                    group.countdown[i] = 0;
                    group.gate[i] = 0;
                } else {
                    group.countdown[i] -= length;
                }
            }
        }
        position = end;
    }
    // An item stamped past the block's end is late: it acts now rather than never.
    if (item) {
        DispatchMIDI(item);
        HandleMidiItem(*item);
    }
    if (nextSample == frames && next >= firstTick) tickPending = 1;
}
