// The step and DAC mirrors: their addresses through properties 64150, 64151, 64153 and 64154, set at
// once by every parameter write, and written back to the parameters when the transport stops and when
// "Random Enable" of a lane goes off.
#include <gtest/gtest.h>

#include "StepLFORig.h"

using StepLFOTest::Set;

TEST(StepLFOMirror, AddressesAndImmediateUpdates) {
    auto driver = BR::Test::MakeDriver("steplfo");
    BrelCorvaneBase& module = driver->Module();
    const float* mirrors[4] = {};
    const uint32_t ids[4] = {64150, 64151, 64153, 64154};
    for (int i = 0; i < 4; ++i) {
        uint32_t size = 0;
        bool writable = true;
        ASSERT_EQ(module.GetPropertyInfo(ids[i], &size, &writable), BR::kNoErr);
        EXPECT_EQ(size, 8u);
        EXPECT_FALSE(writable);
        ASSERT_EQ(module.GetProperty(ids[i], &mirrors[i]), BR::kNoErr);
    }
    Set(*driver, "Step 96 R", -0.75f);
    Set(*driver, "Step 1 L", 0.5f);
    Set(*driver, "DAC Bit 24 R", 0.125f);
    EXPECT_EQ(mirrors[1][95], -0.75f);
    EXPECT_EQ(mirrors[0][0], 0.5f);
    EXPECT_EQ(mirrors[3][23], 0.125f);
    // Also through the normalized route a host uses.
    module.UpdateParameterNormalizedValue("DAC Bit 3 L", 1.0);
    EXPECT_EQ(mirrors[2][2], 1.0f);
    EXPECT_EQ(module.SetProperty(64150, &mirrors[0], 8), BR::kErrInvalidProperty);
}

TEST(StepLFOMirror, WrittenBackAtTransportStop) {
    auto driver = StepLFOTest::FreeRamp();
    BR::DriverTransport transport;
    transport.tempo = 120.0;
    driver->SetTransport(&transport);
    Set(*driver, "Random Enable L", 1.0f);
    Set(*driver, "Randomness L", -1.0f);
    BR::Test::RenderFrames(*driver, 1024, 256);  // 16 steps: each rewritten by the register
    auto& module = StepLFOTest::Module(*driver);
    EXPECT_EQ(module.GetTableValue(43), StepLFOTest::Ramp()[0]);  // the parameters are untouched so far
    int differing = 0;
    for (int k = 0; k < 16; ++k)
        differing += module.StepValues(0)[k] != module.GetTableValue(43 + k);
    EXPECT_GT(differing, 8);

    // The write-back happens at the start of the first stopped block; the lane (free running) goes on
    // rewriting its mirror afterwards.
    const std::vector<float> before(module.StepValues(0), module.StepValues(0) + 96);
    transport.playing = false;
    BR::Test::RenderFrames(*driver, 64, 64);
    for (int k = 0; k < 96; ++k)
        ASSERT_EQ(module.GetTableValue(43 + k), before[size_t(k)]) << k;
}

TEST(StepLFOMirror, WrittenBackWhenRandomGoesOff) {
    auto driver = StepLFOTest::FreeRamp();
    Set(*driver, "Random Enable R", 1.0f);
    Set(*driver, "Randomness R", -1.0f);
    BR::Test::RenderFrames(*driver, 1024, 256);
    auto& module = StepLFOTest::Module(*driver);
    ASSERT_NE(module.StepValues(1)[3], 0.0f);
    EXPECT_EQ(module.GetTableValue(139 + 3), 0.0f);
    Set(*driver, "Random Enable R", 0.0f);
    BR::Test::RenderFrames(*driver, 64, 64);
    for (int k = 0; k < 96; ++k)
        ASSERT_EQ(module.GetTableValue(139 + k), module.StepValues(1)[k]) << k;
    EXPECT_FALSE(module.Settings(1).random.randomEnabled);
}
