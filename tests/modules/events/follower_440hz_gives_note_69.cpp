// A 440 Hz sine at 44100 in "V/Octave" with the zero at note 48 measures note 69: 1.75 V.
#include <gtest/gtest.h>

#include "FollowerSignals.h"

TEST(FollowerPitch, Sine440At44100GivesNote69And175Volts) {
    auto driver = BR::Test::MakeDriver("follower", 44100.0f);
    ASSERT_TRUE(driver->SetParameterByName("Zero V Coarse", 48.0f));
    const auto input = BR::Test::Sine(440.0f, 44100.0f, 44100);
    BR::Test::RenderStepping(*driver, input, 256);
    auto& follower = BR::Test::Follower(*driver);
    EXPECT_FALSE(follower.NoPitch());
    EXPECT_NEAR(follower.Frequency(), 440.0f, 0.5f);
    const float note = std::log(follower.Frequency() * 0.0022727272f) * 1.442695f * 12.0f + 69.0f;
    EXPECT_NEAR(note, 69.0f, 0.02f);
    EXPECT_NEAR(follower.PitchVolts(), 1.75f, 0.002f);
    // Manual scale 10: output L carries the volts over ten.
    EXPECT_NEAR(follower.PitchOut(), 0.175f, 0.0002f);
}
