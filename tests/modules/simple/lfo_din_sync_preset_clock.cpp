// The "DIN sync (24)" preset gives a cycle of 4 * 2^-6 * 1 * 2/3 = 1/24 beat on L (1000 samples at
// 120 BPM and 48 kHz, locked to the host position); its square, offset by 0.5 with level 0.5,
// alternates between 0 and 1. R is the run signal: 1 while the transport plays, 0 once it stops.
#include <gtest/gtest.h>

#include <cmath>

#include "modules/simple/LFO.h"
#include "tests/support/TransportRender.h"

TEST(LFOPresets, DinSyncMakesClockAndRunSignal) {
    auto driver = BR::Test::MakeDriver("lfo", 48000.0f);
    BrelCorvaneBase& lfo = driver->Module();
    const BR::PresetDefinition& preset = lfo.Presets()[1];
    for (int32_t k = 0; k < lfo.NumTableParameters(); ++k)
        lfo.SetTableValue(k, preset.values[k]);
    BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, 0.0);
    const BR::Test::Channels out =
        BR::Test::RenderWithTransport(*driver, transport, 30000, {256}, {{20000, false}});
    EXPECT_NEAR(lfo.GetStatusBlock()->As<BrelCorvaneLFO::LfoStatus>().rateHz[0], 48.0, 1e-9);

    for (float v : out[0])
        ASSERT_TRUE(v == 0.0f || v == 1.0f) << v;
    const auto edges = BR::Test::RisingEdges(out[0]);
    ASSERT_GE(edges.size(), 29u);
    for (size_t k = 0; k < 20; ++k)  // while playing, on the host's 1/24 beat grid
        EXPECT_NEAR(double(edges[k]), 1000.0 * double(k), 1.0) << k;
    size_t high = 0;
    for (uint32_t i = 0; i < 20000; ++i)
        high += out[0][i] == 1.0f;
    EXPECT_NEAR(double(high), 10000.0, 25.0);

    for (uint32_t i = 0; i < 20000; ++i)
        ASSERT_EQ(out[1][i], 1.0f) << i;
    for (uint32_t i = 20000; i < 30000; ++i)
        ASSERT_EQ(out[1][i], 0.0f) << i;
}
