// Quantizer on the audio thread: parameters read in the blocks where they changed, the filtered
// tables built when their calibration or scale changed, and the two grids sampled per channel.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "Quantizer.h"

namespace BrelCorvaneQuantizer {

namespace {

// `y` truncated toward zero, as a float. Magnitudes of 2^23 and up are whole numbers already, and
// stay out of the integer conversion, which they would overflow; NaN passes through.
inline float TruncateTowardZero(float y) {
    return std::fabs(y) < 8388608.0f ? float(int32_t(y)) : y;
}

void CopyInput(const float* x, float* y, uint32_t frames) {
    if (x != y) std::memmove(y, x, frames * sizeof(float));
}

}  // namespace

void BrelCorvane::ReadChannelParameters(int c, int32_t scaleCount) {
    Channel& ch = channels[c];
    const int32_t row = c * kRowsPerChannel;
    const int32_t scaleRow = c * kScaleRowsPerChannel;
    ch.enabled = BlockValue(kEnableL + row) != 0.0f;
    ch.mode = int32_t(BlockValue(kModeL + row)) == kModeCalibrated ? kModeCalibrated : kModeManual;
    if (ch.mode == kModeManual) {
        const float s = BlockValue(kStepsL + row) + BlockValue(kStepsFineL + row);
        ch.halfSteps = s * 0.5f;
        ch.gridOffset = BlockValue(kOffsetL + row) * 0.01f * (2.0f / s);
        // The scale fields stay as they were.
    } else {
        ch.scaleEnabled = BlockValue(kEnableScaleL + scaleRow) != 0.0f;
        ch.keySum = int32_t(BlockValue(kKeyL + scaleRow)) + int32_t(BlockValue(kKeyOffsetL + scaleRow));
        const int32_t index = std::max(0, int32_t(BlockValue(kScaleL + scaleRow)));
        if (scaleCount == 0) {
            ch.scaleEnabled = false;  // and scaleIndex keeps its former value
        } else {
            ch.scaleIndex = std::min(index, scaleCount - 1);
        }
    }
    ch.transpose = BlockValue(kTransposeL + row);
    ch.smoother.Configure(BlockValue(kSmoothingL + row), sampleRate);
}

void BrelCorvane::BuildTable(int c, const BR::QuantizerTable& source) {
    Channel& ch = channels[c];
    BR::QuantizerTable& table = filtered[c];
    const int32_t count = std::clamp<int32_t>(source.count, 0, BR::kCalibrationEntries);
    int32_t kept = 0;
    if (!ch.scaleEnabled) {
        std::copy_n(source.voltages, count, table.voltages);
        std::copy_n(source.notes, count, table.notes);
        kept = count;
    } else {
        // Bit n of the mask: the n-th semitone above the key. An empty mask lets every note pass.
        const uint32_t mask = scaleMasks[ch.scaleIndex];
        const uint32_t m = mask == 0 ? 0xFFFFFFFFu : mask;
        for (int32_t i = 0; i < count; ++i) {
            int64_t degree = (int64_t(source.notes[i]) - ch.keySum + 240) % 12;
            if (degree < 0) degree += 12;  // only notes far below the key; the bit stays in 0..11
            if ((m >> degree) & 1u) {
                table.voltages[kept] = source.voltages[i];
                table.notes[kept] = source.notes[i];
                ++kept;
            }
        }
    }
    table.count = kept;
    ch.ascending = true;
    for (int32_t i = 1; i < kept; ++i)
        if (!(table.voltages[i] >= table.voltages[i - 1])) ch.ascending = false;
    ch.builtScaleEnabled = ch.scaleEnabled;
    ch.builtKeySum = ch.keySum;
    ch.builtScaleIndex = ch.scaleIndex;
    ++tableBuilds;
}

bool BrelCorvane::BeginBlock(uint32_t frames) {
    if (!BrelCorvaneBase::BeginBlock(frames)) return false;
    const uint32_t generation = calibrationGeneration.load(std::memory_order_acquire);
    const int32_t scaleCount = audioScaleCount.load(std::memory_order_acquire);
    // The channel settings follow from the rows, the rate (a new rate marks every row) and the
    // number of scales; the tables from those and the calibration. Nothing moved: nothing to do.
    const bool settingsDue = RowsChanged() || scaleCount != readScaleCount;
    if (!settingsDue && generation == builtGeneration) return true;
    readScaleCount = scaleCount;
    const bool tablesBuilt = generation == builtGeneration;
    for (int c = 0; c < 2; ++c) {
        if (settingsDue) ReadChannelParameters(c, scaleCount);
        const Channel& ch = channels[c];
        if (!tablesBuilt || ch.scaleEnabled != ch.builtScaleEnabled || ch.keySum != ch.builtKeySum ||
            ch.scaleIndex != ch.builtScaleIndex)
            BuildTable(c, calibration);
    }
    builtGeneration = generation;
    return true;
}

void BrelCorvane::RenderManual(const Channel& ch, const float* x, float* y, uint32_t frames) {
    const float S = ch.halfSteps, O = ch.gridOffset;
    if (!(S > 0.0f)) {
        // "Steps" 1 with "Steps Fine" -1 leaves no steps across the range: the signal passes.
        CopyInput(x, y, frames);
        return;
    }
    const float c = ch.transpose / S + O;
    for (uint32_t i = 0; i < frames; ++i) {
        const float v = (x[i] - O) * S;
        const float q = TruncateTowardZero(v);
        // Below zero the value goes one step down from its truncation, so an exact negative grid
        // point lands a step lower (-2 gives -3). Kept as it is: saved patches are tuned to it.
        y[i] = (q + (v >= 0.0f ? 0.0f : -1.0f)) / S + c;
    }
}

void BrelCorvane::RenderCalibrated(Channel& ch, const BR::QuantizerTable& table, const float* x, float* y,
                                   uint32_t frames) {
    const int32_t count = table.count;
    const float* v = table.voltages;
    const int32_t* notes = table.notes;
    const int32_t t = int32_t(ch.transpose);
    const float first = v[0], last = v[count - 1];
    int32_t note = ch.currentNote;
    if (ch.ascending) {
        for (uint32_t s = 0; s < frames; ++s) {
            const float xs = x[s];
            // The first entry from 1 on that lies above the sample: the sample falls to the one
            // below it, and "Transpose" moves the choice in steps of the table.
            int32_t lo = 1, hi = count;
            while (lo < hi) {
                const int32_t mid = (lo + hi) >> 1;
                if (xs < v[mid]) {
                    hi = mid;
                } else {
                    lo = mid + 1;
                }
            }
            float out = first;
            if (lo < count) {
                const int32_t k = std::clamp(t - 1 + lo, 0, count - 1);
                out = v[k];
                note = notes[k];
            }
            // At the top the transpose is not applied and the note stays as it was: required.
            if (xs >= last) out = last;
            y[s] = out;
        }
    } else {
        // A table that falls somewhere (only property 64120 can give one) is searched in order.
        for (uint32_t s = 0; s < frames; ++s) {
            const float xs = x[s];
            float out = first;
            for (int32_t i = 1; i < count; ++i) {
                if (xs < v[i]) {
                    const int32_t k = std::clamp(t - 1 + i, 0, count - 1);
                    out = v[k];
                    note = notes[k];
                    break;
                }
            }
            if (xs >= last) out = last;
            y[s] = out;
        }
    }
    ch.currentNote = note;
}

void BrelCorvane::ProcessSlice(float** inputs, float** outputs, uint32_t frames) {
    QuantizerStatus& display = status.As<QuantizerStatus>();
    for (int c = 0; c < 2 && c < numOutputs; ++c) {
        Channel& ch = channels[c];
        const float* x = inputs[c];
        float* y = outputs[c];
        if (!ch.enabled) {
            // The smoothing state is left alone.
            CopyInput(x, y, frames);
            ch.currentNote = -1;
        } else {
            if (ch.mode == kModeCalibrated) {
                const BR::QuantizerTable& table = filtered[c];
                if (table.count == 0) {
                    CopyInput(x, y, frames);  // an empty table passes the signal
                    ch.currentNote = -1;
                } else if (table.count == 1) {
                    std::fill_n(y, frames, table.voltages[0]);
                    ch.currentNote = -1;
                } else {
                    RenderCalibrated(ch, table, x, y, frames);
                }
            } else {
                RenderManual(ch, x, y, frames);
                ch.currentNote = -1;
            }
            ch.smoother.Process(y, int(frames));
        }
        display.currentNote[c] =
            ch.currentNote >= 0 && ch.currentNote <= 127 ? int8_t(ch.currentNote) : int8_t(-1);
    }
}

}  // namespace BrelCorvaneQuantizer
