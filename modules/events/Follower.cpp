// Follower: parameter table, band-limiting filters, the zero-crossing measurement and the output mix.
#include "Follower.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "framework/PropertyData.h"
#include "framework/StateChunkStore.h"

namespace BrelCorvaneFollower {

namespace {

BR::ParameterDefinition parameterTable[kNumParameters] = {
    {"Input Source", BR::kUnitIndexed, 0, 2, 0},
    {"Lowpass Cutoff", BR::kUnitFrequency, 10, 1000, 800},
    {"Highpass Cutoff", BR::kUnitFrequency, 10, 1000, 100},
    {"Env Gain", BR::kUnitDecibels, 0, 48, 12},
    {"Env Attack", BR::kUnitMilliseconds, 1, 1000, 50},
    {"Env Release", BR::kUnitMilliseconds, 1, 1000, 50},
    {"Env Gate", BR::kUnitGeneric, 0, 1, 0},
    {"Output Pitch L", BR::kUnitGeneric, -1, 1, 1},
    {"Output Pitch R", BR::kUnitGeneric, -1, 1, 0},
    {"Output Env L", BR::kUnitGeneric, -1, 1, 0},
    {"Output Env R", BR::kUnitGeneric, -1, 1, 1},
    {"Smoothing L", BR::kUnitMilliseconds, -500, 500, 0},
    {"Smoothing R", BR::kUnitMilliseconds, -500, 500, 0},
    {"OSC Port Offset", BR::kUnitIndexed, 0, 100, 0},
    {"Pitch Mode", BR::kUnitIndexed, 0, 2, 0},
    {"Volts Per Octave", BR::kUnitGeneric, 0.5f, 4, 1},
    {"Hz Per Volt", BR::kUnitFrequency, 10, 10000, 1000},
    {"V Scale Mode", BR::kUnitIndexed, 0, 2, 0},
    {"Manual V Scale", BR::kUnitGeneric, 1, 15, 10},
    {"Zero V Coarse", BR::kUnitMIDINote, 0, 127, 48},
    {"Zero V Fine", BR::kUnitCents, -50, 50, 0},
};

float defaultsValues[kNumParameters];
BR::PresetDefinition presetTable[] = {{"Defaults", 0, defaultsValues}};

constexpr BR::ModuleConfig kConfig{2, 2, 0, 0, kOSCPortOffset, 1, presetTable, kNumParameters, parameterTable,
                                   -1};

constexpr float kPi = 3.14159265358979f;
constexpr float kMaxFilterQ = 1.8f;         // 2 * (1 - 0.0001^0.25): keeps a high low-pass cutoff stable
constexpr float kArdentScale = 0.1882353f;  // 48 / 255, the unipolar expander scale
constexpr float kCinderScale = 0.18754579f;

BR::CountedTextList* NamedList(int32_t row) {
    static BR::CountedTextList* source = new BR::CountedTextList({"L+R", "Left", "Right"});
    static BR::CountedTextList* pitch = new BR::CountedTextList({"V/Octave", "Hz/V", "Calibrated"});
    static BR::CountedTextList* scale = new BR::CountedTextList({"Manual", "Ardent", "Cinder"});
    switch (row) {
        case kInputSource:
            return source;
        case kPitchMode:
            return pitch;
        case kVScaleMode:
            return scale;
        default:
            return nullptr;
    }
}

// State-variable coefficients of a cutoff: F = 2 sin(a), with a at most pi / 4.
void FilterCoefficients(float cutoff, float sampleRate, float& f, float& q) {
    const float a = std::min(std::max(cutoff, 0.0f) * kPi / sampleRate, kPi / 4.0f);
    f = 2.0f * std::sin(a);
    q = std::min({2.0f, 2.0f / f - f / 2.0f, kMaxFilterQ});
}

float FlushTiny(float x) {
    return std::fabs(x) < 1e-20f ? 0.0f : x;
}

float NoteOf(float hz) {
    return std::log(hz * 0.0022727272f) * 1.442695f * 12.0f + 69.0f;
}

}  // namespace

BrelCorvane::BrelCorvane() : BrelCorvaneBase(kConfig) {
    BrelCorvane::InitModule();
}

void BrelCorvane::InitModule() {
    low1 = band1 = low2 = band2 = 0.0f;
    ring.assign(kRingSize, RingEntry{0.0f, 0.0f, 0.0f});
    writeIndex = 0;
    nextEvaluation = 0;
    lastFraction = 0.0f;
    period = previousPeriod = 2047.0f;
    noPitch = 1;
    frequency = pitchVolts = pitchOut = 0.0f;
    level = gatedLevel = envelope = 0.0f;
    calibratedNote = 0.0f;
    smoother[0].Reset();
    smoother[1].Reset();
    calibration.table.Reset();  // identity notes, values 0
    status.Emplace<FollowerStatus>().noPitch = 1;
    BrelCorvaneBase::InitModule();
}

void BrelCorvane::SetMaxBlockSize(uint32_t frames) {
    BrelCorvaneBase::SetMaxBlockSize(frames);
    scratch.assign(frames, 0.0f);
}

bool BrelCorvane::BeginBlock(uint32_t frames) {
    if (!BrelCorvaneBase::BeginBlock(frames)) return false;
    if (!RowsChanged()) return true;  // everything here follows from the rows and the rate
    FilterCoefficients(BlockValue(kLowpassCutoff), sampleRate, lowpassF, lowpassQ);
    FilterCoefficients(BlockValue(kHighpassCutoff), sampleRate, highpassF, highpassQ);
    attackCoef = std::exp(-1.0f / (sampleRate * 0.001f * BlockValue(kEnvAttack)));
    releaseCoef = std::exp(-1.0f / (sampleRate * 0.001f * BlockValue(kEnvRelease)));
    envGain = std::pow(10.0f, BlockValue(kEnvGain) * 0.05f);
    envGate = BlockValue(kEnvGate);
    zeroNote = BlockValue(kZeroVCoarse) + BlockValue(kZeroVFine) * 0.01f;
    voltsPerOctave = BlockValue(kVoltsPerOctave);
    hzPerVolt = BlockValue(kHzPerVolt);
    manualScale = BlockValue(kManualVScale);
    for (int k = 0; k < 2; ++k) {
        pitchToOut[k] = BlockValue(kOutputPitchL + k);
        envToOut[k] = BlockValue(kOutputEnvL + k);
        smoother[k].Configure(BlockValue(kSmoothingL + k), sampleRate);
    }
    windowSamples = std::min(int32_t(sampleRate * 0.02f), 2047);
    inputSource = std::clamp(int32_t(BlockValue(kInputSource)), 0, 2);
    pitchMode = std::clamp(int32_t(BlockValue(kPitchMode)), 0, 2);
    vScaleMode = std::clamp(int32_t(BlockValue(kVScaleMode)), 0, 2);
    return true;
}

void BrelCorvane::ProcessSlice(float** inputs, float** outputs, uint32_t frames) {
    if (frames == 0 || frames > scratch.size()) return;
    const float* in1 = inputs[0];
    const float* in2 = inputs[1];
    // The sum leaves out the unselected input; the ring keeps both as they came.
    const float w1 = inputSource == kSourceRight ? 0.0f : 1.0f;
    const float w2 = inputSource == kSourceLeft ? 0.0f : 1.0f;
    {
        float l1 = low1, b1 = band1, l2 = low2, b2 = band2;
        const float lf = lowpassF, lq = lowpassQ, hf = highpassF, hq = highpassQ;
        float* y = scratch.data();
        for (uint32_t i = 0; i < frames; ++i) {
            const float x = in1[i] * w1 + in2[i] * w2;
            l1 += b1 * lf;
            l2 += b2 * hf;
            b1 += (x - l1 - b1 * lq) * lf;
            const float out = l1 - l2 - b2 * hq;
            b2 += out * hf;
            y[i] = out;
        }
        // Once the input has gone quiet the filters would decay into subnormal numbers, whose rounding
        // can keep a tiny oscillation alive that the detector would read as a pitch (and that is slow
        // on most processors): states far below any audible level end at 0.
        low1 = FlushTiny(l1), band1 = FlushTiny(b1), low2 = FlushTiny(l2), band2 = FlushTiny(b2);
    }

    float* outL = outputs[0];
    float* outR = outputs[1];
    const float* filtered = scratch.data();
    RingEntry* entries = ring.data();
    uint32_t done = 0;
    while (done < frames) {
        const uint32_t run = std::min(nextEvaluation, frames - done);
        // The attack or release is chosen once per run; the pitch steps only at a measurement.
        const float target = gatedLevel;
        const float c = target > envelope ? attackCoef : releaseCoef;
        const float pl = pitchOut * pitchToOut[0], pr = pitchOut * pitchToOut[1];
        const float el = envToOut[0], er = envToOut[1];
        float env = envelope;
        uint32_t w = writeIndex;
        for (uint32_t i = done; i < done + run; ++i) {
            entries[w] = RingEntry{in1[i], in2[i], filtered[i]};
            w = (w + 1) & kRingMask;
            env = (env - target) * c + target;
            outL[i] = env * el + pl;
            outR[i] = env * er + pr;
        }
        envelope = env;
        writeIndex = w;
        nextEvaluation -= run;
        done += run;
        if (nextEvaluation == 0) Measure();
    }
    smoother[0].Process(outL, int(frames));
    smoother[1].Process(outR, int(frames));
    UpdateStatus(frames);
}

void BrelCorvane::Measure() {
    const uint32_t start = (writeIndex - uint32_t(windowSamples)) & kRingMask;
    float w1 = 0.5f, w2 = 0.5f;
    if (inputSource == kSourceLeft) w1 = 1.0f, w2 = 0.0f;
    if (inputSource == kSourceRight) w1 = 0.0f, w2 = 1.0f;
    float prev = 1e6f;  // so that the crossing the window starts on does not count again
    float peak = 0.0f;
    int32_t crossing = -1;
    float crossingSample = 0.0f;
    for (int32_t i = 0; i < windowSamples; ++i) {
        const RingEntry& e = ring[(start + uint32_t(i)) & kRingMask];
        peak = std::max(peak, std::fabs(w2 * e.input2 + w1 * e.input1));
        if (e.filtered > 0.0f && !(prev > 0.0f)) {
            crossing = i;
            crossingSample = e.filtered;
            break;
        }
        prev = e.filtered;
    }
    level = std::min(peak * envGain, 1.0f);
    gatedLevel = level < envGate ? 0.0f : level;
    if (crossing < 0) {
        noPitch = 1;
        nextEvaluation = uint32_t(period);
        if (nextEvaluation == 0) nextEvaluation = 1;
        return;
    }
    noPitch = 0;
    const float fraction = prev / (prev - crossingSample);
    nextEvaluation = uint32_t(crossing);
    previousPeriod = period;
    // A period of 0 (fractions cancelling at a crossing at 0) gives one infinite frequency; left as is.
    period = float(crossing) + fraction - lastFraction;
    lastFraction = fraction;
    frequency = sampleRate / period;

    if (pitchMode == kPitchCalibrated) {
        const float note = std::clamp(NoteOf(frequency) - (zeroNote - 48.0f), 0.0f, 127.0f);
        const int32_t i = int32_t(note);
        const float f = note - float(i);
        pitchVolts = (1.0f - f) * calibration.table.notes[i].value + f * calibration.table.notes[i + 1].value;
        calibratedNote = note;
        pitchOut = pitchVolts;  // the table holds sample values already
        return;
    }
    if (pitchMode == kPitchHertzPerVolt) {
        const float r = std::exp((zeroNote - 69.0f) * 0.083333336f * 0.6931472f);
        pitchVolts = (frequency - r * 440.0f) / hzPerVolt;
    } else {
        pitchVolts = (NoteOf(frequency) - zeroNote) * voltsPerOctave * 0.083333336f;
    }
    if (vScaleMode == kScaleArdent)
        pitchOut = std::max(pitchVolts, 0.0f) * kArdentScale;
    else if (vScaleMode == kScaleCinder)
        pitchOut = pitchVolts * kCinderScale;  // negative values stay
    else
        pitchOut = pitchVolts / manualScale;
}

void BrelCorvane::UpdateStatus(uint32_t frames) {
    FollowerStatus& s = status.As<FollowerStatus>();
    const float k = std::exp(float(frames) / (sampleRate * -0.03f));
    auto move = [k](float& f, float v) { f = (f - v) * k + v; };
    move(s.frequency, frequency);
    move(s.level, level);
    move(s.pitchVolts, pitchVolts);
    move(s.pitchOut, pitchOut);
    if (pitchMode == kPitchCalibrated) {
        // The calibration display reads the note and the volts at bytes 8 and 12.
        std::memcpy(&s.envelope, &calibratedNote, 4);
        std::memcpy(&s.noPitch, &pitchVolts, 4);
        return;
    }
    move(s.envelope, envelope);
    s.noPitch = noPitch;
}

int32_t BrelCorvane::GetParameterValueStrings(int32_t tableIndex, BR::CountedTextList** out) {
    return BR::HandOutValueStrings(NamedList(tableIndex), out);
}

uint32_t BrelCorvane::GetParameterFlags(int32_t tableIndex) {
    return tableIndex >= kSmoothingL && tableIndex <= kOSCPortOffset ? BR::kDisplayStringFlag : 0;
}

int32_t BrelCorvane::GetParameterDisplayString(BR::DisplayStringRequest& request) {
    return OffDisplayString(request, request.index == kOSCPortOffset,
                            request.index == kSmoothingL || request.index == kSmoothingR);
}

int32_t BrelCorvane::GetProperty(uint32_t id, void* data) {
    const int32_t answer = calibration.GetProperty(id, data);
    return answer != BR::kNotCalibrationProperty ? answer : BrelCorvaneBase::GetProperty(id, data);
}

int32_t BrelCorvane::GetPropertyInfo(uint32_t id, uint32_t* size, bool* writable) {
    const int32_t answer = calibration.GetPropertyInfo(id, size, writable);
    return answer != BR::kNotCalibrationProperty ? answer
                                                 : BrelCorvaneBase::GetPropertyInfo(id, size, writable);
}

int32_t BrelCorvane::SetProperty(uint32_t id, const void* data, uint32_t size) {
    const int32_t answer = calibration.SetProperty(id, data, size);
    return answer != BR::kNotCalibrationProperty ? answer : BrelCorvaneBase::SetProperty(id, data, size);
}

void BrelCorvane::SaveExtraChunks(BR::StateChunkStore& store) {
    calibration.SaveName(store);
    calibration.SaveTable(store);
}

void BrelCorvane::LoadExtraChunks(const BR::StateChunkStore& store) {
    calibration.LoadName(store);
    calibration.LoadTable(store);
}

BrelCorvaneBase* Create() {
    return new BrelCorvane;
}

}  // namespace BrelCorvaneFollower
