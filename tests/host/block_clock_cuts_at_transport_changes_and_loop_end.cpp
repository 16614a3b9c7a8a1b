// The render loop's clock: blocks end at the block size, at a start or stop of the transport, and at
// the loop's end; starts and stops take effect at their frame; without a transport nothing is cut.
#include <gtest/gtest.h>

#include "host/cli/RenderPieces.h"

TEST(BlockClock, CutsAtStartsAndStops) {
    BR::TransportSettings settings;
    settings.changes = {{1500, true}, {1000, false}};  // given out of order
    BR::BlockClock clock(settings, 48000);
    ASSERT_NE(clock.Transport(), nullptr);
    std::vector<uint32_t> lengths;
    std::vector<bool> playing;
    for (int64_t done = 0; done < 2100;) {
        const uint32_t n = clock.NextBlock(done, uint32_t(std::min<int64_t>(512, 2100 - done)));
        lengths.push_back(n);
        playing.push_back(clock.Transport()->IsTransportPlaying());
        clock.Advance(n);
        done += n;
    }
    EXPECT_EQ(lengths, (std::vector<uint32_t>{512, 488, 500, 512, 88}));
    EXPECT_EQ(playing, (std::vector<bool>{true, true, false, true, true}));
    // Stopped for 500 frames: the position stands 500 frames behind the timeline.
    EXPECT_DOUBLE_EQ(clock.Transport()->blockQuarter, (2100.0 - 500.0) / 24000.0);
}

TEST(BlockClock, CutsAtTheLoopEndAndStartsAt) {
    BR::TransportSettings settings;
    settings.tempo = 60;  // 48000 frames a quarter note
    settings.position = 0.75;
    settings.looping = true;
    settings.loopStart = 0.5;
    settings.loopEnd = 1.0;
    BR::BlockClock clock(settings, 48000);
    EXPECT_EQ(clock.Transport()->GetCurrentNativeSampleLocation(), 36000);
    std::vector<uint32_t> lengths;
    std::vector<double> starts;
    for (int64_t done = 0; done < 40000;) {
        const uint32_t n = clock.NextBlock(done, uint32_t(std::min<int64_t>(10000, 40000 - done)));
        lengths.push_back(n);
        starts.push_back(clock.Transport()->blockQuarter);
        clock.Advance(n);
        done += n;
    }
    EXPECT_EQ(lengths, (std::vector<uint32_t>{10000, 2000, 10000, 10000, 4000, 4000}));
    EXPECT_DOUBLE_EQ(starts[1], 0.75 + 10000.0 / 48000.0);
    EXPECT_DOUBLE_EQ(starts[2], 0.5);  // wrapped
    EXPECT_DOUBLE_EQ(starts[5], 0.5);
}

TEST(BlockClock, NoTransportNoCuts) {
    BR::TransportSettings settings;
    settings.present = false;
    settings.changes = {{10, false}};
    settings.looping = true;
    settings.loopEnd = 0.001;
    BR::BlockClock clock(settings, 48000);
    EXPECT_EQ(clock.Transport(), nullptr);
    EXPECT_EQ(clock.NextBlock(0, 256), 256u);
}
