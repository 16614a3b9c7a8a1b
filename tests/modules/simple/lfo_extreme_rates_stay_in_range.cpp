// Settings at the ends of their ranges never leave the wave's range: a cycle of 1/128 of a 0.001-beat
// note at 999 BPM is far above the sample rate, yet every sample of a full-level triangle stays within
// -1..1, and a tempo that is not a number gives rate 0 rather than a runaway phase.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "modules/simple/LFO.h"
#include "tests/support/TransportRender.h"

TEST(LFOExtremes, RatesAboveSampleRateStayInRange) {
    auto driver = BR::Test::MakeDriver("lfo", 48000.0f);
    driver->SetParameterByName("Sync L", 1.0f);
    driver->SetParameterByName("Beat Divisor L", 7.0f);
    driver->SetParameterByName("Beats L", 0.001f);
    driver->SetParameterByName("Triangle L", 1.0f);
    driver->SetParameterByName("Swing L", 95.0f);
    BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 999.0, 0.0);
    const BR::Test::Channels out = BR::Test::RenderWithTransport(*driver, transport, 4096, {1024});
    const auto& lfo = static_cast<BrelCorvaneLFO::BrelCorvane&>(driver->Module());
    EXPECT_GT(lfo.Settings(0).rate, 1.0);
    for (float v : out[0]) {
        ASSERT_TRUE(std::isfinite(v));
        ASSERT_LE(std::fabs(v), 1.0f);
    }
    EXPECT_GE(lfo.State(0).phase, 0.0);
    EXPECT_LT(lfo.State(0).phase, 1.0);
}

TEST(LFOExtremes, TempoThatIsNotANumberGivesRateZero) {
    auto driver = BR::Test::MakeDriver("lfo", 48000.0f);
    driver->SetParameterByName("Sync L", 1.0f);
    driver->SetParameterByName("Saw L", 1.0f);
    driver->SetParameterByName("Swing L", 70.0f);
    BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, 0.0);
    transport.tempo = std::numeric_limits<double>::quiet_NaN();
    const BR::Test::Channels out = BR::Test::RenderWithTransport(*driver, transport, 1024, {256});
    for (float v : out[0])
        ASSERT_EQ(v, -1.0f);
}
