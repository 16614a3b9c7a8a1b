// The combiners' byte rules at their edges: 0.0 is 2048 (first byte 0, second with bits 11-7 at 16),
// +1.0 is 4095 and -1.0 is 1, offsets add 384 codes a volt; the Dunmore with constant inputs keeps
// sending one unchanged channel's first byte; "SMUX Proof" on at an odd moment runs phases by 1 and
// off clears bit 0; target channel "6" on "Ardent" leaves only thru; a Dunmore byte with bit 7 set
// always starts a value; test signals; filters; non-numbers never reach a word.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "CombinerReceiver.h"
#include "modules/hardware/CVCombiner.h"
#include "tests/support/Render.h"

namespace {
using BR::Test::Channels;

BrelCVCombinerBase& Combiner(BR::HostDriver& d) {
    return static_cast<BrelCVCombinerBase&>(d.Module());
}

// Input k + 2 constant at values[k].
Channels Constants(const std::vector<float>& values, uint32_t frames) {
    Channels in(values.size() + 2, std::vector<float>(frames, 0.0f));
    for (size_t k = 0; k < values.size(); ++k)
        in[k + 2].assign(frames, values[k]);
    return in;
}

std::vector<uint8_t> Lane0(const Channels& out) {
    return BR::Test::LaneBytes(out[0], out[1], false, 0);
}
}  // namespace

TEST(CinderCombiner, ZeroIsMidScaleAndFullScaleEnds) {
    auto d = BR::Test::MakeDriver("cindercombiner");
    d->SetParameterByName("Input Thru", 0.0f);
    const auto bytes = Lane0(BR::Test::RenderFrames(*d, 8, 8, Constants({0.0f, 1.0f, -1.0f, 0.0f}, 8)));
    // Channel 0: 2048 = first byte 0, second 1 00 10000.
    EXPECT_EQ(bytes[0], 0x00);
    EXPECT_EQ(bytes[1], 0x80 | 16);
    // Channel 1: 4095 = 127, then 1 01 11111.
    EXPECT_EQ(bytes[2], 127);
    EXPECT_EQ(bytes[3], 0x80 | (1 << 5) | 31);
    // Channel 2: 1 = 1, then 1 10 00000.
    EXPECT_EQ(bytes[4], 1);
    EXPECT_EQ(bytes[5], 0x80 | (2 << 5));
    EXPECT_EQ(bytes[7], 0x80 | (3 << 5) | 16);
    EXPECT_EQ(Combiner(*d).Phase(), 0);  // eight samples, one cycle
}

TEST(CinderCombiner, OffsetsAddCodesPerVoltAndClamp) {
    auto d = BR::Test::MakeDriver("cindercombiner");
    d->SetParameterByName("Offset 1", 1.0f);
    d->SetParameterByName("Offset 2", -5.34f);
    d->SetParameterByName("Offset 3", 5.34f);
    const auto bytes = Lane0(BR::Test::RenderFrames(*d, 8, 8, Constants({0.0f, 0.0f, 0.0f, 0.5f}, 8)));
    const auto got = BR::Test::ReceiveCinder(bytes);
    ASSERT_EQ(got.size(), 4u);
    EXPECT_EQ(got[0].value, 2048 + 384);
    EXPECT_EQ(got[1].value, 0);     // 2048 - 2050, clamped
    EXPECT_EQ(got[2].value, 4095);  // 2048 + 2050, clamped
    EXPECT_EQ(got[3].value, BR::Test::ExpectedValue(0.5f));
}

TEST(DunmoreCombiner, ConstantInputsRepeatOneUnchangedChannel) {
    auto d = BR::Test::MakeDriver("dunmorecombiner");
    const Channels in = Constants({0.1f, 0.2f, 0.3f, 0.4f, 0.5f, 0.6f, 0.7f, 0.8f}, 2048);
    // Two slices of warm-up send every channel, then one more cycle settles.
    auto out = BR::Test::RenderFrames(*d, 512, 256, in);
    out = BR::Test::RenderFrames(*d, 240, 240, in);
    const auto bytes = Lane0(out);
    ASSERT_EQ(bytes.size(), 240u);
    for (size_t i = 0; i + 3 < bytes.size(); ++i)
        EXPECT_EQ(bytes[i + 3], bytes[i]) << i;
    size_t starts = 0;
    for (uint8_t b : bytes)
        starts += (b & 0x80) ? 1 : 0;
    EXPECT_EQ(starts, 80u);
    const auto got = BR::Test::ReceiveDunmore(bytes);
    ASSERT_FALSE(got.empty());
    // Inputs 7 and 8 (channels 7, 8 by default "9" and "10") are not served by the host: silence.
    const int ch = got[0].channel;
    const float x = ch < 6 ? 0.1f * float(ch + 1) : 0.0f;
    EXPECT_EQ(got[0].value, BR::Test::ExpectedValue(x));
}

