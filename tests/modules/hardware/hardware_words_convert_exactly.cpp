// Every output sample of both controllers' test signals, in both interface categories, is its 24-bit word
// exactly: each frame read back by the decoder holds the bytes the signal's counter gives, and its samples
// are the words divided by the category's full scale. "Cat B" with byte 0x7F in b1 is 0x7F0000 / 8388480.
#include <gtest/gtest.h>

#include <cmath>

#include "tests/modules/hardware/FrameDecoder.h"
#include "tests/support/Render.h"

namespace {

// The bytes of test signal `s` at counter value c, from the table of signals.
std::array<uint8_t, 6> SignalBytes(int s, uint32_t c, int numBytes) {
    std::array<uint8_t, 6> b{};
    uint8_t all = 0;
    switch (s) {
        case 1:
            all = c == 0 ? 255 : 0;
            break;
        case 2:
            all = uint8_t(c * 48);
            break;
        case 3:
            all = uint8_t(c);
            break;
        case 4:
            all = uint8_t(1u << (c >> 14));
            break;
        case 5:
            b = {0, 0, uint8_t(c >> 12), uint8_t(c >> 4), uint8_t(c & 15), 0};
            return b;
    }
    for (int k = 0; k < numBytes; ++k)
        b[size_t(k)] = all;
    return b;
}

uint32_t Advance(int s, uint32_t c) {
    switch (s) {
        case 1:
            return (c + 1) & 7;
        case 2:
            return (c + 1) % 6;
        case 3:
            return (c + 1) & 255;
        case 4:
            return (c + 1) & 0x1FFFF;
        default:
            return (c + 1) & 0xFFFFF;
    }
}

void CheckSignal(const std::string& stem, int signal, int category, uint32_t frames) {
    const bool six = stem == "basaltcontroller";
    const double fullScale = category ? BR::Test::kCatB : BR::Test::kCatA;
    auto driver = BR::Test::MakeDriver(stem, 48000.0f);
    driver->SetParameterByName("Test Signal", float(signal));
    driver->SetParameterByName("Interface Category", float(category));
    // Thru input and MIDI are present but the test path merges nothing.
    BR::Test::Channels in(frames < 0x30000 ? 8 : 0, std::vector<float>(frames, -0.75f));
    const auto out = BR::Test::RenderFrames(*driver, frames, 1024, in, {{0, {0x90, 60, 100}}});
    uint32_t c = 0;
    for (uint32_t i = 0; i < frames; ++i) {
        c = Advance(signal, c);
        const auto expected = SignalBytes(signal, c, six ? 6 : 5);
        const uint32_t left = BR::Test::WordOf(out[0][i], fullScale),
                       right = BR::Test::WordOf(out[1][i], fullScale);
        const auto bytes = six ? BR::Test::SixBytes(left, right) : BR::Test::FiveBytes(left, right);
        ASSERT_EQ(bytes, expected) << stem << " signal " << signal << " cat " << category << " sample " << i;
        // The sample is the word by the rule, to the last bit, and the low nibbles of a five-byte
        // frame are clear.
        ASSERT_EQ(double(out[0][i]), double(float(BR::Test::SampleOf(left, fullScale)))) << i;
        ASSERT_EQ(double(out[1][i]), double(float(BR::Test::SampleOf(right, fullScale)))) << i;
        if (!six) {
            ASSERT_EQ((left | right) & 0xF, 0u) << i;
        }
    }
}

}  // namespace

TEST(HardwareWords, ArdentTestSignalsInBothCategories) {
    for (int category : {0, 1}) {
        for (int signal = 1; signal <= 4; ++signal)
            CheckSignal("ardentcontroller", signal, category, 0x20000 + 17);
        // Signal 5: the right word is a 20-bit ramp over its top 20 bits, every value once.
        CheckSignal("ardentcontroller", 5, category, 0x100000 + 3);
    }
}

TEST(HardwareWords, BasaltTestSignalsInBothCategories) {
    for (int category : {0, 1})
        for (int signal = 1; signal <= 4; ++signal)
            CheckSignal("basaltcontroller", signal, category, 0x20000 + 17);
}

TEST(HardwareWords, EveryWordConvertsBackExactly) {
    // The rule read the other way recovers each of the 2^24 words from its sample in both
    // categories (a float of the division, as a host's 32-bit path carries it).
    for (double fullScale : {BR::Test::kCatA, BR::Test::kCatB})
        for (uint32_t word = 0; word < 0x1000000u; ++word)
            ASSERT_EQ(BR::Test::WordOf(float(BR::Test::SampleOf(word, fullScale)), fullScale), word) << word;
}

TEST(HardwareWords, CategoryBByte7FInB1) {
    auto driver = BR::Test::MakeDriver("ardentcontroller");
    driver->SetParameterByName("Ch 1 MIDI Channel", 0.0f);
    driver->SetParameterByName("Interface Category", 1.0f);
    driver->SetParameterByName("Output 1", 0x7F);
    const auto out = BR::Test::RenderFrames(*driver, 4, 4);
    EXPECT_EQ(out[0][2], float(0x7F0000) / 8388480.0f);
    EXPECT_EQ(out[1][2], 0.0f);
}

TEST(HardwareWords, TestCounterIsSharedAndKeptAcrossBlocks) {
    auto driver = BR::Test::MakeDriver("ardentcontroller");
    driver->SetParameterByName("Test Signal", 3.0f);
    auto out = BR::Test::RenderFrames(*driver, 10, 3);
    EXPECT_EQ(BR::Test::FiveBytes(BR::Test::WordOf(out[0][9], BR::Test::kCatA), 0)[0], 10);
    // Another signal continues from the same counter: 10 -> (10 + 1) % 6 = 5.
    driver->SetParameterByName("Test Signal", 2.0f);
    out = BR::Test::RenderFrames(*driver, 1, 1);
    EXPECT_EQ(BR::Test::FiveBytes(BR::Test::WordOf(out[0][0], BR::Test::kCatA), 0)[0], 5 * 48);
}
