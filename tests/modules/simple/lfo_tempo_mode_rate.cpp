// "Tempo" mode: cycle length 2^-"Beat Divisor" * 4 * "Beats" beats at the host's tempo. "Beats" at 0
// gives rate 0 and the output stands. A stopped transport keeps the LFO running at the tempo rate; with a
// tempo of 0, or no transport at all, it stands.
#include <gtest/gtest.h>

#include "modules/simple/LFO.h"
#include "tests/support/TransportRender.h"

namespace {
std::unique_ptr<BR::HostDriver> TempoSaw(float beats) {
    auto driver = BR::Test::MakeDriver("lfo", 48000.0f);
    driver->SetParameterByName("Sync L", 1.0f);
    driver->SetParameterByName("Beats L", beats);
    driver->SetParameterByName("Saw L", 1.0f);
    return driver;
}
const BrelCorvaneLFO::LfoStatus& StatusOf(BR::HostDriver& driver) {
    return driver.Module().GetStatusBlock()->As<BrelCorvaneLFO::LfoStatus>();
}
}  // namespace

TEST(LFOTempo, ZeroBeatsGivesRateZero) {
    auto driver = TempoSaw(0.0f);
    BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, 0.0);
    const auto out = BR::Test::RenderWithTransport(*driver, transport, 10000, {256})[0];
    for (float v : out)
        ASSERT_EQ(v, -1.0f);
    EXPECT_EQ(StatusOf(*driver).rateHz[0], 0.0);
}

TEST(LFOTempo, StoppedTransportRunsAtTempoRate) {
    // 4 beats (1/4 times 4) at 120 BPM: 0.5 Hz, a quarter cycle in 24000 samples.
    auto driver = TempoSaw(4.0f);
    BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, 0.0);
    transport.playing = false;
    const auto out = BR::Test::RenderWithTransport(*driver, transport, 24001, {256})[0];
    EXPECT_EQ(StatusOf(*driver).rateHz[0], 0.5);
    EXPECT_EQ(out[0], -1.0f);
    EXPECT_NEAR(out[24000], -0.5f, 1e-5f);
    EXPECT_NEAR(out[12000], -0.75f, 1e-5f);
}

TEST(LFOTempo, ZeroTempoOrNoTransportStands) {
    auto driver = TempoSaw(4.0f);
    BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 0.0, 0.0);
    transport.playing = false;
    const BR::Test::Channels out = BR::Test::RenderWithTransport(*driver, transport, 5000, {256});
    for (float v : out[0])
        ASSERT_EQ(v, -1.0f);
    auto alone = TempoSaw(4.0f);
    const BR::Test::Channels still = BR::Test::RenderFrames(*alone, 5000, 256);
    for (float v : still[0])
        ASSERT_EQ(v, -1.0f);
    EXPECT_EQ(StatusOf(*alone).rateHz[0], 0.0);
}

TEST(LFOTempo, DivisorBeatsAndTriplet) {
    auto driver = TempoSaw(3.0f);
    driver->SetParameterByName("Beat Divisor L", 3.0f);  // 1/8: 4 * 2^-3 * 3 = 1.5 beats
    BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, 0.0);
    BR::Test::RenderWithTransport(*driver, transport, 64, {64});
    EXPECT_DOUBLE_EQ(StatusOf(*driver).rateHz[0], 120.0 / (1.5 * 60.0));
    driver->SetParameterByName("Triplet L", 1.0f);  // 1.5 * 2 / 3 = 1 beat
    BR::Test::RenderWithTransport(*driver, transport, 64, {64});
    EXPECT_DOUBLE_EQ(StatusOf(*driver).rateHz[0], 2.0);
    EXPECT_EQ(StatusOf(*driver).phaseOffset[0], -1.0);
}
