// "Trig Free" and "Trig Tempo": a lane stands until a trigger, runs to the next step boundary and
// stands one sample short of it; a trigger with a delayed reset waiting goes to the reset position;
// trigger input edges, with hysteresis, act on the sample of the edge and all samples since the last
// rendering.
#include <gtest/gtest.h>

#include "StepLFORig.h"

using StepLFOTest::Set;

namespace {
const std::vector<float> kRamp = StepLFOTest::Ramp();

std::unique_ptr<BR::HostDriver> Triggered(float sync = 4.0f) {
    auto driver = StepLFOTest::FreeRamp();
    Set(*driver, "Sync L", sync);
    return driver;
}
}  // namespace

TEST(StepLFOTrigger, StandsUntilTriggeredAndStopsAtTheNextBoundary) {
    auto driver = Triggered();
    const auto out = BR::Test::RenderFrames(
        *driver, 1024, 128, {}, {{100, {0x90, 60, 100}}, {300, {0x90, 61, 100}}, {310, {0x90, 62, 1}}});
    for (size_t i = 0; i < 100; ++i)
        ASSERT_EQ(out[0][i], kRamp[0]) << i;  // no trigger yet: the lane stands
    for (size_t i = 100; i < 300; ++i)
        ASSERT_EQ(out[0][i], kRamp[1]) << i;  // one step on, and it stays there past 164
    for (size_t i = 300; i < 310; ++i)
        ASSERT_EQ(out[0][i], kRamp[2]) << i;
    for (size_t i = 310; i < 1024; ++i)
        ASSERT_EQ(out[0][i], kRamp[3]) << i;  // a trigger before the boundary also moves on at once
    const auto& lane = StepLFOTest::Module(*driver).State(0);
    EXPECT_EQ(lane.increment, 0.0);
    EXPECT_EQ(lane.currentStep, 3);
    EXPECT_NEAR(lane.phase, 4.0 / 16.0 - 1.0 / 1024.0, 1e-12);  // one sample short of step 5
}

TEST(StepLFOTrigger, EveryStepOfTheLoopInTurn) {
    // Sixteen triggers and more, in both trigger modes, with the loop wrapping back to step 1.
    for (float sync : {4.0f, 5.0f}) {
        auto driver = Triggered(sync);
        BR::DriverTransport transport;
        transport.tempo = 180.0;
        driver->SetTransport(&transport);
        std::vector<BR::Test::MidiAt> notes;
        for (uint32_t k = 0; k < 40; ++k)
            notes.push_back({100 + 2000 * k, {0x90, 60, 100}});
        const auto out = BR::Test::RenderFrames(*driver, 82000, 256, {}, notes);
        for (uint32_t k = 0; k < 40; ++k)
            ASSERT_EQ(out[0][100 + 2000 * k + 1500], kRamp[(k + 1) % 16]) << sync << " " << k;
    }
}

TEST(StepLFOTrigger, StartStepAndAsymmetryStillAdvanceOneStep) {
    auto driver = Triggered();
    Set(*driver, "Start Step L", 5.0f);
    Set(*driver, "Length In Steps L", 7.0f);
    Set(*driver, "Asymmetry L", -35.0f);
    std::vector<BR::Test::MidiAt> notes;
    for (uint32_t k = 0; k < 20; ++k)
        notes.push_back({100 + 1000 * k, {0x90, 60, 100}});
    const auto out = BR::Test::RenderFrames(*driver, 21000, 256, {}, notes);
    for (uint32_t k = 0; k < 20; ++k)
        ASSERT_EQ(out[0][100 + 1000 * k + 900], kRamp[4 + (k + 1) % 7]) << k;
}