TEST(DunmoreCombiner, WarmupSendsEveryChannelInTheFirstTwoSlices) {
    auto d = BR::Test::MakeDriver("dunmorecombiner");
    const Channels in = Constants({0.0f, 0.0f, 0.0f, 0.0f, 0.0f, 0.0f, 0.0f, 0.0f}, 24);
    const auto bytes = Lane0(BR::Test::RenderFrames(*d, 24, 24, in));
    const auto got = BR::Test::ReceiveDunmore(bytes);
    ASSERT_EQ(got.size(), 8u);
    for (int k = 0; k < 8; ++k)
        EXPECT_EQ(got[size_t(k)].channel, k);
    EXPECT_EQ(Combiner(*d).Warmup(), 1);
    BR::Test::RenderFrames(*d, 24, 24, in);
    EXPECT_EQ(Combiner(*d).Warmup(), 2);
    EXPECT_EQ(Combiner(*d).LastValue(3), 2048);
}

TEST(CombinerPhases, SMUXProofOnAtAnOddMomentAndOffAgain) {
    for (const char* stem : {"cindercombiner", "dunmorecombiner"}) {
        auto d = BR::Test::MakeDriver(stem);
        auto& m = Combiner(*d);
        const bool dunmore = std::string(stem) == "dunmorecombiner";
        if (dunmore) d->SetParameterByName("Adaptive Mode", 0.0f);
        BR::Test::RenderFrames(*d, 2, 2);
        EXPECT_EQ(m.Phase(), 4) << stem;
        d->SetParameterByName("SMUX Proof", 1.0f);
        BR::Test::RenderFrames(*d, 3, 3);
        // 4, 5, 6 and 7; the Dunmore skips 6 and 7 to the next channel's 8.
        EXPECT_EQ(m.Phase(), dunmore ? 9 : 7) << stem;
        d->SetParameterByName("SMUX Proof", 0.0f);
        BR::Test::RenderFrames(*d, 1, 1);
        // Bit 0 cleared before the slice, then a step of 2.
        EXPECT_EQ(m.Phase(), dunmore ? 10 : 8) << stem;
        BR::Test::RenderFrames(*d, 1, 1);
        EXPECT_EQ(m.Phase(), dunmore ? 12 : 10) << stem;
    }
}

TEST(CinderCombiner, TargetChannelSixOnArdentLeavesOnlyThru) {
    auto d = BR::Test::MakeDriver("cindercombiner");
    d->SetParameterByName("Target Channel", 5.0f);
    Channels in = Constants({0.3f, -0.2f, 0.9f, 0.0f}, 16);
    in[0].assign(16, 0.25f);
    in[1].assign(16, -0.5f);
    const auto out = BR::Test::RenderFrames(*d, 16, 16, in);
    for (uint32_t i = 0; i < 16; ++i) {
        EXPECT_EQ(out[0][i], 0.25f) << i;  // 0x200000: one bit, passes exactly
        EXPECT_EQ(out[1][i], -0.5f) << i;
    }
    d->SetParameterByName("Input Thru", 0.0f);
    const auto silent = BR::Test::RenderFrames(*d, 16, 16, in);
    for (uint32_t i = 0; i < 16; ++i)
        EXPECT_TRUE(silent[0][i] == 0.0f && silent[1][i] == 0.0f) << i;
    // On "Basalt" the sixth lane exists.
    d->SetParameterByName("Target Hardware", 1.0f);
    const auto six = BR::Test::RenderFrames(*d, 16, 16, in);
    const auto bytes = BR::Test::LaneBytes(six[0], six[1], true, 5);
    EXPECT_FALSE(BR::Test::ReceiveCinder(bytes).empty());
}

