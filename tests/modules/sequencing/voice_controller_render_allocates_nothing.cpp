// Rendering Voice Controllers allocates nothing: one instance with notes, controllers and bends in
// every block, a master with four voices playing chords, and a running measurement.
#include <gtest/gtest.h>

#include "VoiceControllerRig.h"
#include "tests/support/AllocationCounter.h"

using BR::Test::Midi;

TEST(VoiceControllerRealtime, MonoAllocatesNothing) {
    BR::Test::VoiceRig rig;
    rig.Set("Portamento Mode", 3);
    rig.Set("Output 1 Smoothing", -5.0f);
    rig.Set("Output 3 Env2", 0.5f);
    rig.Set("Output 3 Trigger", 0.5f);
    rig.Set("Pitch LFO Depth", 20.0f);
    const uint32_t block = 256;
    std::vector<float> in(block, 0.0f);
    std::vector<std::vector<float>> out(6, std::vector<float>(block));
    const float* inputs[1] = {in.data()};
    float* outputs[6];
    for (int c = 0; c < 6; ++c)
        outputs[c] = out[size_t(c)].data();
    const uint8_t on[3] = {0x90, 60, 100}, on2[3] = {0x90, 67, 90}, off[3] = {0x80, 60, 0},
                  off2[3] = {0x80, 67, 0}, pedal[3] = {0xB0, 64, 127}, bend[3] = {0xE0, 3, 70},
                  panic[3] = {0xB0, 120, 0};
    const BR::TimedMidi midi[7] = {{0, 3, on},    {10, 3, on2},   {40, 3, pedal}, {50, 3, bend},
                                   {100, 3, off}, {101, 3, off2}, {250, 3, panic}};
    rig.driver->Process(inputs, outputs, block, midi, 7);
    BR::Test::AllocationScope scope;
    for (int b = 0; b < 50; ++b) {
        rig.vc.ToAudioQueue().Write(uint32_t(BrelCorvaneVoiceController::kPropertyDontPanic));
        rig.driver->Process(inputs, outputs, block, midi, 7);
    }
    EXPECT_EQ(scope.Count(), 0u);
}

TEST(VoiceControllerRealtime, MasterWithVoicesAllocatesNothing) {
    BR::Test::PolyRig rig(4, {1, 2, 3, 4});
    const uint32_t block = 256;
    std::vector<float> silence(block, 0.0f), markers(block);
    std::vector<std::vector<float>> out(6, std::vector<float>(block));
    float* outputs[6];
    for (int c = 0; c < 6; ++c)
        outputs[c] = out[size_t(c)].data();
    const uint8_t notes[4] = {60, 64, 67, 71};
    uint8_t on[4][3], off[4][3];
    BR::TimedMidi midi[8];
    for (int k = 0; k < 4; ++k) {
        on[k][0] = 0x90, on[k][1] = notes[k], on[k][2] = 100;
        off[k][0] = 0x80, off[k][1] = notes[k], off[k][2] = 0;
        midi[k] = {uint32_t(k * 3), 3, on[k]};
        midi[4 + k] = {uint32_t(200 + k), 3, off[k]};
    }
    auto renderBlock = [&] {
        const float* in[1] = {silence.data()};
        rig.master->driver->Process(in, outputs, block, midi, 8);
        std::copy(out[0].begin(), out[0].end(), markers.begin());
        const float* voiceIn[1] = {markers.data()};
        for (auto& voice : rig.voices)
            voice->driver->Process(voiceIn, outputs, block, nullptr, 0);
    };
    renderBlock();
    BR::Test::AllocationScope scope;
    for (int b = 0; b < 50; ++b)
        renderBlock();
    EXPECT_EQ(scope.Count(), 0u);
    EXPECT_EQ(rig.Master().BatchWrite(), (51 * 8) % 64);
}

TEST(VoiceControllerRealtime, MeasuringAllocatesNothing) {
    BR::Test::VoiceRig rig;
    const uint8_t one = 1;
    rig.vc.SetProperty(BR::kPropertyCalibrateVoltsPerOctave, &one, 1);
    const uint32_t block = 256;
    std::vector<float> in(block);
    for (uint32_t i = 0; i < block; ++i)
        in[i] = (i / 20) % 2 ? 0.5f : -0.5f;  // a square wave of 40 samples
    std::vector<std::vector<float>> out(6, std::vector<float>(block));
    const float* inputs[1] = {in.data()};
    float* outputs[6];
    for (int c = 0; c < 6; ++c)
        outputs[c] = out[size_t(c)].data();
    rig.driver->Process(inputs, outputs, block, nullptr, 0);
    BR::Test::AllocationScope scope;
    // Through all 17 steps and the finish, which names the table "<>".
    for (int b = 0; b < 1200 && rig.vc.GetMode() == BrelCorvaneVoiceController::kModeMeasuring; ++b)
        rig.driver->Process(inputs, outputs, block, nullptr, 0);
    EXPECT_EQ(scope.Count(), 0u);
    EXPECT_EQ(rig.vc.GetMode(), BrelCorvaneVoiceController::kModeNormal);
    EXPECT_EQ(rig.vc.CalibrationName(), "<>");
}
