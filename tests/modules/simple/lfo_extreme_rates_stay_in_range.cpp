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

TEST(LFOExtremes, NegativeTempoStandsAndHugeTempoEnds) {
    // A tempo below 0 counts as 0: no rate and no swing, so the output stands. A tempo so large that a
    // swing unit is far below a sample still renders every frame in range.
    for (double tempo : {-120.0, 1.0e36, 1.0e300}) {
        auto driver = BR::Test::MakeDriver("lfo", 48000.0f);
        driver->SetParameterByName("Sync L", 1.0f);
        driver->SetParameterByName("Saw L", 1.0f);
        driver->SetParameterByName("Swing L", 60.0f);
        driver->SetParameterByName("Sync R", 2.0f);
        driver->SetParameterByName("Triangle R", 1.0f);
        driver->SetParameterByName("Swing R", 60.0f);
        BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, 0.3);
        transport.tempo = tempo;
        const BR::Test::Channels out = BR::Test::RenderWithTransport(*driver, transport, 2048, {256});
        const auto& lfo = static_cast<BrelCorvaneLFO::BrelCorvane&>(driver->Module());
        for (int c = 0; c < 2; ++c)
            for (float v : out[c]) {
                ASSERT_TRUE(std::isfinite(v)) << tempo;
                ASSERT_LE(std::fabs(v), 1.0f) << tempo;
            }
        if (tempo < 0.0) {
            EXPECT_EQ(lfo.Settings(0).rate, 0.0);
            EXPECT_EQ(lfo.Settings(0).swingFraction, -1.0f);
            for (float v : out[0])
                ASSERT_EQ(v, -1.0f);
        }
    }
}