TEST(DunmoreCombiner, BitSevenAlwaysStartsAValue) {
    for (int proof = 0; proof < 2; ++proof) {
        auto d = BR::Test::MakeDriver("dunmorecombiner");
        d->SetParameterByName("Input Thru", 0.0f);
        d->SetParameterByName("SMUX Proof", float(proof));
        Channels in(10, std::vector<float>(3000));
        std::mt19937 random(5);
        std::uniform_real_distribution<float> u(-1.0f, 1.0f);
        for (auto& ch : in)
            for (float& v : ch)
                v = (random() & 7) == 0 ? u(random) : 0.25f;  // mostly still, so skipping happens
        const auto bytes = Lane0(BR::Test::RenderFrames(*d, 3000, 100, in));
        // After each byte with bit 7 set (and its copy) come a middle byte and a closing byte.
        const size_t copies = proof ? 2 : 1;
        for (size_t i = 0; i + 3 * copies <= bytes.size(); ++i) {
            if (!(bytes[i] & 0x80) || (i > 0 && (bytes[i - 1] & 0x80))) continue;
            EXPECT_EQ(bytes[i + copies] & 0xE0, 0) << proof << " " << i;
            const int closing = bytes[i + 2 * copies] & 0xE0;
            EXPECT_TRUE(closing == 0x20 || closing == 0x40) << proof << " " << i;
        }
        // And nothing else has bit 7 set: middle and closing bytes never do.
        size_t starts = 0;
        for (uint8_t b : bytes)
            starts += (b & 0x80) ? 1 : 0;
        EXPECT_EQ(starts * 3, bytes.size() - bytes.size() % (3 * copies)) << proof;
    }
}

TEST(CombinerTestSignals, BytesFollowTheCounters) {
    auto cinder = BR::Test::MakeDriver("cindercombiner");
    cinder->SetParameterByName("Test Signal", 3.0f);
    cinder->SetParameterByName("SMUX Proof", 1.0f);  // ignored: a byte per sample
    auto bytes = Lane0(BR::Test::RenderFrames(*cinder, 64, 64, Constants({0.5f, 0.5f, 0.5f, 0.5f}, 64)));
    for (int c = 0; c < 64; ++c) {
        const int channel = (c >> 1) & 3;
        const int value = (channel * 1024 + ((c * 2) & ~15)) & 0xFFF;
        const int want = (c & 1) == 0 ? (value & 127) : (((channel | 4) << 5) | (value >> 7));
        EXPECT_EQ(bytes[size_t(c)], want) << c;
    }
    auto dunmore = BR::Test::MakeDriver("dunmorecombiner");
    dunmore->SetParameterByName("Test Signal", 1.0f);
    bytes = Lane0(BR::Test::RenderFrames(*dunmore, 200, 200));
    int c = 0;
    for (size_t i = 0; i < 200; ++i) {
        const int t = c & 3, channel = (c >> 2) & 7, value = c >> 5;
        const int want = t == 0 ? (0x80 | (value & 31))
                         : t == 1
                             ? ((value >> 5) & 31)
                             : ((channel >= 4 ? 0x40 : 0x20) | ((channel & 3) << 2) | ((value >> 10) & 3));
        EXPECT_EQ(bytes[i], want) << i;
        c = (c + (t == 2 ? 2 : 1)) & 0x1FFFF;
    }
    EXPECT_EQ(Combiner(*dunmore).TestCounter(), c);
}

TEST(CombinerFilters, PassDCAndStartFromSilenceWhenTurnedOn) {
    auto d = BR::Test::MakeDriver("cindercombiner");
    d->SetParameterByName("Input Thru", 0.0f);
    d->SetParameterByName("Filter 1", 1.0f);
    const Channels in = Constants({0.5f, 0.5f, 0.0f, 0.0f}, 4000);
    const auto bytes = Lane0(BR::Test::RenderFrames(*d, 4000, 256, in));
    const auto got = BR::Test::ReceiveCinder(bytes);
    // The filtered channel rises from 2048; once settled it equals the unfiltered one.
    EXPECT_LT(got[0].value, BR::Test::ExpectedValue(0.5f));
    int last[4] = {-1, -1, -1, -1};
    for (const auto& v : got)
        last[v.channel] = v.value;
    // Settled within one code: the filter runs in floats, and the rule truncates.
    EXPECT_NEAR(last[0], BR::Test::ExpectedValue(0.5f), 1);
    EXPECT_EQ(last[1], BR::Test::ExpectedValue(0.5f));  // the same input, unfiltered
    EXPECT_EQ(last[2], 2048);
    EXPECT_NEAR(Combiner(*d).Coefficients().cutoff, 0.04464286f, 1e-7f);
}

TEST(CombinerBadInput, NonNumbersNeverReachAWord) {
    for (const char* stem : {"cindercombiner", "dunmorecombiner"}) {
        auto d = BR::Test::MakeDriver(stem);
        d->SetParameterByName("Filter 1", 1.0f);
        d->SetParameterByName("Offset 2", 1.0e9f);
        d->SetParameterByName("Input Thru", 0.0f);
        Channels in(10, std::vector<float>(2000));
        for (auto& ch : in)
            for (size_t i = 0; i < ch.size(); ++i)
                ch[i] = i % 3 == 0 ? NAN : (i % 3 == 1 ? INFINITY : -INFINITY);
        const auto out = BR::Test::RenderFrames(*d, 2000, 100, in);
        for (int c = 0; c < 2; ++c)
            for (float v : out[size_t(c)])
                ASSERT_TRUE(std::isfinite(v) && v >= -1.0f && v < 1.0f) << stem;
        for (const auto& v : BR::Test::ReceiveCinder(Lane0(out)))
            EXPECT_TRUE(v.value >= 0 && v.value <= 4095);
    }
}

