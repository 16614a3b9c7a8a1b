// LV2 tells no loop range: a backward jump while playing shows the module a loop, for one block,
// whose length is the jump; a stop, a forward jump or a repeated position shows none.
#include <gtest/gtest.h>

#include <cmath>

#include "tests/host/lv2/probe/HostProbe.h"
#include "tests/host/lv2/support/Lv2TestHost.h"

TEST(Lv2Loop, BackwardJumpWhilePlayingIsAWrap) {
    BR::Test::HostOptions options;
    options.maxBlockLength = 256;
    BR::Test::Lv2TestHost host(BR::Test::ProbeLibrary(), BR::Test::kProbeUri, options);
    auto& probe = dynamic_cast<BrelCorvaneHostProbe::BrelCorvane&>(host.Module());
    host.AddPosition(0, {.frame = 0, .speed = 1.0f, .bpm = 120.0f, .beat = 0.0});
    for (int i = 0; i < 94; ++i)
        host.Run(256);  // 24064 frames: quarter 1.00267
    EXPECT_FALSE(probe.lastLooping);
    // The host loops back to quarter 0 at frame 100 of this block.
    host.AddPosition(100, {.frame = 0, .speed = 1.0f, .bpm = 120.0f, .beat = 0.0});
    host.Run(512);
    // Blocks: [0,100) before, [100,356) the wrap's block, [356,512) after it.
    EXPECT_EQ(probe.blocksSeen, 94u + 3u);
    EXPECT_FALSE(probe.lastLooping);
    EXPECT_NEAR(probe.lastBeat, 256.0 / 24000.0, 1e-9);  // the position ran on from the host's
    EXPECT_NEAR(host.outputs[1][100], 0.0, 1e-9);
    EXPECT_NEAR(host.outputs[1][511], 411.0 / 24000.0, 1e-6);
}

TEST(Lv2Loop, TheWrapBlockSeesTheJumpAsLoopLength) {
    BR::Test::Lv2TestHost host(BR::Test::ProbeLibrary(), BR::Test::kProbeUri);
    auto& probe = dynamic_cast<BrelCorvaneHostProbe::BrelCorvane&>(host.Module());
    host.AddPosition(0, {.frame = 48000, .speed = 1.0f, .bpm = 120.0f, .beat = 4.0});
    host.Run(480);  // quarter 4.02 at the end
    host.AddPosition(0, {.frame = 0, .speed = 1.0f, .bpm = 120.0f, .beat = 0.0});
    host.Run(100);
    EXPECT_TRUE(probe.lastLooping);
    EXPECT_NEAR(probe.lastLoopStart, 0.0, 1e-6);
    EXPECT_NEAR(probe.lastLoopEnd, 4.02, 1e-6);
    host.Run(100);
    EXPECT_FALSE(probe.lastLooping);
    EXPECT_NEAR(probe.lastBeat, 100.0 / 24000.0, 1e-9);
}

TEST(Lv2Loop, NoWrapForStopsForwardJumpsOrRepeats) {
    BR::Test::Lv2TestHost host(BR::Test::ProbeLibrary(), BR::Test::kProbeUri);
    auto& probe = dynamic_cast<BrelCorvaneHostProbe::BrelCorvane&>(host.Module());
    host.AddPosition(0, {.frame = 0, .speed = 1.0f, .bpm = 120.0f, .beat = 8.0});
    host.Run(240);
    host.AddPosition(0, {.frame = 240, .speed = 1.0f, .bpm = 120.0f, .beat = 8.01});  // where it was anyway
    host.Run(240);
    EXPECT_FALSE(probe.lastLooping);
    host.AddPosition(0, {.frame = 96000, .speed = 1.0f, .bpm = 120.0f, .beat = 16.0});  // forward
    host.Run(240);
    EXPECT_FALSE(probe.lastLooping);
    host.AddPosition(0, {.frame = 0, .speed = 0.0f, .bpm = 120.0f, .beat = 0.0});  // back, but stopped
    host.Run(240);
    EXPECT_FALSE(probe.lastLooping);
    EXPECT_NEAR(probe.lastBeat, 0.0, 1e-12);
}

TEST(Lv2Loop, TickRoundedPositionsEveryBlockAreNoWrap) {
    // As a host that sends bar and beat each block, rounded to ticks of 1/1920 beat.
    BR::Test::HostOptions options;
    options.maxBlockLength = 2048;
    BR::Test::Lv2TestHost host(BR::Test::ProbeLibrary(), BR::Test::kProbeUri, options);
    auto& probe = dynamic_cast<BrelCorvaneHostProbe::BrelCorvane&>(host.Module());
    const double step = 90.0 / 60.0 / 48000.0;
    for (int64_t block = 0; block < 40; ++block) {
        const int64_t frame = block * 2048;
        const double beats = std::round(double(frame) * step * 1920.0) / 1920.0;
        host.AddPosition(0, {.frame = frame,
                             .bar = int64_t(beats / 4),
                             .speed = 1.0f,
                             .bpm = 90.0f,
                             .barBeat = float(beats - 4.0 * std::floor(beats / 4)),
                             .beatsPerBar = 4.0f,
                             .beatUnit = 4});
        host.Run(2048);
        ASSERT_FALSE(probe.lastLooping) << "block " << block;
        // The beat phase runs on exactly from the first position, not from the rounded ones.
        ASSERT_NEAR(probe.lastBeat, double(frame) * step, 1e-9) << "block " << block;
    }
}
