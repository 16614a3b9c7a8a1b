// "Input Source" "Right" keeps input 1 out of the filter and out of the level; the output mix does not
// depend on input 1 at all.
#include <gtest/gtest.h>

#include "FollowerSignals.h"

namespace {

BR::Test::Channels RenderRight(const std::vector<float>& left, const std::vector<float>& right,
                               BrelCorvaneFollower::BrelCorvane** module,
                               std::unique_ptr<BR::HostDriver>& driver) {
    driver = BR::Test::MakeDriver("follower", 44100.0f);
    driver->SetParameterByName("Input Source", 2.0f);
    driver->SetParameterByName("Env Gain", 0.0f);
    *module = &BR::Test::Follower(*driver);
    return BR::Test::RenderFrames(*driver, uint32_t(right.size()), 256, {left, right});
}

}  // namespace

TEST(FollowerInputSource, RightLeavesInputOneOut) {
    const auto right = BR::Test::Sine(330.0f, 44100.0f, 22050, 0.3f);
    const auto loud = BR::Test::Sine(1000.0f, 44100.0f, 22050, 0.9f);
    const std::vector<float> quiet(22050, 0.0f);
    std::unique_ptr<BR::HostDriver> a, b;
    BrelCorvaneFollower::BrelCorvane *withLeft = nullptr, *withoutLeft = nullptr;
    const auto outA = RenderRight(loud, right, &withLeft, a);
    const auto outB = RenderRight(quiet, right, &withoutLeft, b);
    // Level from input 2 alone (weight 1), pitch from input 2 alone.
    EXPECT_NEAR(withLeft->Level(), 0.3f, 0.002f);
    EXPECT_NEAR(withLeft->Frequency(), 330.0f, 0.1f);
    EXPECT_EQ(withLeft->Level(), withoutLeft->Level());
    EXPECT_EQ(withLeft->Frequency(), withoutLeft->Frequency());
    EXPECT_EQ(outA, outB);

    // With "L+R" the loud left input does change both.
    auto both = BR::Test::MakeDriver("follower", 44100.0f);
    both->SetParameterByName("Env Gain", 0.0f);
    const auto outC = BR::Test::RenderFrames(*both, 22050, 256, {loud, right});
    EXPECT_NE(outC, outA);
    EXPECT_GT(BR::Test::Follower(*both).Level(), 0.5f);
}