TEST(CombinerIdentity, TablesAndTexts) {
    auto c = BR::Test::MakeDriver("cindercombiner");
    auto d = BR::Test::MakeDriver("dunmorecombiner");
    EXPECT_STREQ(c->Module().GetModuleName(), "Corvane Cinder Combiner");
    EXPECT_STREQ(c->Module().GetGuiScriptName(), "gui_cindercombiner.lua");
    EXPECT_STREQ(d->Module().GetModuleName(), "Corvane Dunmore Combiner");
    EXPECT_STREQ(d->Module().GetGuiScriptName(), "gui_dunmorecombiner.lua");
    EXPECT_EQ(c->Module().NumTableParameters(), 19);
    EXPECT_EQ(d->Module().NumTableParameters(), 32);
    EXPECT_EQ(c->Module().NumInputs(), 6);
    EXPECT_EQ(d->Module().NumInputs(), 10);
    EXPECT_EQ(c->Module().NumSidechains(), 4);
    EXPECT_EQ(d->Module().NumSidechains(), 8);
    EXPECT_EQ(c->Module().GetParameterFlags(6), 0x200000u);
    EXPECT_EQ(c->Module().GetParameterFlags(7), 0x200000u);
    EXPECT_EQ(c->Module().GetParameterFlags(8), 0u);
    EXPECT_EQ(d->Module().GetParameterFlags(10), 0x200000u);
    EXPECT_EQ(d->Module().GetParameterFlags(11), 0x200000u);
    EXPECT_EQ(d->ParameterIndexByName("Adaptive Mode"), 32);
    BR::CountedTextList* names = nullptr;
    ASSERT_EQ(d->Module().GetParameterValueStrings(12, &names), 0);
    EXPECT_EQ(names->Get(), (std::vector<std::string>{"Off", "1/2", "3/4", "5/6", "7/8", "9/10"}));
    names->Release();
    ASSERT_EQ(c->Module().GetParameterValueStrings(9, &names), 0);
    EXPECT_EQ(names->Get(), (std::vector<std::string>{"Off", "1", "2", "3", "4", "5", "6"}));
    names->Release();
}

TEST(CombinerFilters, TurningOnStartsFromSilence) {
    auto d = BR::Test::MakeDriver("cindercombiner");
    d->SetParameterByName("Input Thru", 0.0f);
    d->SetParameterByName("Filter 1", 1.0f);
    const Channels in = Constants({0.9f, 0.0f, 0.0f, 0.0f}, 2048);
    BR::Test::RenderFrames(*d, 2048, 256, in);  // settled at 0.9
    auto last = [](const std::vector<uint8_t>& bytes, int channel, bool first) {
        const auto got = BR::Test::ReceiveCinder(bytes);
        int v = -1;
        for (const auto& r : got)
            if (r.channel == channel) {
                v = r.value;
                if (first) break;
            }
        return v;
    };
    // Off, then on again at once: the history was cleared, so the channel starts again from 0.0.
    d->SetParameterByName("Filter 1", 0.0f);
    auto bytes = Lane0(BR::Test::RenderFrames(*d, 16, 16, in));
    EXPECT_EQ(last(bytes, 0, true), BR::Test::ExpectedValue(0.9f));
    d->SetParameterByName("Filter 1", 1.0f);
    bytes = Lane0(BR::Test::RenderFrames(*d, 16, 16, in));
    EXPECT_LT(last(bytes, 0, true), 2048 + 300);
}

TEST(CombinerStatus, LastFrameBytesReachTheStatusBlock) {
    auto d = BR::Test::MakeDriver("dunmorecombiner");
    d->SetParameterByName("Input Thru", 0.0f);
    d->SetParameterByName("Target Hardware", 1.0f);
    d->SetParameterByName("Target Channel", 3.0f);
    const auto out = BR::Test::RenderFrames(*d, 100, 100, Constants({0.2f, 0.4f}, 100));
    const auto frames = BR::Test::Frames(out[0], out[1], true);
    const auto& status = d->Module().GetStatusBlock()->As<BrelCombinerStatus>();
    for (size_t b = 0; b < 6; ++b)
        EXPECT_EQ(status.frameBytes[b], frames.back()[b]) << b;
    EXPECT_NE(frames.back()[3], 0);
}
