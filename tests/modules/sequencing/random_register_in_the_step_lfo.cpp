// The register inside the Step LFO: one random step per step boundary of a free lane, two per boundary
// of a triggered lane, "Set Next" writing ahead (onto the same step in a loop of one), "Dynamic" scale
// with zero weights giving 0 on the output, and bit edits through property 64152.
#include <gtest/gtest.h>

#include "StepLFORig.h"

using StepLFOTest::Set;

namespace {
uint32_t Advance(uint32_t x, int draws) {
    while (draws-- > 0)
        x = x * 49979693u + 15485867u;
    return x;
}
void EnableRandom(BR::HostDriver& driver, const std::string& lane) {
    Set(driver, "Random Enable " + lane, 1.0f);
    Set(driver, "Randomness " + lane, -1.0f);
}
}  // namespace

TEST(RandomInStepLFO, OneDrawPerBoundaryWhenFree) {
    auto driver = StepLFOTest::FreeRamp();
    EnableRandom(*driver, "L");
    const auto out = BR::Test::RenderFrames(*driver, 64 * 10 + 10, 100);
    const auto& lane = StepLFOTest::Module(*driver).State(0);
    EXPECT_EQ(lane.random.randomState, Advance(0, 10));
    // Each step entered plays the value the register wrote into it.
    for (int k = 1; k <= 10; ++k)
        EXPECT_EQ(out[0][size_t(64 * k)], StepLFOTest::Module(*driver).StepValues(0)[k % 16]) << k;
    EXPECT_EQ(out[0][0], StepLFOTest::Ramp()[0]);  // step 1 was entered without a boundary
}

TEST(RandomInStepLFO, TwoDrawsPerBoundaryWhenTriggered) {
    auto driver = StepLFOTest::FreeRamp();
    Set(*driver, "Sync L", 4.0f);
    EnableRandom(*driver, "L");
    std::vector<BR::Test::MidiAt> notes;
    for (uint32_t k = 0; k < 5; ++k)
        notes.push_back({100 + 200 * k, {0x90, 60, 100}});
    BR::Test::RenderFrames(*driver, 1200, 128, {}, notes);
    // Each trigger runs the lane into the next boundary, where the boundary logic runs twice.
    EXPECT_EQ(StepLFOTest::Module(*driver).State(0).random.randomState, Advance(0, 10));
}

TEST(RandomInStepLFO, SetNextWritesAhead) {
    auto driver = StepLFOTest::FreeRamp();
    EnableRandom(*driver, "L");
    Set(*driver, "Random Set Next L", 1.0f);
    Set(*driver, "Length In Steps L", 4.0f);
    auto& module = StepLFOTest::Module(*driver);
    BR::Test::RenderFrames(*driver, 65, 65);  // one boundary, into step 2: step 3 was written
    EXPECT_EQ(module.StepValues(0)[1], StepLFOTest::Ramp()[1]);
    EXPECT_NE(module.StepValues(0)[2], StepLFOTest::Ramp()[2]);
}

TEST(RandomInStepLFO, SetNextInALoopOfOneLandsOnTheSameStep) {
    auto driver = StepLFOTest::FreeRamp();
    EnableRandom(*driver, "L");
    Set(*driver, "Random Set Next L", 1.0f);
    Set(*driver, "Register Length L", 8.0f);
    Set(*driver, "Start Step L", 5.0f);
    Set(*driver, "Length In Steps L", 1.0f);
    auto& module = StepLFOTest::Module(*driver);
    const auto out = BR::Test::RenderFrames(*driver, 8, 8);  // the first sample enters step 5
    // One draw from 0 flips the wrapped bit in: the register reads 0x80 on eight bits.
    EXPECT_EQ(module.State(0).random.registerBits, 0x80u);
    const float value = (128.0f - 127.5f) / 127.5f;
    EXPECT_FLOAT_EQ(module.StepValues(0)[4], value);
    EXPECT_EQ(module.StepValues(0)[5], StepLFOTest::Ramp()[5]);
    EXPECT_FLOAT_EQ(out[0][0], value);
}

