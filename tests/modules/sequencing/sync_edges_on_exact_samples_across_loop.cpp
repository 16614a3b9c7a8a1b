// A 24 PPQN clock at 120 BPM and 48 kHz (1000 samples a tick) puts every rising edge on the sample
// that the host position gives, whatever the block lengths, across the host's loop wrap: started at
// quarter 0.25 inside a loop from 2 to 6, the first tick is the bar line at 4 (frame 90000), and the
// wrap at frame 138000 is followed at once by the tick of quarter 2.
#include <gtest/gtest.h>

#include "modules/sequencing/Sync.h"
#include "tests/support/TransportRender.h"

namespace {

constexpr double kSamplesPerQuarter = 24000.0;  // 120 BPM at 48 kHz
constexpr uint32_t kFrames = 400000;

// Edges of ticks k/24 quarters on the looping timeline: 0.25 + frame / 24000 until 6, then from 2 again.
std::vector<uint32_t> ExpectedEdges() {
    std::vector<uint32_t> edges;
    double segmentQuarter = 0.25;
    uint32_t segmentFrame = 0;
    bool started = false;
    while (segmentFrame < kFrames) {
        const uint32_t segmentEnd = segmentFrame + uint32_t((6.0 - segmentQuarter) * kSamplesPerQuarter);
        for (int k = 0; k < 6 * 24; ++k) {
            const double quarter = k / 24.0;
            if (quarter < segmentQuarter) continue;
            if (!started && quarter < 4.0) continue;  // the clock starts at the bar line
            started = true;
            const double frame = segmentFrame + (quarter - segmentQuarter) * kSamplesPerQuarter;
            if (frame < segmentEnd && frame < kFrames) edges.push_back(uint32_t(std::llround(frame)));
        }
        segmentFrame = segmentEnd;
        segmentQuarter = 2.0;
    }
    return edges;
}

}  // namespace

TEST(SyncClockPlacement, EdgesOnExactSamplesAcrossLoopAndBlocks) {
    const std::vector<uint32_t> expected = ExpectedEdges();
    ASSERT_EQ(expected.front(), 90000u);
    ASSERT_EQ(expected[48], 138000u);  // the first tick after the wrap
    const std::vector<std::vector<uint32_t>> patterns = {
        {1000}, {999}, {1001}, {37, 1024, 1, 500, 333}, {64}};
    for (const auto& pattern : patterns) {
        auto driver = BR::Test::MakeDriver("sync", 48000.0f);
        driver->SetParameterByName("DINsync Type", 1.0f);  // 24ppqn
        BR::DriverTransport transport;
        transport.sampleRate = 48000.0;
        transport.tempo = 120.0;
        transport.looping = true;
        transport.loopStart = 2.0;
        transport.loopEnd = 6.0;
        BR::Test::PlaceTransport(transport, 0.25);
        std::vector<BR::Test::BlockStart> blocks;
        const BR::Test::Channels out =
            BR::Test::RenderWithTransport(*driver, transport, kFrames, pattern, {}, {}, &blocks);

        // The host really wrapped: a block started at quarter 2 at frame 138000. (The driver's wrap may
        // come a frame late after many short blocks; the tick of quarter 6 then still lands on 138000.)
        bool wrapped = false;
        for (const auto& b : blocks)
            wrapped =
                wrapped || (b.frame >= 138000u && b.frame <= 138001u && b.quarter < 2.0 + 1.5 / 24000.0);
        EXPECT_TRUE(wrapped) << pattern.front();

        const std::vector<uint32_t> edges = BR::Test::RisingEdges(out[0]);
        EXPECT_EQ(edges, expected) << "blocks of " << pattern.front();
        // Each tick is high for half a period, 500 samples.
        for (uint32_t e : expected) {
            if (e + 1000 > kFrames) break;
            EXPECT_EQ(out[0][e + 499], 1.0f) << e;
            EXPECT_EQ(out[0][e + 500], 0.0f) << e;
        }
        // Run ("Run" type, second output) goes high with the first tick and stays high.
        EXPECT_EQ(out[1][89999], 0.0f);
        EXPECT_EQ(out[1][90000], 1.0f);
        EXPECT_EQ(out[1][kFrames - 1], 1.0f);
    }
}
