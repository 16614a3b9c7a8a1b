// Outside "Transport" and the trigger modes a reset acts at once, "Delayed" included; the reset input
// acts with the kind of "Reset By Note", even when that is "Off".
#include <gtest/gtest.h>

#include "StepLFORig.h"

using StepLFOTest::Set;

TEST(StepLFOFreeReset, DelayedActsAtOnce) {
    auto driver = StepLFOTest::FreeRamp();
    Set(*driver, "Reset By Note L", 2.0f);
    Set(*driver, "Phase L", 90.0f);  // resets to step 5
    const auto out = BR::Test::RenderFrames(*driver, 512, 512, {}, {{100, {0x90, 60, 1}}});
    const auto ramp = StepLFOTest::Ramp();
    EXPECT_EQ(out[0][99], ramp[1]);
    for (size_t i = 100; i < 164; ++i)
        ASSERT_EQ(out[0][i], ramp[4]) << i;
    EXPECT_EQ(out[0][164], ramp[5]);
}

TEST(StepLFOFreeReset, NoteOutsideTheRangeOrOffDoesNothing) {
    auto driver = StepLFOTest::FreeRamp();
    Set(*driver, "Reset By Note L", 1.0f);
    Set(*driver, "Reset Note Min L", 40.0f);
    Set(*driver, "Reset Note Max L", 50.0f);
    auto out = BR::Test::RenderFrames(*driver, 256, 256, {}, {{100, {0x90, 60, 1}}});
    EXPECT_EQ(out[0][130], StepLFOTest::Ramp()[2]);
    Set(*driver, "Reset By Note L", 0.0f);
    out = BR::Test::RenderFrames(*driver, 256, 256, {}, {{100, {0x90, 45, 1}}});
    EXPECT_EQ(out[0][130], StepLFOTest::Ramp()[6]);
}

TEST(StepLFOFreeReset, ResetInputActsEvenWhenResetByNoteIsOff) {
    auto driver = StepLFOTest::FreeRamp();
    Set(*driver, "Reset Input L", 4.0f);  // the second sidechain
    std::vector<float> pulse(512, 0.0f);
    std::fill(pulse.begin() + 300, pulse.begin() + 310, 1.0f);
    const auto out = BR::Test::RenderFrames(*driver, 512, 1, {{}, {}, {}, pulse});
    const auto ramp = StepLFOTest::Ramp();
    EXPECT_EQ(out[0][299], ramp[4]);
    EXPECT_EQ(out[0][300], ramp[0]);
    EXPECT_EQ(out[0][364], ramp[1]);
}