TEST(StepLFOTrigger, PendingResetIsConsumedByTheTrigger) {
    auto driver = Triggered();
    Set(*driver, "Reset By Note L", 2.0f);  // Delayed
    Set(*driver, "Reset Note Min L", 10.0f);
    Set(*driver, "Reset Note Max L", 10.0f);
    Set(*driver, "Trigger Note Min L", 20.0f);
    Set(*driver, "Trigger Note Max L", 20.0f);
    Set(*driver, "Phase L", 45.0f);  // the reset position is step 3
    const auto out = BR::Test::RenderFrames(*driver, 1024, 1024, {},
                                            {{10, {0x90, 20, 100}},
                                             {200, {0x90, 20, 100}},
                                             {400, {0x90, 10, 100}},
                                             {600, {0x90, 20, 100}},
                                             {800, {0x90, 20, 100}}});
    EXPECT_EQ(out[0][100], kRamp[1]);
    EXPECT_EQ(out[0][300], kRamp[2]);
    EXPECT_EQ(out[0][500], kRamp[2]);      // the reset waits
    EXPECT_TRUE(out[0][700] == kRamp[2]);  // the trigger took the reset position, step 3, not step 4
    EXPECT_EQ(out[0][900], kRamp[3]);
    EXPECT_FALSE(StepLFOTest::Module(*driver).State(0).pendingReset);
}

TEST(StepLFOTrigger, InstantResetInTriggerMode) {
    auto driver = Triggered();
    Set(*driver, "Reset By Note L", 1.0f);
    Set(*driver, "Reset Note Min L", 10.0f);
    Set(*driver, "Reset Note Max L", 10.0f);
    Set(*driver, "Trigger Note Min L", 20.0f);
    Set(*driver, "Trigger Note Max L", 20.0f);
    const auto out = BR::Test::RenderFrames(
        *driver, 1024, 1024, {}, {{10, {0x90, 20, 100}}, {200, {0x90, 20, 100}}, {400, {0x90, 10, 100}}});
    EXPECT_EQ(out[0][300], kRamp[2]);
    // The reset goes to step 1 and runs from there to the next boundary, where it stands.
    EXPECT_EQ(out[0][400], kRamp[0]);
    EXPECT_EQ(out[0][470], kRamp[0]);
    EXPECT_EQ(out[0][1000], kRamp[0]);
    EXPECT_NEAR(StepLFOTest::Module(*driver).State(0).phase, 1.0 / 16.0 - 1.0 / 1024.0, 1e-12);
}

TEST(StepLFOTrigger, InputEdgeActsFromTheLastRendering) {
    // A pulse on input 5 (the third sidechain) from sample 100 to 109.
    std::vector<float> pulse(256, 0.0f);
    std::fill(pulse.begin() + 100, pulse.begin() + 110, 1.0f);
    const BR::Test::Channels inputs = {{}, {}, {}, {}, pulse};
    const struct {
        uint32_t block;
        size_t firstChanged;
    } cases[] = {{256, 0}, {64, 64}, {1, 100}};
    for (const auto& c : cases) {
        auto driver = Triggered();
        Set(*driver, "Trigger Input L", 5.0f);
        const auto out = BR::Test::RenderFrames(*driver, 256, c.block, inputs);
        for (size_t i = 0; i < 256; ++i)
            ASSERT_EQ(out[0][i], i < c.firstChanged ? kRamp[0] : kRamp[1]) << "block " << c.block << " " << i;
    }
}

TEST(StepLFOTrigger, InputHysteresis) {
    auto driver = Triggered();
    Set(*driver, "Trigger Input L", 3.0f);
    // 0.21 is not above 0.21; 0.22 is an edge; 0.19 keeps the gate; 0.18 closes it; 0.22 again is an edge.
    const std::vector<float> levels = {0.0f, 0.21f, 0.22f, 0.19f, 0.2f, 0.22f, 0.18f, 0.22f};
    std::vector<float> in;
    for (float level : levels)
        in.insert(in.end(), 20, level);
    const auto out = BR::Test::RenderFrames(*driver, uint32_t(in.size()), 1, {{}, {}, in});
    EXPECT_EQ(out[0][39], kRamp[0]);
    EXPECT_EQ(out[0][40], kRamp[1]);
    EXPECT_EQ(out[0][139], kRamp[1]);
    EXPECT_EQ(out[0][140], kRamp[2]);
    EXPECT_EQ(out[0][159], kRamp[2]);
}

TEST(StepLFOTrigger, TriggerNotesOnlyInTriggerModes) {
    auto driver = StepLFOTest::FreeRamp();
    Set(*driver, "Speed L", 0.05f);  // free, slow: the first step lasts long
    const auto out = BR::Test::RenderFrames(*driver, 256, 256, {}, {{100, {0x90, 60, 100}}});
    EXPECT_EQ(out[0][200], kRamp[0]);
}
