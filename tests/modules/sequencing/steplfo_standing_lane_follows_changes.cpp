// A triggered lane standing at a step renders its later passes without the step loop, yet follows
// everything that moves it: a step value set meanwhile, a row of the lane, a trigger, a reset, and
// trigger inputs switched between blocks.
#include <gtest/gtest.h>

#include "StepLFORig.h"

using StepLFOTest::Set;

namespace {
const std::vector<float> kRamp = StepLFOTest::Ramp();

// Both lanes in "Trig Free" at 64 samples a step, standing at step 1 until triggered.
std::unique_ptr<BR::HostDriver> Standing(bool inStepRuns) {
    auto driver = StepLFOTest::FreeRamp();
    StepLFOTest::Module(*driver).SetInStepRuns(inStepRuns);
    Set(*driver, "Sync L", 4.0f);
    Set(*driver, "Sync R", 4.0f);
    return driver;
}
}  // namespace

TEST(StepLFOStanding, FollowsAStepSetMeanwhile) {
    for (bool inStepRuns : {true, false}) {
        auto driver = Standing(inStepRuns);
        auto out = BR::Test::RenderFrames(*driver, 256, 64);
        EXPECT_EQ(out[0][255], kRamp[0]);
        const uint64_t before = StepLFOTest::Module(*driver).InStepSamples();
        Set(*driver, "Step 1 L", -0.25f);
        out = BR::Test::RenderFrames(*driver, 256, 64);
        for (size_t i = 0; i < 256; ++i)
            ASSERT_EQ(out[0][i], -0.25f) << i << " runs " << inStepRuns;
        // The first pass after the change went through the step loop (a row moved); every later
        // sample of both lanes came from standing passes (none with the reference form).
        EXPECT_EQ(StepLFOTest::Module(*driver).InStepSamples() - before, inStepRuns ? 2u * 192u : 0u);
        // A host that stores on its audio thread and notifies later: the step's mirror, which the lane
        // plays, moves at the notification, and the next pass shows it.
        auto& module = StepLFOTest::Module(*driver);
        const int32_t step1 = BrelCorvaneStepLFO::kStepsL + 1;  // parameter index: table row + 1
        module.StoreParameterValue(step1, 0.75f);
        out = BR::Test::RenderFrames(*driver, 64, 64);
        EXPECT_EQ(out[0][0], -0.25f) << " runs " << inStepRuns;
        module.NotifyParameterValue(step1);
        out = BR::Test::RenderFrames(*driver, 64, 64);
        EXPECT_EQ(out[0][0], 0.75f) << " runs " << inStepRuns;
    }
}

TEST(StepLFOStanding, FollowsRowsTriggersAndResets) {
    for (bool inStepRuns : {true, false}) {
        auto driver = Standing(inStepRuns);
        BR::Test::RenderFrames(*driver, 128, 64);
        Set(*driver, "Multiplier L", 2.0f);
        Set(*driver, "Offset L", 0.5f);
        auto out = BR::Test::RenderFrames(*driver, 64, 64);
        EXPECT_EQ(out[0][0], kRamp[0] * 2.0f + 0.5f);
        Set(*driver, "Input Mode L", 1.0f);  // "Multiply" with no input: nothing of the step is left
        out = BR::Test::RenderFrames(*driver, 64, 64);
        EXPECT_EQ(out[0][0], 0.0f);
        Set(*driver, "Input Mode L", 0.0f);
        Set(*driver, "Start Step L", 3.0f);  // the loop moved under the standing lane: it plays step 3
        out = BR::Test::RenderFrames(*driver, 64, 64);
        EXPECT_EQ(out[0][0], kRamp[2] * 2.0f + 0.5f);
        Set(*driver, "Start Step L", 1.0f);
        out = BR::Test::RenderFrames(*driver, 64, 64);
        EXPECT_EQ(out[0][0], kRamp[0] * 2.0f + 0.5f);
        // A note triggers it on to step 2, where it stands again; a reset by note brings it back.
        Set(*driver, "Reset By Note L", 1.0f);
        Set(*driver, "Reset Note Min L", 10.0f);
        Set(*driver, "Reset Note Max L", 10.0f);
        Set(*driver, "Trigger Note Min L", 60.0f);
        out = BR::Test::RenderFrames(*driver, 512, 64, {}, {{10, {0x90, 60, 100}}, {300, {0x90, 10, 100}}});
        EXPECT_EQ(out[0][9], kRamp[0] * 2.0f + 0.5f);
        for (size_t i = 10; i < 300; ++i)
            ASSERT_EQ(out[0][i], kRamp[1] * 2.0f + 0.5f) << i << " runs " << inStepRuns;
        for (size_t i = 300; i < 512; ++i)
            ASSERT_EQ(out[0][i], kRamp[0] * 2.0f + 0.5f) << i << " runs " << inStepRuns;
    }
}

TEST(StepLFOStanding, TriggerInputSwitchedBetweenBlocks) {
    // A square wave on input 3 rising every 100 samples; the trigger input is off, then on, then off.
    const uint32_t frames = 1200;
    BR::Test::Channels inputs(3, std::vector<float>(frames, 0.0f));
    for (uint32_t i = 0; i < frames; ++i)
        inputs[2][i] = (i % 100) >= 50 ? 1.0f : 0.0f;
    const auto from = [&](uint32_t start, uint32_t count) {
        BR::Test::Channels part;
        for (const auto& c : inputs)
            part.emplace_back(c.begin() + start, c.begin() + start + count);
        return part;
    };
    for (bool inStepRuns : {true, false}) {
        auto driver = Standing(inStepRuns);
        auto out = BR::Test::RenderFrames(*driver, 400, 100, from(0, 400));
        EXPECT_EQ(out[0][399], kRamp[0]);  // no line: the edges go unheard
        Set(*driver, "Trigger Input L", 3.0f);
        out = BR::Test::RenderFrames(*driver, 400, 100, from(400, 400));
        // The edges at 450, 550, ... each move the lane a step, and the samples of a block up to an
        // edge come out in the new state: each block of 100 plays the step its edge moved to.
        for (size_t i = 0; i < 400; ++i)
            ASSERT_EQ(out[0][i], kRamp[1 + i / 100]) << i << " runs " << inStepRuns;
        Set(*driver, "Trigger Input L", 0.0f);
        out = BR::Test::RenderFrames(*driver, 400, 100, from(800, 400));
        for (size_t i = 0; i < 400; ++i)
            ASSERT_EQ(out[0][i], kRamp[4]) << i << " runs " << inStepRuns;
    }
}
