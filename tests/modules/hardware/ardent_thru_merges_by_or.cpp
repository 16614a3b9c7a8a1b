// Thru audio is OR-ed into the frame words, never added: -1.0 on input 1 with every byte 0 gives the
// left word 0x800000 and the sample -1.0; 1.0 gives bit 23 alone; a sample whose bits a byte already
// has adds nothing; with thru off the input reaches nothing.
#include <gtest/gtest.h>

#include "tests/modules/hardware/FrameDecoder.h"
#include "tests/support/Render.h"

namespace {
BR::Test::Channels Render(float left, float right, float output1, float thru = 1.0f) {
    auto driver = BR::Test::MakeDriver("ardentcontroller");
    driver->SetParameterByName("Ch 1 MIDI Channel", 0.0f);
    driver->SetParameterByName("Output 1", output1);
    driver->SetParameterByName("Input Thru", thru);
    BR::Test::Channels in(8, std::vector<float>(4, 0.0f));
    in[0].assign(4, left);
    in[1].assign(4, right);
    return BR::Test::RenderFrames(*driver, 4, 4, in);
}
}  // namespace

TEST(ArdentThru, MinusOneIsBit23AndReadsMinusOne) {
    const auto out = Render(-1.0f, 0.0f, 0.0f);
    EXPECT_EQ(BR::Test::WordOf(out[0][0], BR::Test::kCatA), 0x800000u);
    EXPECT_EQ(out[0][0], -1.0f);
    EXPECT_EQ(out[1][0], 0.0f);
}

TEST(ArdentThru, PlusOneIsBit23Alone) {
    const auto out = Render(1.0f, 0.0f, 0.0f);
    EXPECT_EQ(BR::Test::WordOf(out[0][0], BR::Test::kCatA), 0x800000u);
    EXPECT_EQ(out[0][0], -1.0f);  // the OR lands on the sign bit, as the merge has it
}

TEST(ArdentThru, MergeIsAnOrNotASum) {
    // Byte 1 = 1 is 0x010000; a thru sample of the same value would double it if added.
    const float same = float(0x010000) / 8388608.0f;
    auto out = Render(same, 0.0f, 1.0f);
    EXPECT_EQ(BR::Test::WordOf(out[0][0], BR::Test::kCatA), 0x010000u);
    const float other = float(0x000123) / 8388608.0f;
    out = Render(other, other, 1.0f);
    EXPECT_EQ(BR::Test::WordOf(out[0][0], BR::Test::kCatA), 0x010123u);
    EXPECT_EQ(BR::Test::WordOf(out[1][0], BR::Test::kCatA), 0x000123u);
    // A negative sample: -trunc(x * -F) in 23 bits with bit 23 set.
    const float negative = -float(0x000010) / 8388608.0f;
    out = Render(negative, 0.0f, 0.0f);
    EXPECT_EQ(BR::Test::WordOf(out[0][0], BR::Test::kCatA), 0xFFFFF0u);
}

TEST(ArdentThru, OffMergesNothing) {
    const auto out = Render(-1.0f, 0.7f, 0.0f, 0.0f);
    EXPECT_EQ(out[0][0], 0.0f);
    EXPECT_EQ(out[1][0], 0.0f);
}

TEST(ArdentThru, PairsTakeTheirInputs) {
    auto driver = BR::Test::MakeDriver("ardentcontroller");
    driver->SetParameterByName("Ch 1 MIDI Channel", 0.0f);
    driver->SetParameterByName("Input Thru", 4.0f);  // "7/8"
    BR::Test::Channels in(8, std::vector<float>(2, 0.0f));
    in[6].assign(2, float(0x40) / 8388608.0f);
    in[7].assign(2, float(0x20) / 8388608.0f);
    const auto out = BR::Test::RenderFrames(*driver, 2, 2, in);
    EXPECT_EQ(BR::Test::WordOf(out[0][1], BR::Test::kCatA), 0x40u);
    EXPECT_EQ(BR::Test::WordOf(out[1][1], BR::Test::kCatA), 0x20u);
}
