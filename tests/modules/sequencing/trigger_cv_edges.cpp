// CV triggering: an input held above the threshold gives a note-on on the very first sample, a value
// exactly at the threshold counts as low, and the state changes before the samples leading up to an
// edge are rendered, so the output changes at the start of the pass that ends with the edge.
#include <gtest/gtest.h>

#include "modules/sequencing/Envelope.h"
#include "modules/sequencing/Trigger.h"
#include "tests/support/Render.h"

namespace {
std::unique_ptr<BR::HostDriver> CVGate(float threshold) {
    auto driver = BR::Test::MakeDriver("trigger");
    driver->SetParameterByName("CV Trigger Enable", 1.0f);
    driver->SetParameterByName("CV Trigger Threshold", threshold);
    return driver;
}
BrelCorvaneTrigger::BrelCorvane& Module(BR::HostDriver& driver) {
    return static_cast<BrelCorvaneTrigger::BrelCorvane&>(driver.Module());
}
}  // namespace

TEST(TriggerCV, InputHighAtStartOpensOnFirstSample) {
    auto driver = CVGate(0.2f);
    const auto out = BR::Test::RenderFrames(*driver, 64, 64, {std::vector<float>(64, 0.5f)});
    EXPECT_EQ(out[0][0], 1.0f);
    EXPECT_EQ(out[0][63], 1.0f);
    EXPECT_TRUE(Module(*driver).GateOpen());
    EXPECT_EQ(Module(*driver).Velocity(), 1.0f);
    // In blocks of one frame the first block is that one sample: the edge must be seen on it.
    auto single = CVGate(0.2f);
    const auto first = BR::Test::RenderFrames(*single, 1, 1, {std::vector<float>(1, 0.5f)});
    EXPECT_EQ(first[0][0], 1.0f);
    EXPECT_TRUE(Module(*single).GateOpen());
}

TEST(TriggerCV, ValueAtThresholdCountsLow) {
    auto driver = CVGate(0.3f);
    const auto out = BR::Test::RenderFrames(*driver, 64, 64, {std::vector<float>(64, 0.3f)});
    EXPECT_EQ(out[0][0], 0.0f);
    EXPECT_FALSE(Module(*driver).GateOpen());
    // Just above opens; back at the threshold closes, with release velocity 1. Blocks of one sample
    // put each change on its own sample.
    std::vector<float> in(64, std::nextafter(0.3f, 1.0f));
    std::fill(in.begin() + 32, in.end(), 0.3f);
    const auto second = BR::Test::RenderFrames(*driver, 64, 1, {in});
    for (size_t i = 0; i < 64; ++i)
        ASSERT_EQ(second[0][i], i < 32 ? 1.0f : 0.0f) << i;
    EXPECT_FALSE(Module(*driver).GateOpen());
    EXPECT_EQ(Module(*driver).ReleaseVelocity(), 1.0f);
}

TEST(TriggerCV, OutputLeadsTheEdgeByOnePass) {
    // A pulse on the input from sample 100 to 179, in one block of 256.
    std::vector<float> in(256, 0.0f);
    std::fill(in.begin() + 100, in.begin() + 180, 1.0f);
    auto driver = CVGate(0.5f);
    const auto out = BR::Test::RenderFrames(*driver, 256, 256, {in});
    // Pass 1 (samples 0..99) is rendered after the rising edge at 100; pass 2 (100..179) after the
    // falling edge at 180; pass 3 (180..255) has no edge.
    for (size_t i = 0; i < 256; ++i)
        ASSERT_EQ(out[0][i], i < 100 ? 1.0f : 0.0f) << i;
}

TEST(TriggerCV, PassesStartAtSubBlocks) {
    // The same input in host blocks of 64: the rising edge at 100 lies in the block from 64, the
    // falling edge at 180 in the block from 128.
    std::vector<float> in(256, 0.0f);
    std::fill(in.begin() + 100, in.begin() + 180, 1.0f);
    auto driver = CVGate(0.5f);
    const auto out = BR::Test::RenderFrames(*driver, 256, 64, {in});
    for (size_t i = 0; i < 256; ++i)
        ASSERT_EQ(out[0][i], i >= 64 && i < 128 ? 1.0f : 0.0f) << i;
}

TEST(TriggerCV, EdgeInBlockOfOneIsOnItsOwnSample) {
    std::vector<float> in(64, 0.0f);
    std::fill(in.begin() + 20, in.begin() + 30, 1.0f);
    auto driver = CVGate(0.5f);
    const auto out = BR::Test::RenderFrames(*driver, 64, 1, {in});
    for (size_t i = 0; i < 64; ++i)
        ASSERT_EQ(out[0][i], i >= 20 && i < 30 ? 1.0f : 0.0f) << i;
}

TEST(TriggerCV, MidiActsOnTheSameGate) {
    // The input stays high, so the scan opens the gate at once; a MIDI note-off at 40 closes it, and the
    // next pass sees the high input as a new rising edge on sample 40: a second pulse.
    auto driver = CVGate(0.5f);
    driver->SetParameterByName("Output Mode", 1.0f);
    driver->SetParameterByName("Trigger Length", 0.2f);  // 9 samples
    const auto out =
        BR::Test::RenderFrames(*driver, 128, 128, {std::vector<float>(128, 1.0f)}, {{40, {0x80, 60, 20}}});
    for (size_t i = 0; i < 128; ++i)
        ASSERT_EQ(out[0][i], i < 9 || (i >= 40 && i < 49) ? 1.0f : 0.0f) << i;
    EXPECT_TRUE(Module(*driver).GateOpen());
    EXPECT_EQ(Module(*driver).ReleaseVelocity(), 20.0f * 0.007874016f);
}

TEST(TriggerCV, LowInputClosesAMidiGateAtOnce) {
    auto driver = CVGate(0.5f);
    const auto out = BR::Test::RenderFrames(*driver, 128, 128, {}, {{40, {0x90, 60, 127}}});
    for (size_t i = 0; i < 128; ++i)
        ASSERT_EQ(out[0][i], 0.0f) << i;
    EXPECT_FALSE(Module(*driver).GateOpen());
    EXPECT_EQ(Module(*driver).ReleaseVelocity(), 1.0f);
    EXPECT_EQ(Module(*driver).GetEnvelope().stageIndex, BR::kEnvR1);
}
