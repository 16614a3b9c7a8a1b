// Controllers 64 (stored only), 120 (all off at once), 123 (release if open), and property 64094,
// which reaches the audio thread through the command queue and acts at the next block.
#include <gtest/gtest.h>

#include "modules/sequencing/Trigger.h"
#include "tests/support/Render.h"

namespace {
BrelCorvaneTrigger::BrelCorvane& Module(BR::HostDriver& driver) {
    return static_cast<BrelCorvaneTrigger::BrelCorvane&>(driver.Module());
}
std::unique_ptr<BR::HostDriver> EnvelopeTrigger() {
    auto driver = BR::Test::MakeDriver("trigger");
    driver->SetParameterByName("Output Mode", 2.0f);
    return driver;
}
}  // namespace

TEST(TriggerControllers, SustainPedalIsStoredOnly) {
    auto driver = EnvelopeTrigger();
    BR::Test::RenderFrames(*driver, 256, 256, {},
                           {{10, {0x90, 60, 127}}, {20, {0xB0, 64, 64}}, {30, {0x80, 60, 0}}});
    EXPECT_TRUE(Module(*driver).SustainPedal());
    EXPECT_FALSE(Module(*driver).GateOpen());
    EXPECT_EQ(Module(*driver).GetEnvelope().stageIndex, BR::kEnvR1);  // the pedal held nothing
    BR::Test::RenderFrames(*driver, 16, 16, {}, {{0, {0xB0, 64, 63}}});
    EXPECT_FALSE(Module(*driver).SustainPedal());
}

TEST(TriggerControllers, AllSoundOffStopsAtOnce) {
    auto driver = EnvelopeTrigger();
    const auto out =
        BR::Test::RenderFrames(*driver, 4800, 4800, {}, {{0, {0x90, 60, 127}}, {2400, {0xB0, 120, 0}}});
    EXPECT_GT(out[0][2399], 0.3f);
    for (size_t i = 2400; i < 4800; ++i)
        ASSERT_EQ(out[0][i], 0.0f) << i;
    EXPECT_FALSE(Module(*driver).GateOpen());
    EXPECT_EQ(Module(*driver).GetEnvelope().stageIndex, BR::kEnvFinished);
}

TEST(TriggerControllers, AllNotesOffReleasesOnlyAnOpenGate) {
    auto driver = EnvelopeTrigger();
    BR::Test::RenderFrames(*driver, 2400, 256, {}, {{0, {0x90, 60, 127}}, {2000, {0xB0, 123, 0}}});
    EXPECT_FALSE(Module(*driver).GateOpen());
    EXPECT_EQ(Module(*driver).GetEnvelope().stageIndex, BR::kEnvR1);
    // With the gate closed, 123 prepares nothing: the release stays where it is.
    const uint32_t left = Module(*driver).GetEnvelope().stages[BR::kEnvR1].samplesLeft;
    BR::Test::RenderFrames(*driver, 10, 10, {}, {{5, {0xB0, 123, 0}}});
    EXPECT_EQ(Module(*driver).GetEnvelope().stages[BR::kEnvR1].samplesLeft, left - 10);
}

TEST(TriggerDontPanic, PropertyActsAtTheNextBlock) {
    auto driver = EnvelopeTrigger();
    BR::Test::RenderFrames(*driver, 2400, 256, {}, {{0, {0x90, 60, 127}}});
    ASSERT_TRUE(Module(*driver).GateOpen());
    uint32_t size = 0;
    bool writable = false;
    ASSERT_EQ(driver->Module().GetPropertyInfo(64094, &size, &writable), BR::kNoErr);
    EXPECT_EQ(size, 1u);
    EXPECT_TRUE(writable);
    const uint8_t press = 1;
    ASSERT_EQ(driver->Module().SetProperty(64094, &press, 1), BR::kNoErr);
    EXPECT_TRUE(Module(*driver).GateOpen());  // not yet: the audio thread has not run
    const auto out = BR::Test::RenderFrames(*driver, 64, 64);
    EXPECT_FALSE(Module(*driver).GateOpen());
    EXPECT_EQ(Module(*driver).GetEnvelope().stageIndex, BR::kEnvFinished);
    EXPECT_EQ(out[0][0], 0.0f);
}
