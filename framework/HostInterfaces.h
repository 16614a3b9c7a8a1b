// What a module asks of its host: the controller, the transport and the automation delegate.
#pragma once

#include <cstdint>
#include <string>

namespace BR {

// Stem format words: channel count in the low 12 bits, a layout index above bit 16.
constexpr uint32_t kStemFormatMono = 0x00001;
constexpr uint32_t kStemFormatStereo = 0x10002;
constexpr int32_t StemChannelCount(uint32_t format) {
    return int32_t(format & 0xFFF);
}

class HostController {
public:
    virtual ~HostController() = default;
    virtual float GetSampleRate() const = 0;
    virtual uint32_t GetInputStemFormat() const = 0;
    virtual uint32_t GetOutputStemFormat() const = 0;
};

// Ticks run at 960000 to the quarter note.
constexpr int64_t kTicksPerQuarter = 960000;
constexpr double kBeatsPerTick = 1.0416666666666667e-06;

class HostTransport {
public:
    virtual ~HostTransport() = default;
    virtual bool IsTransportPlaying() const = 0;
    virtual double GetCurrentTempo() const = 0;
    virtual int64_t GetCurrentNativeSampleLocation() const = 0;
    virtual int64_t GetCustomTickPosition(int64_t sampleLocation) const = 0;
    virtual void GetCurrentMeter(int32_t& numerator, int32_t& denominator) const {
        numerator = 4;
        denominator = 4;
    }
    virtual void GetCurrentLoopPosition(bool& looping, int64_t& loopStartTick, int64_t& loopEndTick) const {
        looping = false;
        loopStartTick = 0;
        loopEndTick = 0;
    }
    // Bars and beats from 1, and the ticks into the beat, at a sample location.
    virtual void GetBarBeatPosition(int32_t& bars, int32_t& beats, int64_t& displayTicks,
                                    int64_t sampleLocation) const {
        bars = 1;
        beats = 1;
        displayTicks = 0;
        (void)sampleLocation;
    }
};

// Beat position of the block's start, in quarter notes; an absent transport stands at 0.
inline double CurrentBeatPosition(const HostTransport* transport) {
    if (!transport) return 0.0;
    const int64_t location = transport->GetCurrentNativeSampleLocation();
    return double(transport->GetCustomTickPosition(location)) * kBeatsPerTick;
}

// What a tempo-following module reads in BeginBlock. An absent transport plays at tempo 0 from 0.
struct TransportReading {
    bool playing = true;
    double tempo = 0.0;  // quarter notes per minute
    double beats = 0.0;  // quarter notes at the block's start
};

inline TransportReading ReadTransport(const HostTransport* transport) {
    TransportReading reading;
    if (!transport) return reading;
    reading.playing = transport->IsTransportPlaying();
    reading.tempo = transport->GetCurrentTempo();
    reading.beats = CurrentBeatPosition(transport);
    return reading;
}

// The host's record of touched parameters: counts changes and remembers which ids are dirty.
class AutomationDelegate {
public:
    virtual ~AutomationDelegate() = default;
    virtual void PostDirtyParameter(const std::string& identifier) = 0;
};

}  // namespace BR
