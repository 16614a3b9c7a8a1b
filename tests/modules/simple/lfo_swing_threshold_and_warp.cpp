// Swing: "Swing" at 50 and 50.1 are both off; 50.2 is on, though only while the transport plays and at
// a tempo above 0. When on, each swing unit runs its first half cycle in s of its time: with s = 0.6,
// a half-beat unit and a half-beat cycle at 120 BPM (12000 samples), the saw reaches its middle at 7200.
// In "Transport" mode the block's beat position is warped back to straight time before the phase is
// taken from it.
#include <gtest/gtest.h>

#include "modules/simple/LFO.h"
#include "tests/support/TransportRender.h"

namespace {
std::unique_ptr<BR::HostDriver> HalfBeatSaw(float sync, float swing) {
    auto driver = BR::Test::MakeDriver("lfo", 48000.0f);
    driver->SetParameterByName("Sync L", sync);
    driver->SetParameterByName("Beat Divisor L", 3.0f);  // 1/8 times 1 beat: half a beat
    driver->SetParameterByName("Beats L", 1.0f);
    driver->SetParameterByName("Saw L", 1.0f);
    driver->SetParameterByName("Swing L", swing);
    return driver;
}
float SwingFraction(BR::HostDriver& driver) {
    return static_cast<BrelCorvaneLFO::BrelCorvane&>(driver.Module()).Settings(0).swingFraction;
}
}  // namespace

TEST(LFOSwing, OnOnlyAboveATenthFromFiftyWhilePlaying) {
    for (float swing : {50.0f, 50.1f, 50.2f}) {
        auto driver = HalfBeatSaw(1.0f, swing);
        BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, 0.0);
        BR::Test::RenderWithTransport(*driver, transport, 256, {256});
        if (swing > 50.15f) {
            EXPECT_FLOAT_EQ(SwingFraction(*driver), 0.502f);
        } else {
            EXPECT_EQ(SwingFraction(*driver), -1.0f) << swing;
        }
        transport.playing = false;
        BR::Test::RenderWithTransport(*driver, transport, 256, {256});
        EXPECT_EQ(SwingFraction(*driver), -1.0f) << swing;
        transport.playing = true;
        transport.tempo = 0.0;
        BR::Test::RenderWithTransport(*driver, transport, 256, {256});
        EXPECT_EQ(SwingFraction(*driver), -1.0f) << swing;
    }
    // Clamped to 0.05..0.95.
    auto wide = HalfBeatSaw(1.0f, 100.0f);
    BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, 0.0);
    BR::Test::RenderWithTransport(*wide, transport, 256, {256});
    EXPECT_FLOAT_EQ(SwingFraction(*wide), 0.95f);
}

TEST(LFOSwing, FirstHalfCycleTakesSOfTheUnit) {
    auto swung = HalfBeatSaw(1.0f, 60.0f);
    BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, 0.0);
    const auto out = BR::Test::RenderWithTransport(*swung, transport, 24000, {256})[0];
    EXPECT_NEAR(out[3600], -0.5f, 1e-3f);  // a quarter cycle in 0.3 of the unit
    EXPECT_NEAR(out[7200], 0.0f, 1e-3f);   // half a cycle in 0.6
    EXPECT_NEAR(out[9600], 0.5f, 1e-3f);   // the second half at the slower rate
    EXPECT_NEAR(out[12000 + 7200], 0.0f, 1e-3f);

    auto straight = HalfBeatSaw(1.0f, 50.0f);
    BR::DriverTransport again = BR::Test::MakeTransport(48000.0, 120.0, 0.0);
    const auto plain = BR::Test::RenderWithTransport(*straight, again, 24000, {256})[0];
    EXPECT_NEAR(plain[7200], 0.2f, 1e-3f);
}

TEST(LFOSwing, TransportPhaseWarpedToStraightTime) {
    auto driver = HalfBeatSaw(2.0f, 60.0f);
    BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, 0.0);
    const auto out = BR::Test::RenderWithTransport(*driver, transport, 12000, {1200})[0];
    // Block at beat 0.15, 0.3 into the unit: straight beat 0.15 * 0.5 / 0.6 = 0.125, phase 0.25.
    EXPECT_NEAR(out[3600], -0.5f, 1e-5f);
    // Block at beat 0.4, in the second part: 0.25 + (0.4 - 0.3) * 0.5 / 0.4 = 0.375, phase 0.75.
    EXPECT_NEAR(out[9600], 0.5f, 1e-5f);
}
