// corvane render sync with the transport options: stopped at quarter 1.5, started at frame 10000,
// looping from 2 to 6, stopped again at 150000. The 24 PPQN clock waits for the bar line at 4 (frame
// 70000), ticks every 1000 samples straight through the loop wrap at 118000, and ends at the stop;
// the run line ("Start/Stop") pulses for 5 ms at the first tick and at the stop.
#include <gtest/gtest.h>

#include <cstdlib>

#include "host/cli/WavFile.h"
#include "tests/support/RunCommand.h"

TEST(CliRenderSync, ClockFollowsTransportOptions) {
    const std::string folder = BR::Test::MakeTempFolder();
    const std::string wav = folder + "/sync.wav";
    const auto result = BR::Test::RunCorvane(
        "render sync --set \"DINsync Type=24ppqn\" --set \"Run Signal Type=Start/Stop\" --block 100"
        " --stopped --position 1.5 --transport 10000:play --loop 2:6 --transport 150000:stop"
        " --frames 160000 --out " +
        wav);
    ASSERT_EQ(result.status, 0) << result.err;
    const BR::AudioData audio = BR::ReadWav(wav);
    ASSERT_EQ(audio.channels.size(), 2u);
    ASSERT_EQ(audio.Frames(), 160000u);

    std::vector<size_t> edges, runEdges;
    for (size_t i = 1; i < audio.Frames(); ++i) {
        if (audio.channels[0][i] > 0.5f && audio.channels[0][i - 1] < 0.5f) edges.push_back(i);
        if (audio.channels[1][i] > 0.5f && audio.channels[1][i - 1] < 0.5f) runEdges.push_back(i);
    }
    ASSERT_EQ(edges.size(), 80u);
    for (size_t k = 0; k < edges.size(); ++k)
        EXPECT_EQ(edges[k], 70000u + 1000u * k) << k;
    EXPECT_EQ(runEdges, (std::vector<size_t>{70000, 150000}));
    EXPECT_EQ(audio.channels[1][70239], 1.0f);
    EXPECT_EQ(audio.channels[1][70240], 0.0f);
    EXPECT_EQ(audio.channels[1][150239], 1.0f);
    EXPECT_EQ(audio.channels[1][150240], 0.0f);
    std::system(("rm -rf '" + folder + "'").c_str());
}
