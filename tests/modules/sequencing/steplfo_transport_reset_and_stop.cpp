// In "Transport" mode a reset only moves phaseOffset, so the next block's phase includes it and the
// transport itself never jumps; a stop clears phaseOffset and drops the steps out of the output, so
// that after a restart the lane is back in line with the position.
#include <gtest/gtest.h>

#include "StepLFORig.h"

using StepLFOTest::Set;

namespace {
// Lane L locked to the transport: 1/16 steps of 6000 samples at 120 BPM, resets by any note.
std::unique_ptr<BR::HostDriver> Locked(BR::DriverTransport& transport, float resetKind) {
    auto driver = StepLFOTest::FreeRamp();
    transport.tempo = 120.0;
    driver->SetTransport(&transport);
    Set(*driver, "Sync L", 2.0f);
    Set(*driver, "Beat Divisor L", 4.0f);
    Set(*driver, "Reset By Note L", resetKind);
    return driver;
}
const std::vector<float> kRamp = StepLFOTest::Ramp();
}  // namespace

TEST(StepLFOTransport, FollowsThePosition) {
    BR::DriverTransport transport;
    transport.blockQuarter = 1.5;  // 6 sixteenths in
    auto driver = Locked(transport, 0.0f);
    const auto out = BR::Test::RenderFrames(*driver, 6100, 1024);
    EXPECT_EQ(out[0][0], kRamp[6]);
    EXPECT_EQ(out[0][6001], kRamp[7]);
}

TEST(StepLFOTransport, ResetMovesOnlyTheOffset) {
    BR::DriverTransport transport;
    auto driver = Locked(transport, 1.0f);
    const auto out = BR::Test::RenderFrames(*driver, 16384, 1024, {}, {{9000, {0x90, 60, 100}}});
    const auto& lane = StepLFOTest::Module(*driver).State(0);
    EXPECT_NEAR(lane.phaseOffset, -9000.0 / 96000.0, 1e-9);
    // The block holding the reset runs on; the next block, from 9216, starts the loop over.
    for (size_t i = 6000; i < 9216; ++i)
        ASSERT_EQ(out[0][i], kRamp[1]) << i;
    for (size_t i = 9216; i < 15000; ++i)
        ASSERT_EQ(out[0][i], kRamp[0]) << i;
    EXPECT_EQ(out[0][15001], kRamp[1]);
    // The transport went on undisturbed.
    EXPECT_NEAR(transport.blockQuarter, 16384.0 / 24000.0, 1e-9);
}

TEST(StepLFOTransport, InstantResetGoesToTheStartOfTheStep) {
    BR::DriverTransport transport;
    auto driver = Locked(transport, 3.0f);
    BR::Test::RenderFrames(*driver, 10240, 1024, {}, {{9000, {0x90, 60, 100}}});
    EXPECT_NEAR(StepLFOTest::Module(*driver).State(0).phaseOffset, -1.0 / 16.0, 1e-12);
}

TEST(StepLFOTransport, DelayedResetWaitsForTheNextStep) {
    BR::DriverTransport transport;
    auto driver = Locked(transport, 2.0f);
    const auto out = BR::Test::RenderFrames(*driver, 20480, 1024, {}, {{9000, {0x90, 60, 100}}});
    // Step 2 plays to its end at 12000; there the loop starts over, and the offset follows.
    EXPECT_EQ(out[0][11999], kRamp[1]);
    EXPECT_EQ(out[0][12001], kRamp[0]);
    EXPECT_EQ(out[0][17999], kRamp[0]);
    EXPECT_EQ(out[0][18001], kRamp[1]);
    EXPECT_FALSE(StepLFOTest::Module(*driver).State(0).pendingReset);
    EXPECT_NEAR(StepLFOTest::Module(*driver).State(0).phaseOffset, -2.0 / 16.0, 1e-12);
}

TEST(StepLFOTransport, ClosestPicksInstantOrDelayed) {
    BR::DriverTransport early, late;
    auto first = Locked(early, 4.0f);
    BR::Test::RenderFrames(*first, 10240, 1024, {}, {{8000, {0x90, 60, 100}}});  // a third into step 2
    EXPECT_NEAR(StepLFOTest::Module(*first).State(0).phaseOffset, -1.0 / 16.0, 1e-12);
    auto second = Locked(late, 4.0f);
    BR::Test::RenderFrames(*second, 11264, 1024, {}, {{11000, {0x90, 60, 100}}});  // late in step 2
    EXPECT_TRUE(StepLFOTest::Module(*second).State(0).pendingReset);
    EXPECT_NEAR(StepLFOTest::Module(*second).State(0).pendingOffset, -2.0 / 16.0, 1e-12);
}

TEST(StepLFOTransport, StopClearsTheOffsetAndDropsTheSteps) {
    BR::DriverTransport transport;
    auto driver = Locked(transport, 1.0f);
    Set(*driver, "Signal Input L", 1.0f);
    BR::Test::RenderFrames(*driver, 10240, 1024, {}, {{9000, {0x90, 60, 100}}});
    ASSERT_NE(StepLFOTest::Module(*driver).State(0).phaseOffset, 0.0);

    transport.playing = false;
    const auto stopped = BR::Test::RenderFrames(*driver, 1024, 1024, {std::vector<float>(1024, 0.25f)});
    EXPECT_EQ(StepLFOTest::Module(*driver).State(0).phaseOffset, 0.0);
    for (float v : stopped[0])
        ASSERT_EQ(v, 0.25f);  // only the input passes while the transport stands

    transport.playing = true;
    transport.blockQuarter = 1.0;  // four sixteenths in
    const auto resumed = BR::Test::RenderFrames(*driver, 1024, 1024);
    EXPECT_EQ(resumed[0][0], kRamp[4]);
}
