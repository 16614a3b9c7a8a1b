// A triggered lane that reaches the end of its loop stops one sample short of the wrap, in the last
// step, like at any other boundary: the step back from a phase just past 0 lands near 1, not below 0.
// A phase left below 0 would play the first step until the block ends and the last step after it, so
// the output would hang on the block size.
#include <gtest/gtest.h>

#include "StepLFORig.h"

using StepLFOTest::Set;

namespace {
const std::vector<float> kRamp = StepLFOTest::Ramp();

// Lane L in "Trig Free", four steps of 64 samples, triggered at 100, 1100 and 2100 (steps 2, 3 and 4,
// which runs into the wrap at 2164 and stands there) and at 3100 (on to step 1).
BR::Test::Channels Render(uint32_t block, bool random) {
    auto driver = StepLFOTest::FreeRamp();
    Set(*driver, "Sync L", 4.0f);
    Set(*driver, "Length In Steps L", 4.0f);
    if (random) {
        Set(*driver, "Random Enable L", 1.0f);
        Set(*driver, "Randomness L", -1.0f);  // flips at every step: each draw gives a new value
    }
    std::vector<BR::Test::MidiAt> notes;
    for (uint32_t at : {100u, 1100u, 2100u, 3100u})
        notes.push_back({at, {0x90, 60, 100}});
    auto out = BR::Test::RenderFrames(*driver, 6000, block, {}, notes);
    const auto& lane = StepLFOTest::Module(*driver).State(0);
    EXPECT_EQ(lane.currentStep, 0);
    EXPECT_EQ(lane.increment, 0.0);
    EXPECT_NEAR(lane.phase, 1.0 / 4.0 - 1.0 / 256.0, 1e-12);  // one sample short of step 2
    if (random) {
        // Four boundaries, each with its double pass: the runs into steps 3 and 4, into step 1 at the
        // wrap, and into step 2. Entering a step by a trigger draws nothing.
        uint32_t state = 0;
        for (int k = 0; k < 8; ++k)
            state = state * 49979693u + 15485867u;
        EXPECT_EQ(lane.random.randomState, state);
    }
    return out;
}
}  // namespace

TEST(StepLFOTriggerWrap, StandsOnTheLastStepWhateverTheBlockSize) {
    const auto whole = Render(6000, false);
    for (uint32_t i = 2100; i < 3100; ++i)
        ASSERT_EQ(whole[0][i], kRamp[3]) << i;
    for (uint32_t i = 3100; i < 6000; ++i)
        ASSERT_EQ(whole[0][i], kRamp[0]) << i;  // the next trigger goes on to the first step
    for (uint32_t block : {1u, 7u, 256u}) {
        const auto split = Render(block, false);
        for (uint32_t i = 0; i < 6000; ++i)
            ASSERT_EQ(split[0][i], whole[0][i]) << "block " << block << " sample " << i;
    }
}

TEST(StepLFOTriggerWrap, RandomStepRunsTwiceAtTheWrapToo) {
    // The register's values in the order drawn; draws 5 and 6 are the wrap's two passes, the second
    // writing into step 4, where the lane stands until the trigger at 3100.
    BR::RandomSettings settings;
    settings.randomEnabled = true;
    settings.randomness = -1.0f;
    BR::RandomRegister reference;
    float values[8];
    for (float& value : values)
        value = reference.Step(settings, nullptr);
    ASSERT_NE(values[4], values[5]);
    for (uint32_t block : {6000u, 7u, 1u}) {
        const auto out = Render(block, true);
        for (uint32_t i = 2200; i < 3100; ++i)
            ASSERT_EQ(out[0][i], values[5]) << "block " << block << " sample " << i;
    }
}
