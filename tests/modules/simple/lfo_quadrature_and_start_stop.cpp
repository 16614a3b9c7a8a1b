// "Quadrature" on R takes L's rate from the same block and sets R's phase to L's plus "Phase" / 360 at
// each block start; on L it has no rate of its own: it stands within each block, set at each block's
// start from R's phase (R runs free at its default 5 Hz here). "Start/Stop" holds phase 0 while playing
// and just below 1 while stopped, so a square is high while the transport plays and low while it stands.
#include <gtest/gtest.h>

#include <cmath>

#include "modules/simple/LFO.h"
#include "tests/support/TransportRender.h"

TEST(LFOQuadrature, RFollowsLAQuarterAhead) {
    auto driver = BR::Test::MakeDriver("lfo", 48000.0f);
    driver->SetParameterByName("Speed L", 2.0f);
    driver->SetParameterByName("Saw L", 1.0f);
    driver->SetParameterByName("Sync R", 3.0f);
    driver->SetParameterByName("Speed R", 17.0f);  // unused in quadrature
    driver->SetParameterByName("Phase R", 90.0f);
    driver->SetParameterByName("Saw R", 1.0f);
    const BR::Test::Channels out = BR::Test::RenderFrames(*driver, 48000, 256);
    for (size_t i = 0; i < out[0].size(); ++i) {
        const double left = (double(out[0][i]) + 1.0) * 0.5;
        const double expected = std::fmod(left + 0.25, 1.0) * 2.0 - 1.0;
        if (std::fabs(std::fmod(left + 0.25, 1.0) - 0.5) > 0.49) continue;  // right at R's wrap
        ASSERT_NEAR(out[1][i], expected, 1e-4) << i;
    }
    const auto& status = driver->Module().GetStatusBlock()->As<BrelCorvaneLFO::LfoStatus>();
    EXPECT_DOUBLE_EQ(status.rateHz[1], 2.0);
    EXPECT_EQ(status.phaseOffset[1], 0.25);
}

TEST(LFOQuadrature, OnLHasNoRate) {
    auto driver = BR::Test::MakeDriver("lfo", 48000.0f);
    driver->SetParameterByName("Sync L", 3.0f);
    driver->SetParameterByName("Saw L", 1.0f);
    const BR::Test::Channels out = BR::Test::RenderFrames(*driver, 5120, 256);
    for (uint32_t block = 0; block < 20; ++block) {
        const double rightPhase = std::fmod(256.0 * block * 5.0 / 48000.0, 1.0);
        for (uint32_t i = 0; i < 256; ++i)
            ASSERT_NEAR(out[0][256 * block + i], rightPhase * 2.0 - 1.0, 1e-5) << block << " " << i;
    }
    EXPECT_EQ(driver->Module().GetStatusBlock()->As<BrelCorvaneLFO::LfoStatus>().rateHz[0], 0.0);
}

TEST(LFOStartStop, SquareHighWhilePlaying) {
    auto driver = BR::Test::MakeDriver("lfo", 48000.0f);
    driver->SetParameterByName("Sync L", 4.0f);
    driver->SetParameterByName("Square L", 1.0f);
    BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, 0.0);
    transport.playing = false;
    const BR::Test::Channels out =
        BR::Test::RenderWithTransport(*driver, transport, 9000, {256}, {{3000, true}, {6000, false}});
    for (uint32_t i = 0; i < 9000; ++i)
        ASSERT_EQ(out[0][i], i >= 3000 && i < 6000 ? 1.0f : -1.0f) << i;
}
