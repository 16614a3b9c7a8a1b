// In "Transport" mode the phase comes from the host's position, not from elapsed samples: the output at
// a host position is the same whatever the block lengths and wherever the render started, and a second
// instance with the same settings is in phase with the first from its first block, whatever it did before.
#include <gtest/gtest.h>

#include <cmath>

#include "modules/simple/LFO.h"
#include "tests/support/TransportRender.h"

namespace {
std::unique_ptr<BR::HostDriver> TransportLfo() {
    auto driver = BR::Test::MakeDriver("lfo", 48000.0f);
    driver->SetParameterByName("Sync L", 2.0f);
    driver->SetParameterByName("Beats L", 3.0f);  // 1/4 times 3: three beats a cycle
    driver->SetParameterByName("Sine L", 1.0f);
    driver->SetParameterByName("Phase L", 45.0f);
    driver->SetParameterByName("Sync R", 2.0f);
    driver->SetParameterByName("Beat Divisor R", 4.0f);  // 1/16 times 4: a quarter note
    driver->SetParameterByName("Beats R", 4.0f);
    driver->SetParameterByName("Triangle R", 1.0f);
    return driver;
}

BR::Test::Channels RenderFrom(BR::HostDriver& driver, double quarter, uint32_t frames,
                              const std::vector<uint32_t>& blocks) {
    BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, quarter);
    return BR::Test::RenderWithTransport(driver, transport, frames, blocks);
}
}  // namespace

TEST(LFOTransport, SamePhaseAtSamePositionWhateverBlocksAndStart) {
    auto reference = TransportLfo();
    const BR::Test::Channels a = RenderFrom(*reference, 0.0, 200000, {32});
    // Three beats a cycle: quarter 0 gives phase 0.125 ("Phase" 45), sine 0.7071.
    EXPECT_NEAR(a[0][0], std::sin(2.0 * M_PI * 0.125), 1e-4);

    struct Case {
        double quarter;
        std::vector<uint32_t> blocks;
    };
    for (const Case& c :
         std::vector<Case>{{0.0, {1024}}, {2.25, {1000, 37, 701}}, {5.5, {1}}, {0.7, {333}}}) {
        auto other = TransportLfo();
        const uint32_t shift = uint32_t(std::llround(c.quarter * 24000.0));
        const uint32_t frames = 200000 - shift;
        const BR::Test::Channels b = RenderFrom(
            *other, c.quarter, c.blocks.size() == 1 && c.blocks[0] == 1 ? 20000 : frames, c.blocks);
        for (size_t i = 0; i < b[0].size(); ++i) {
            ASSERT_NEAR(b[0][i], a[0][shift + i], 1e-4f) << "start " << c.quarter << " frame " << i;
            ASSERT_NEAR(b[1][i], a[1][shift + i], 1e-4f) << "start " << c.quarter << " frame " << i;
        }
    }
}

TEST(LFOTransport, TwoInstancesStayInPhase) {
    auto first = TransportLfo();
    auto second = TransportLfo();
    // The second instance runs free for a while at another speed: its phase has a history of its own.
    second->SetParameterByName("Sync L", 0.0f);
    second->SetParameterByName("Speed L", 3.7f);
    BR::Test::RenderFrames(*second, 12345, 100);
    second->SetParameterByName("Sync L", 2.0f);

    BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, 1.0);
    BR::DriverTransport same = BR::Test::MakeTransport(48000.0, 120.0, 1.0);
    const BR::Test::Channels a = BR::Test::RenderWithTransport(*first, transport, 100000, {256});
    const BR::Test::Channels b = BR::Test::RenderWithTransport(*second, same, 100000, {480});
    for (size_t i = 0; i < a[0].size(); ++i)
        ASSERT_NEAR(a[0][i], b[0][i], 1e-4f) << i;
}

TEST(LFOTransport, StoppedTransportRunsOnButTransport2Stands) {
    for (float mode : {2.0f, 5.0f}) {
        auto driver = BR::Test::MakeDriver("lfo", 48000.0f);
        driver->SetParameterByName("Sync L", mode);
        driver->SetParameterByName("Saw L", 1.0f);  // a cycle of 4 beats
        BR::DriverTransport transport = BR::Test::MakeTransport(48000.0, 120.0, 1.0);
        transport.playing = false;
        const BR::Test::Channels out = BR::Test::RenderWithTransport(*driver, transport, 24000, {256});
        const auto& status = driver->Module().GetStatusBlock()->As<BrelCorvaneLFO::LfoStatus>();
        if (mode == 2.0f) {
            // "Transport" stopped runs on at tempo from wherever its phase stood (0 for a new instance).
            EXPECT_EQ(out[0][0], -1.0f);
            EXPECT_NEAR(out[0][23999], -0.5f, 1e-3f);
            EXPECT_EQ(status.rateHz[0], 0.5);
        } else {
            // "Transport2" stopped stands at the position: quarter 1 of 4 is phase 0.25.
            for (float v : out[0])
                ASSERT_EQ(v, -0.5f);
            EXPECT_EQ(status.rateHz[0], 0.0);
        }
        EXPECT_EQ(status.phaseOffset[0], 0.0);
    }
}
