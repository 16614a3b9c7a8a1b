// The 129-entry note-to-sample calibration table, its formula tables, the zero-crossing frequency
// estimator and the measuring routine that fills a table from an oscillator heard on the input.
#pragma once

#include <cstdint>
#include <vector>

namespace BR {

constexpr int32_t kCalibrationEntries = 129;  // notes 0 to 128; 128 is only the top of the interpolation

// Properties of a module that owns a calibration table (Voice Controller, Follower, Soundplane).
enum CalibrationProperty : uint32_t {
    kPropertyCalibrationTable = 64016,  // get: address of the CalibrationPoint entries
    kPropertyCalibrationValid = 64017,  // get: address of the valid bytes
    kPropertyCalibrationCount = 64018,  // get: int32 entry count
    kPropertyCalibrationTime = 64020,   // get: int64 time the table got its name, 0 for none
    kPropertyMakeArdentTable = 64090,
    kPropertyMakeCinderTable = 64091,
    kPropertyCalibrateVoltsPerOctave = 64092,
    kPropertyCalibrateHertzPerVolt = 64093,
    kPropertyQuantizerTable = 64120,   // set: a QuantizerTable
    kPropertyCalibrationName = 64121,  // get: const char*; set: characters, terminator optional
};

// `x` is the note for drawing (0 to 127, and 0 for entry 128); `value` the output sample for it.
// The pairs lie interleaved so that a display can hand them on as one vertex array.
struct CalibrationPoint {
    float x;
    float value;
};

struct CalibrationTable {
    CalibrationPoint notes[kCalibrationEntries];
    uint8_t valid[kCalibrationEntries];  // measured or loaded, 0 or 1

    CalibrationTable() { Reset(); }
    // Every value and flag 0, so every note maps to 0.
    void Reset();
    // Sample value of a fractional note, clamped to 0..127, by linear interpolation. NaN reads as
    // note 0, so that no index is ever made from it.
    float Convert(float note) const {
        const float p = !(note > 0.0f) ? 0.0f : (note > 127.0f ? 127.0f : note);
        const int32_t i = int32_t(p);
        const float f = p - float(i);
        return (1.0f - f) * notes[i].value + f * notes[i + 1].value;
    }
    // Levels for the Ardent expander: notes 48 to 111 valid, level 0 at note 48, repeating every 64.
    void MakeArdent();
    // Levels for the Cinder and Dunmore expanders: level 0 at note 60, wrapping from note 124; no entry
    // is flagged valid.
    void MakeCinder();

    // "calt" chunk payload: version 1, count 129, the values, the valid bytes (653 bytes).
    std::vector<uint8_t> SaveChunk() const;
    // False, leaving the table as it is, for a payload too short, of another version, or holding a value
    // that is not finite.
    bool LoadChunk(const uint8_t* data, uint32_t length);
};

// Copies each note still unfilled from the octave above (top down), then from the octave below
// (bottom up), marking it in `filled`.
void FillOctaves(float* values, uint8_t* filled, int32_t count);

// Rising zero crossings, interpolated between samples, give up to five periods.
struct FrequencyEstimator {
    static constexpr int32_t kPeriods = 5;

    double samplesSeen = 0.0;
    double lastCrossing = -1.0;  // samples since the reset; -1 for none yet
    double periods[kPeriods] = {};
    float lastSample = 0.0f;
    int32_t periodCount = 0;
    bool hertzMode = false;

    void Reset();
    void Feed(const float* samples, uint32_t count);
    bool Complete() const { return periodCount >= kPeriods; }
    // From the median period: the frequency in Hz (hertzMode) or the note; `note` is the note always.
    double Result(double sampleRate, double& note) const;
};

// The measuring routine: 17 levels from -1 to 1, each held to settle and then measured for up to one
// second, with the notes between two measured levels interpolated in notes (V/oct) or in Hz (Hz/V).
class CalibrationMeasurement {
public:
    static constexpr int32_t kSteps = 17;

    // Clears the table and starts at step 0.
    void Start(CalibrationTable& table, float sampleRate, uint32_t maxBlockSize, bool hertz);
    bool Finishing() const { return measurePhase == 1; }
    // Output level of the present step.
    float Level() const { return float(measureStep - 8) * 0.125f; }
    // One pass over at most `frames` input samples at Level(); returns the samples it took.
    uint32_t Pass(const float* input, uint32_t frames, CalibrationTable& table, float sampleRate);
    // Fills unmeasured notes from the nearest octave; the valid flags stay as measured.
    void Finish(CalibrationTable& table);

    int32_t Step() const { return measureStep; }
    const FrequencyEstimator& Estimator() const { return estimator; }

private:
    void NextStep();
    void TakeResult(CalibrationTable& table, float sampleRate);

    int32_t measurePhase = 0;  // 0 stepping, 1 finishing
    int32_t measureStep = 0;
    uint32_t settleSamples = 0, settleLeft = 0;
    uint32_t measureSamples = 0, measureLeft = 0;
    bool hertzMode = false;
    double previousRaw = 0.0, previousNote = 0.0;
    float previousLevel = 0.0f;
    bool havePrevious = false;
    FrequencyEstimator estimator;
};

}  // namespace BR