TEST(RandomInStepLFO, DynamicScaleWithZeroWeightsOutputsZero) {
    auto driver = StepLFOTest::FreeRamp();
    EnableRandom(*driver, "L");
    Set(*driver, "DAC Enable L", 1.0f);
    Set(*driver, "DAC Scale Mode L", 2.0f);
    const auto out = BR::Test::RenderFrames(*driver, 1100, 256);
    EXPECT_EQ(StepLFOTest::Module(*driver).Settings(0).random.dacScaleFactor, 0.0f);
    for (size_t i = 64; i < 1100; ++i)
        ASSERT_EQ(out[0][i], 0.0f) << i;
}

TEST(RandomInStepLFO, BitEditsThroughTheQueue) {
    auto driver = StepLFOTest::FreeRamp();
    Set(*driver, "Random Enable R", 1.0f);
    Set(*driver, "Randomness R", 1.0f);  // no flips: only edits and rotation change the register
    Set(*driver, "Speed R", 0.05f);      // slow: no boundary in the first blocks
    BrelCorvaneBase& module = driver->Module();
    uint32_t size = 0;
    bool writable = false;
    ASSERT_EQ(module.GetPropertyInfo(64152, &size, &writable), BR::kNoErr);
    EXPECT_EQ(size, 12u);
    EXPECT_TRUE(writable);
    auto edit = [&](int32_t lane, int32_t bit, int32_t operation) {
        const int32_t payload[3] = {lane, bit, operation};
        return module.SetProperty(64152, payload, 12);
    };
    ASSERT_EQ(edit(1, 5, 2), BR::kNoErr);   // set
    ASSERT_EQ(edit(1, 47, 3), BR::kNoErr);  // toggle
    EXPECT_EQ(StepLFOTest::Module(*driver).State(1).random.registerBits,
              0u);  // not before the audio thread runs
    BR::Test::RenderFrames(*driver, 64, 64);
    const uint64_t expected = (uint64_t(1) << 5) | (uint64_t(1) << 47);
    EXPECT_EQ(StepLFOTest::Module(*driver).State(1).random.registerBits, expected);
    auto* status = static_cast<BR::ModuleStatusBlock*>(nullptr);
    ASSERT_EQ(module.GetProperty(64001, &status), BR::kNoErr);
    EXPECT_EQ(status->As<BrelCorvaneStepLFO::StepLFOStatus>().registerBits[1], expected);
    ASSERT_EQ(edit(1, 5, 1), BR::kNoErr);  // clear
    BR::Test::RenderFrames(*driver, 64, 64);
    EXPECT_EQ(StepLFOTest::Module(*driver).State(1).random.registerBits, uint64_t(1) << 47);

    EXPECT_EQ(edit(2, 5, 1), BR::kErrInvalidParameter);
    EXPECT_EQ(edit(0, 5, 4), BR::kErrInvalidParameter);
    const int32_t shortPayload[2] = {0, 1};
    EXPECT_EQ(module.SetProperty(64152, shortPayload, 8), BR::kErrInvalidProperty);
    int32_t read[3];
    EXPECT_EQ(module.GetProperty(64152, read), BR::kErrInvalidProperty);
}

TEST(RandomInStepLFO, StandingEditActsAtEachStepUntilReleased) {
    auto driver = StepLFOTest::FreeRamp();
    Set(*driver, "Random Enable L", 1.0f);
    Set(*driver, "Randomness L", 1.0f);
    Set(*driver, "Register Length L", 48.0f);
    const int32_t set[3] = {0, 0, 2};
    driver->Module().SetProperty(64152, set, 12);
    BR::Test::RenderFrames(*driver, 64 * 3 + 1,
                           256);  // three boundaries, each rotating right then setting bit 0
    // 1 -> rotate -> bit 47, set bit 0 -> ... : bits 47, 46, 45 and 0.
    const auto& lane = StepLFOTest::Module(*driver).State(0);
    EXPECT_EQ(lane.random.registerBits, (uint64_t(1) << 47) | (uint64_t(1) << 46) | (uint64_t(1) << 45) | 1u);
    const int32_t release[3] = {0, 0, 0};
    driver->Module().SetProperty(64152, release, 12);
    BR::Test::RenderFrames(*driver, 64, 256);  // one more boundary: rotation only
    EXPECT_EQ(StepLFOTest::Module(*driver).State(0).random.registerBits,
              (uint64_t(1) << 47) | (uint64_t(1) << 46) | (uint64_t(1) << 45) | (uint64_t(1) << 44));
}
