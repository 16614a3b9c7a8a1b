// Calibration table, formula tables, "calt" chunk, zero-crossing estimator and the measuring steps.
#include "Calibration.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "framework/StateChunkStore.h"

namespace BR {

namespace {
constexpr uint32_t kChunkVersion = 1;
constexpr float kArdentStep = 0.015686275f;  // 1 / 63.75: 64 notes span 0..~1
constexpr float kCinderStep = 0.015628817f;
}  // namespace

void CalibrationTable::Reset() {
    for (int32_t k = 0; k < kCalibrationEntries; ++k) {
        notes[k].x = k < 128 ? float(k) : 0.0f;
        notes[k].value = 0.0f;
        valid[k] = 0;
    }
}

void CalibrationTable::MakeArdent() {
    for (int32_t k = 0; k < kCalibrationEntries; ++k) {
        const int32_t v = (k + 16) % 64;
        notes[k].value = float(v) * kArdentStep;
        valid[k] = v == k - 48 ? 1 : 0;
    }
}

void CalibrationTable::MakeCinder() {
    for (int32_t k = 0; k < kCalibrationEntries; ++k) {
        const int32_t i = k + 4;
        const int32_t v = ((i + 128) % 128) - 64;
        notes[k].value = float(v) * kCinderStep;
        // Kept as the formula has it: a level never equals its shifted index, so nothing is flagged.
        valid[k] = v == i ? 1 : 0;
    }
}

std::vector<uint8_t> CalibrationTable::SaveChunk() const {
    std::vector<uint8_t> data;
    data.reserve(8 + kCalibrationEntries * 5);
    AppendU32(data, kChunkVersion);
    AppendU32(data, uint32_t(kCalibrationEntries));
    for (const CalibrationPoint& point : notes) {
        uint32_t bits;
        std::memcpy(&bits, &point.value, 4);
        AppendU32(data, bits);
    }
    data.insert(data.end(), valid, valid + kCalibrationEntries);
    return data;
}

bool CalibrationTable::LoadChunk(const uint8_t* data, uint32_t length) {
    if (!data || length < 9) return false;
    if (ReadU32(data) != kChunkVersion) return false;
    const uint32_t count = ReadU32(data + 4);
    if (uint64_t(length) < uint64_t(count) * 5 + 8) return false;
    const uint32_t taken = std::min<uint32_t>(count, kCalibrationEntries);
    const uint8_t* flags = data + 8 + size_t(count) * 4;
    // A value that is not finite marks a damaged entry: the table is left as it was.
    for (uint32_t k = 0; k < taken; ++k) {
        const uint32_t bits = ReadU32(data + 8 + k * 4);
        float value;
        std::memcpy(&value, &bits, 4);
        if (!std::isfinite(value)) return false;
    }
    for (uint32_t k = 0; k < taken; ++k) {
        const uint32_t bits = ReadU32(data + 8 + k * 4);
        std::memcpy(&notes[k].value, &bits, 4);
        valid[k] = flags[k] != 0 ? 1 : 0;
    }
    return true;
}

void FillOctaves(float* values, uint8_t* filled, int32_t count) {
    for (int32_t i = count - 13; i >= 0; --i)
        if (!filled[i] && filled[i + 12]) {
            values[i] = values[i + 12];
            filled[i] = 1;
        }
    for (int32_t i = 12; i < count; ++i)
        if (!filled[i] && filled[i - 12]) {
            values[i] = values[i - 12];
            filled[i] = 1;
        }
}

void FrequencyEstimator::Reset() {
    samplesSeen = 0.0;
    lastCrossing = -1.0;
    periodCount = 0;
    lastSample = 0.0f;
}

void FrequencyEstimator::Feed(const float* samples, uint32_t count) {
    double t = samplesSeen;
    float l = lastSample;
    for (uint32_t k = 0; k < count; ++k, t += 1.0) {
        const float s = samples[k];
        if (l < 0.0f && s >= 0.0f) {
            const double crossing = t - 1.0 + double(-l) / (double(s) - double(l));
            if (lastCrossing != -1.0 && periodCount < kPeriods)
                periods[periodCount++] = crossing - lastCrossing;
            lastCrossing = crossing;
        }
        l = s;
    }
    samplesSeen = t;
    lastSample = l;
}

double FrequencyEstimator::Result(double sampleRate, double& note) const {
    double sorted[kPeriods];
    const int32_t n = std::clamp(periodCount, 1, kPeriods);
    std::copy(periods, periods + n, sorted);
    std::sort(sorted, sorted + n);
    const double raw = sampleRate / sorted[n / 2];
    note = 12.0 * std::log2(raw / 440.0) + 69.0;
    return hertzMode ? raw : note;
}

void CalibrationMeasurement::Start(CalibrationTable& table, float sampleRate, uint32_t maxBlockSize,
                                   bool hertz) {
    measurePhase = 0;
    measureStep = 0;
    for (int32_t k = 0; k < kCalibrationEntries; ++k) {
        table.notes[k].value = 0.0f;
        table.valid[k] = 0;
    }
    measureSamples = measureLeft = uint32_t(std::max(1, int32_t(sampleRate)));
    settleSamples = settleLeft = uint32_t(std::max(int32_t(4 * maxBlockSize), int32_t(sampleRate * 0.25f)));
    havePrevious = false;
    previousRaw = 0.0;
    previousNote = 0.0;
    previousLevel = 0.0f;
    hertzMode = hertz;
    estimator.Reset();
    estimator.hertzMode = hertz;
}

uint32_t CalibrationMeasurement::Pass(const float* input, uint32_t frames, CalibrationTable& table,
                                      float sampleRate) {
    if (measurePhase != 0 || frames == 0) return 0;
    if (settleLeft != 0) {
        // A settling pass never takes a result: the estimator still holds the five periods of the
        // step before until the settling ends, and would repeat them for this level.
        const uint32_t m = std::min(settleLeft, frames);
        settleLeft -= m;
        if (settleLeft == 0) estimator.Reset();
        return m;
    }
    const uint32_t m = std::min(measureLeft, frames);
    estimator.Feed(input, m);
    measureLeft -= m;
    if (estimator.Complete()) {
        TakeResult(table, sampleRate);
        NextStep();
    } else if (measureLeft == 0) {
        NextStep();  // no five crossings in time: a gap, filled later from the last good step
    }
    return m;
}

void CalibrationMeasurement::NextStep() {
    ++measureStep;
    measureLeft = measureSamples;
    settleLeft = settleSamples;
    if (measureStep >= kSteps) measurePhase = 1;
}

void CalibrationMeasurement::TakeResult(CalibrationTable& table, float sampleRate) {
    double note = 0.0;
    const double raw = estimator.Result(double(sampleRate), note);
    const float level = Level();
    if (havePrevious && previousNote < 127.0 && note > 0.0) {
        const int32_t first = int32_t(std::clamp(std::ceil(previousNote), 0.0, 127.0));
        const int32_t last = int32_t(std::clamp(std::floor(note), 0.0, 127.0));
        for (int32_t i = first; i <= last; ++i) {
            const double x = hertzMode ? 440.0 * std::pow(2.0, (i - 69) / 12.0) : double(i);
            // Two equal readings span no interval: the note sits at this level.
            const double value =
                raw != previousRaw
                    ? (x - previousRaw) / (raw - previousRaw) * double(level - previousLevel) + previousLevel
                    : double(level);
            table.notes[i].value = float(value);
            table.valid[i] = 1;
        }
    }
    previousRaw = raw;
    previousNote = note;
    previousLevel = level;
    havePrevious = true;
}

void CalibrationMeasurement::Finish(CalibrationTable& table) {
    float values[kCalibrationEntries];
    uint8_t filled[kCalibrationEntries];
    for (int32_t k = 0; k < kCalibrationEntries; ++k) {
        values[k] = table.notes[k].value;
        filled[k] = table.valid[k];
    }
    FillOctaves(values, filled, kCalibrationEntries);
    for (int32_t k = 0; k < kCalibrationEntries; ++k)
        table.notes[k].value = values[k];
    measurePhase = 0;
    measureStep = kSteps;
}

}  // namespace BR
