// Swing: within 0.1 of 50 (or at tempo 0, or stopped) nothing is split; otherwise the lane runs slower
// over the long part of each swing period and faster over the short part.
#include <gtest/gtest.h>

#include "StepLFORig.h"

using StepLFOTest::Set;

namespace {
// Lane L at "Tempo", 1/16 steps (6000 samples at 120 BPM), 16 steps.
std::unique_ptr<BR::HostDriver> Sixteenths(BR::DriverTransport& transport) {
    auto driver = StepLFOTest::FreeRamp();
    transport.tempo = 120.0;
    driver->SetTransport(&transport);
    Set(*driver, "Sync L", 1.0f);
    Set(*driver, "Beat Divisor L", 4.0f);
    Set(*driver, "Beats L", 1.0f);
    return driver;
}
std::vector<size_t> StepStarts(const std::vector<float>& out) {
    std::vector<size_t> starts;
    for (size_t i = 1; i < out.size(); ++i)
        if (out[i] != out[i - 1]) starts.push_back(i);
    return starts;
}
}  // namespace

TEST(StepLFOSwing, WithinATenthOfFiftyIsOff) {
    BR::DriverTransport transport;
    auto driver = Sixteenths(transport);
    for (float swing : {50.0f, 50.1f, 49.9f}) {
        Set(*driver, "Swing L", swing);
        BR::Test::RenderFrames(*driver, 64, 64);
        EXPECT_EQ(StepLFOTest::Module(*driver).Settings(0).swingAmount, -1.0f) << swing;
    }
    Set(*driver, "Swing L", 50.2f);
    BR::Test::RenderFrames(*driver, 64, 64);
    EXPECT_FLOAT_EQ(StepLFOTest::Module(*driver).Settings(0).swingAmount, 0.502f);
    Set(*driver, "Swing L", 99.0f);
    BR::Test::RenderFrames(*driver, 64, 64);
    EXPECT_FLOAT_EQ(StepLFOTest::Module(*driver).Settings(0).swingAmount, 0.95f);
    transport.playing = false;
    BR::Test::RenderFrames(*driver, 64, 64);
    EXPECT_EQ(StepLFOTest::Module(*driver).Settings(0).swingAmount, -1.0f);
}

TEST(StepLFOSwing, NearFiftyPlaysStraight) {
    BR::DriverTransport transport;
    auto driver = Sixteenths(transport);
    Set(*driver, "Swing L", 50.1f);
    const auto starts = StepStarts(BR::Test::RenderFrames(*driver, 25000, 512)[0]);
    ASSERT_GE(starts.size(), 4u);
    EXPECT_EQ(starts[0], 6000u);
    EXPECT_EQ(starts[1], 12000u);
    EXPECT_EQ(starts[2], 18000u);
    EXPECT_EQ(starts[3], 24000u);
}

TEST(StepLFOSwing, SeventyFivePercentSplitsNineToThree) {
    for (uint32_t block : {512u, 1000u}) {
        BR::DriverTransport transport;
        auto driver = Sixteenths(transport);
        Set(*driver, "Swing L", 75.0f);  // of each eighth (12000 samples), 9000 for the first sixteenth
        const auto starts = StepStarts(BR::Test::RenderFrames(*driver, 25000, block)[0]);
        ASSERT_GE(starts.size(), 4u);
        EXPECT_NEAR(double(starts[0]), 9000.0, 2.0) << block;
        EXPECT_NEAR(double(starts[1]), 12000.0, 2.0) << block;
        EXPECT_NEAR(double(starts[2]), 21000.0, 2.0) << block;
        EXPECT_NEAR(double(starts[3]), 24000.0, 2.0) << block;
    }
}
