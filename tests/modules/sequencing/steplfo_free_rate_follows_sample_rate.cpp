// A free lane's phase increment is its rate over the sample rate: after a change of the host's rate
// it follows at the next block, and a change of its speed row at the block where the row moved.
#include <gtest/gtest.h>

#include "modules/sequencing/StepLFO.h"
#include "tests/support/Render.h"

TEST(StepLFOFreeRate, FollowsSampleRateAndSpeed) {
    auto driver = BR::Test::MakeDriver("steplfo");
    driver->SetParameterByName("Sync L", 0.0f);
    driver->SetParameterByName("Speed L", 2.0f);
    BR::Test::RenderFrames(*driver, 64, 64);
    auto& module = static_cast<BrelCorvaneStepLFO::BrelCorvane&>(driver->Module());
    const double cyclesPerSecond = module.Settings(0).rate * 48000.0;
    ASSERT_GT(cyclesPerSecond, 0.0);
    EXPECT_EQ(module.Settings(0).rate, cyclesPerSecond / 48000.0f);

    driver->Controller().sampleRate = 96000.0f;
    BR::Test::RenderFrames(*driver, 64, 64);
    EXPECT_DOUBLE_EQ(module.Settings(0).rate, cyclesPerSecond / 96000.0);
    BR::Test::RenderFrames(*driver, 64, 64);
    EXPECT_DOUBLE_EQ(module.Settings(0).rate, cyclesPerSecond / 96000.0);

    driver->SetParameterByName("Speed L", 4.0f);
    BR::Test::RenderFrames(*driver, 64, 64);
    EXPECT_DOUBLE_EQ(module.Settings(0).rate, 2.0 * cyclesPerSecond / 96000.0);
}
