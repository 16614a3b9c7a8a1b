// "Enable FSK" puts a tone on the clock's output in place of the levels: 2400 Hz while the clock is
// high, 1200 Hz while it is low, its phase running on across each change, its sine from the system's
// polynomial scaled between "Clock Low" and "Clock High". Rendered with the "FSK Tape Sync" preset at
// 120 BPM (1000 samples a tick at 24 PPQN): the first tick is skipped, so the tone stays at 1200 Hz
// until the tick at 1000, is 2400 Hz for the 500 samples of each pulse and 1200 Hz between.
#include <gtest/gtest.h>

#include <cmath>

#include "framework/PolySine.h"
#include "modules/sequencing/Sync.h"
#include "tests/support/TransportRender.h"

namespace {
int ZeroCrossings(const std::vector<float>& y, uint32_t from, uint32_t to) {
    int n = 0;
    for (uint32_t i = from + 1; i < to; ++i)
        if ((y[i - 1] < 0.0f) != (y[i] < 0.0f)) ++n;
    return n;
}
}  // namespace

TEST(SyncFSK, ToneFollowsClockWithContinuousPhase) {
    auto driver = BR::Test::MakeDriver("sync", 48000.0f);
    BrelCorvaneBase& module = driver->Module();
    const BR::PresetDefinition& preset = module.Presets()[1];
    ASSERT_STREQ(preset.name, "FSK Tape Sync");
    for (int32_t k = 0; k < module.NumTableParameters(); ++k)
        module.SetTableValue(k, preset.values[k]);
    // The preset's -1 for "Mute Clocks" is held to the row's range when set: the clocks are not muted.
    EXPECT_EQ(module.GetTableValue(BrelCorvaneSync::kMuteClocks), 0.0f);

    BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, 0.0);
    const BR::Test::Channels in = {std::vector<float>(), std::vector<float>(4000, 0.25f)};
    const BR::Test::Channels out =
        BR::Test::RenderWithTransport(*driver, transport, 4000, {256}, {}, {}, nullptr, in);
    const std::vector<float>& y = out[0];

    // Phase starts at 0 and steps 1200 / 48000 a sample until the first pulse.
    float phase = 0.0f;
    for (uint32_t i = 0; i < 1000; ++i) {
        ASSERT_NEAR(y[i], BR::PolySine(phase), 1e-4f) << i;
        phase += 0.025f;
        if (phase >= 1.0f) phase -= 1.0f;
    }
    EXPECT_EQ(ZeroCrossings(y, 1000, 1500), 50);  // 25 cycles of 2400 Hz
    EXPECT_EQ(ZeroCrossings(y, 1500, 2000), 25);  // 12.5 cycles of 1200 Hz
    EXPECT_EQ(ZeroCrossings(y, 2000, 2500), 50);
    // No jump anywhere: a step never exceeds what 2400 Hz allows, 2 pi * 0.05 of full scale.
    float largest = 0.0f, peak = 0.0f;
    for (uint32_t i = 1; i < y.size(); ++i) {
        largest = std::max(largest, std::fabs(y[i] - y[i - 1]));
        peak = std::max(peak, std::fabs(y[i]));
    }
    EXPECT_LT(largest, 0.315f);
    EXPECT_NEAR(peak, 1.0f, 1e-3f);
    // "Run Output" is "Off": the second output is its input.
    for (uint32_t i = 0; i < 4000; ++i)
        ASSERT_EQ(out[1][i], 0.25f) << i;
}

TEST(SyncFSK, ToneSitsBetweenTheClockLevels) {
    auto driver = BR::Test::MakeDriver("sync", 48000.0f);
    driver->SetParameterByName("DINsync Type", 1.0f);
    driver->SetParameterByName("Enable FSK", 1.0f);
    driver->SetParameterByName("Clock Low", 0.2f);
    driver->SetParameterByName("Clock High", 0.6f);
    BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, 0.0);
    const BR::Test::Channels out = BR::Test::RenderWithTransport(*driver, transport, 4000, {256});
    float low = 1.0f, high = -1.0f;
    for (float v : out[0]) {
        low = std::min(low, v);
        high = std::max(high, v);
    }
    EXPECT_NEAR(low, 0.2f, 1e-3f);
    EXPECT_NEAR(high, 0.6f, 1e-3f);
    EXPECT_FLOAT_EQ(out[0][0], 0.4f);  // the middle, at phase 0
}

TEST(SyncFSK, ToneOnlyOnTheClockOutput) {
    // The tone encodes the clock; the run line on another output keeps its plain levels.
    auto driver = BR::Test::MakeDriver("sync", 48000.0f);
    driver->SetParameterByName("DINsync Type", 1.0f);
    driver->SetParameterByName("Enable FSK", 1.0f);
    driver->SetParameterByName("Clock Output", 1.0f);
    driver->SetParameterByName("Run Output", 2.0f);
    driver->SetParameterByName("Clock Low", -1.0f);
    driver->SetParameterByName("Run Low", -0.25f);
    driver->SetParameterByName("Run High", 0.75f);
    BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, 2.0);
    const BR::Test::Channels out = BR::Test::RenderWithTransport(*driver, transport, 60000, {256});
    // Started at quarter 2: the run line is low until the bar line at 4 (48000 frames), then high.
    for (uint32_t i = 0; i < 48000; ++i)
        ASSERT_EQ(out[1][i], -0.25f) << i;
    for (uint32_t i = 48000; i < 60000; ++i)
        ASSERT_EQ(out[1][i], 0.75f) << i;
    // The clock's output carries the tone all along, at 1200 Hz while waiting for the first tick.
    EXPECT_NEAR(ZeroCrossings(out[0], 0, 48000), 2 * 1200 - 1, 1);
}
