// Trigger mode: "Trigger Length" 0 still gives a one-sample pulse, a length in milliseconds gives
// max(1, (int)(ms * rate * 0.001)) samples, and a new note during a pulse restarts it in full.
#include <gtest/gtest.h>

#include "modules/sequencing/Trigger.h"
#include "tests/support/Render.h"

namespace {
std::unique_ptr<BR::HostDriver> Pulses(float ms) {
    auto driver = BR::Test::MakeDriver("trigger");
    driver->SetParameterByName("Output Mode", 1.0f);
    driver->SetParameterByName("Trigger Length", ms);
    return driver;
}
size_t HighRunFrom(const std::vector<float>& out, size_t from) {
    size_t n = 0;
    while (from + n < out.size() && out[from + n] == 1.0f)
        ++n;
    return n;
}
}  // namespace

TEST(TriggerPulse, ZeroLengthGivesOneSample) {
    auto driver = Pulses(0.0f);
    const auto out = BR::Test::RenderFrames(*driver, 256, 256, {}, {{50, {0x90, 60, 90}}});
    auto& trigger = static_cast<BrelCorvaneTrigger::BrelCorvane&>(driver->Module());
    EXPECT_EQ(trigger.TriggerLengthSamples(), 1);
    for (size_t i = 0; i < 256; ++i)
        ASSERT_EQ(out[0][i], i == 50 ? 1.0f : 0.0f) << i;
}

TEST(TriggerPulse, LengthInSamples) {
    auto driver = Pulses(2.0f);  // 96 samples at 48 kHz
    const auto out = BR::Test::RenderFrames(*driver, 512, 64, {}, {{10, {0x90, 60, 90}}});
    EXPECT_EQ(out[0][9], 0.0f);
    EXPECT_EQ(HighRunFrom(out[0], 10), 96u);
    EXPECT_EQ(out[0][106], 0.0f);
}

TEST(TriggerPulse, NewNoteRestartsWithFullLength) {
    auto driver = Pulses(2.0f);
    const auto out =
        BR::Test::RenderFrames(*driver, 512, 64, {}, {{10, {0x90, 60, 90}}, {60, {0x90, 60, 30}}});
    // 50 samples of the first pulse, then 96 of the restarted one.
    EXPECT_EQ(HighRunFrom(out[0], 10), 50u + 96u);
    EXPECT_EQ(out[0][156], 0.0f);
}

TEST(TriggerPulse, OtherNotesDoNothing) {
    auto driver = Pulses(2.0f);
    driver->SetParameterByName("Trigger Note", 64.0f);
    const auto out =
        BR::Test::RenderFrames(*driver, 256, 64, {}, {{10, {0x90, 60, 90}}, {20, {0x91, 64, 90}}});
    EXPECT_EQ(out[0][15], 0.0f);
    EXPECT_EQ(out[0][20], 1.0f);  // any channel
}
