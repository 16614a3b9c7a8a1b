// Measuring a calibration against a simulated oscillator: a clean sine whose frequency follows the
// level it receives from output 1, fed back into the input one host block later. An oscillator that
// is exactly linear in V/oct (or in Hz/V, measured in Hz mode) gives a table whose notes play within
// 1 cent of equal temperament across the measured range; a slightly curved one is reported.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <functional>

#include "VoiceControllerRig.h"

namespace {

constexpr float kRate = 48000.0f;
constexpr uint32_t kBlock = 256;

double NoteOf(double hz) {
    return 12.0 * std::log2(hz / 440.0) + 69.0;
}
double HertzOf(double note) {
    return 440.0 * std::pow(2.0, (note - 69.0) / 12.0);
}

struct Result {
    double worstCents = 0.0;
    int measured = 0;
    int blocks = 0;
};

// Runs the routine started by `property`; `hertzAt(level)` is the oscillator's response. Returns the
// worst deviation over the valid notes of the tuned oscillator from equal temperament.
Result Measure(BR::Test::VoiceRig& rig, uint32_t property, const std::function<double(float)>& hertzAt) {
    const uint8_t one = 1;
    EXPECT_EQ(rig.vc.SetProperty(property, &one, 1), BR::kNoErr);
    std::vector<float> heard(kBlock, 0.0f), level(kBlock, 0.0f);
    std::vector<std::vector<float>> out(6, std::vector<float>(kBlock));
    double phase = 0.0;
    Result result;
    bool started = false;
    while (result.blocks < 4000) {
        float* outputs[6];
        for (int c = 0; c < 6; ++c)
            outputs[c] = out[size_t(c)].data();
        const float* inputs[1] = {heard.data()};
        rig.driver->Process(inputs, outputs, kBlock, nullptr, 0);
        ++result.blocks;
        if (rig.vc.GetMode() == BrelCorvaneVoiceController::kModeMeasuring) started = true;
        if (started && rig.vc.GetMode() == BrelCorvaneVoiceController::kModeNormal) break;
        // The oscillator hears this block's output 1 and answers during the next block.
        for (uint32_t i = 0; i < kBlock; ++i) {
            phase += hertzAt(out[0][i]) / double(kRate);
            phase -= std::floor(phase);
            heard[i] = float(std::sin(2.0 * M_PI * phase));
        }
    }
    EXPECT_TRUE(started);
    EXPECT_EQ(rig.vc.GetMode(), BrelCorvaneVoiceController::kModeNormal);
    const BR::CalibrationTable& table = rig.vc.Calibration();
    for (int n = 0; n < 128; ++n) {
        if (!table.valid[n]) continue;
        ++result.measured;
        const double cents = (NoteOf(hertzAt(table.notes[n].value)) - n) * 100.0;
        result.worstCents = std::max(result.worstCents, std::fabs(cents));
    }
    return result;
}

}  // namespace

TEST(VoiceControllerMeasure, LinearVoltsPerOctaveWithinOneCent) {
    BR::Test::VoiceRig rig(kRate);
    // Note 60 at level 0, three octaves per unit: levels -1..1 span notes 24 to 96.
    const Result result = Measure(rig, BR::kPropertyCalibrateVoltsPerOctave,
                                  [](float level) { return HertzOf(60.0 + 36.0 * level); });
    std::printf("linear V/oct: %d notes measured, worst error %.4f cents, %d blocks\n", result.measured,
                result.worstCents, result.blocks);
    EXPECT_EQ(result.measured, 73);
    EXPECT_LT(result.worstCents, 1.0);
    const BR::CalibrationTable& table = rig.vc.Calibration();
    for (int n = 24; n <= 96; ++n)
        EXPECT_EQ(table.valid[n], 1) << n;
    // Outside the measured range: the nearest octave's level, so the note is an octave off but in tune.
    EXPECT_EQ(table.notes[12].value, table.notes[24].value);
    EXPECT_EQ(table.notes[100].value, table.notes[88].value);
    EXPECT_EQ(table.valid[100], 0);
    EXPECT_EQ(rig.vc.CalibrationName(), "<>");
    int64_t time = 0;
    rig.vc.GetProperty(BR::kPropertyCalibrationTime, &time);
    EXPECT_NE(time, 0);
    // 17 steps of a quarter second's settling and a measurement of at most a second each.
    EXPECT_LT(result.blocks * kBlock, uint32_t(17 * 1.25 * kRate));
}

TEST(VoiceControllerMeasure, CurvedResponseReportsWorstError) {
    BR::Test::VoiceRig rig(kRate);
    const Result result = Measure(rig, BR::kPropertyCalibrateVoltsPerOctave, [](float level) {
        return HertzOf(60.0 + 36.0 * level + 1.5 * double(level) * level);
    });
    std::printf("curved V/oct response: %d notes measured, worst error %.4f cents\n", result.measured,
                result.worstCents);
    EXPECT_GT(result.measured, 70);
    // Straight lines between levels 0.125 apart bend by at most 1.5 * 0.125^2 / 4 semitones.
    EXPECT_LT(result.worstCents, 100.0 * 1.5 * 0.125 * 0.125 / 4.0 + 0.2);
}

TEST(VoiceControllerMeasure, LinearHertzPerVoltWithinOneCent) {
    BR::Test::VoiceRig rig(kRate);
    const Result result =
        Measure(rig, BR::kPropertyCalibrateHertzPerVolt, [](float level) { return 1100.0 + 1000.0 * level; });
    std::printf("linear Hz/V: %d notes measured, worst error %.4f cents\n", result.measured,
                result.worstCents);
    EXPECT_EQ(result.measured, 53);  // 100 Hz to 2100 Hz: notes 44 to 96
    EXPECT_LT(result.worstCents, 1.0);
}

TEST(VoiceControllerMeasure, OutputsDuringMeasuring) {
    BR::Test::VoiceRig rig(kRate);
    rig.Set("Gate Open Voltage", 0.75f);
    rig.Set("Output 3 Env1", 0.5f);
    rig.Set("Output 4 Env2", 0.0f);
    rig.Set("Output 4 Trigger", 1.0f);
    rig.Set("Trigger Off Voltage", -0.25f);
    rig.Set("Output 5 Velocity", 1.0f);
    rig.Set("Output 5 Env3", 0.0f);
    const uint8_t one = 1;
    rig.vc.SetProperty(BR::kPropertyCalibrateVoltsPerOctave, &one, 1);
    const auto out = rig.Render(1024);
    EXPECT_EQ(rig.vc.GetMode(), BrelCorvaneVoiceController::kModeMeasuring);
    EXPECT_EQ(out[0][100], -1.0f);   // step 0: level -1
    EXPECT_EQ(out[1][100], 0.75f);   // gate open
    EXPECT_EQ(out[2][100], 0.5f);    // envelope signals held at 1.0
    EXPECT_EQ(out[3][100], -0.25f);  // trigger off
    EXPECT_EQ(out[4][100], 0.0f);    // velocity 0
}
