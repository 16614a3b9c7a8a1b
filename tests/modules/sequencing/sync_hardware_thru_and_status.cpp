// Sync in a frame mode: the inputs are ORed into the words by the thru rule (a non-number adds no
// bits, an infinity saturates), and the last frame's bytes reach the status block.
#include <gtest/gtest.h>

#include <cmath>

#include "modules/sequencing/Sync.h"
#include "tests/modules/hardware/FrameDecoder.h"
#include "tests/support/Render.h"

TEST(SyncHardware, InputsMergeAndNonNumbersAddNothing) {
    auto d = BR::Test::MakeDriver("sync");
    d->SetParameterByName("BR Hardware Mode", 1.0f);
    d->SetParameterByName("DINsync Type", 1.0f);
    d->SetParameterByName("Run Output", 3.0f);  // "Output 3": byte 3, the run line low without a transport
    d->SetParameterByName("Run Low", 0.5f);
    BR::Test::Channels in = {{0.25f, NAN, INFINITY, -INFINITY}, {0.0f, 0.0f, NAN, 0.5f}};
    const auto out = BR::Test::RenderFrames(*d, 4, 4, in);
    const uint32_t runByte = uint32_t(int(0.5f * 255.0f + 0.5f));  // 128, in the right word's top byte
    EXPECT_EQ(BR::Test::WordOf(out[0][0], BR::Test::kCatA), 0x200000u);
    EXPECT_EQ(BR::Test::WordOf(out[0][1], BR::Test::kCatA), 0u);
    EXPECT_EQ(BR::Test::WordOf(out[1][2], BR::Test::kCatA), runByte << 16);
    EXPECT_EQ(BR::Test::WordOf(out[1][3], BR::Test::kCatA), (runByte << 16) | 0x400000u);
    for (int c = 0; c < 2; ++c)
        for (float v : out[size_t(c)])
            EXPECT_TRUE(std::isfinite(v) && v >= -1.0f && v < 1.0f);
    const auto& status = d->Module().GetStatusBlock()->As<BrelCorvaneSync::SyncStatus>();
    EXPECT_EQ(status.frameBytes[2], runByte);
    EXPECT_EQ(status.frameBytes[0], 0);
}
