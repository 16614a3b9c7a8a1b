// A Voice Controller playing a MIDI file in each hardware mode: the first two outputs carry the frame
// words that the stated formulas give from the same render's analogue outputs, sample by sample:
// "Ardent" level bytes (with a bipolar byte), a Cinder lane in closed form, a Dunmore lane rebuilt by
// the independent receiver, on both targets and on a lane that "Ardent" does not have.
#include <gtest/gtest.h>
#include <smf.h>

#include <filesystem>

#include "host/cli/WavFile.h"
#include "tests/modules/hardware/CombinerReceiver.h"
#include "tests/support/RunCommand.h"

namespace {

void Add(smf_track_t* track, int pulses, std::vector<uint8_t> bytes) {
    smf_event_t* event = smf_event_new_from_pointer(bytes.data(), int(bytes.size()));
    ASSERT_NE(event, nullptr);
    smf_track_add_event_pulses(track, event, pulses);
}

// 960 pulses a quarter at 120 BPM: 24000 frames at 48 kHz.
void WriteMelody(const std::string& path) {
    smf_t* smf = smf_new();
    ASSERT_EQ(smf_set_ppqn(smf, 960), 0);
    smf_track_t* track = smf_track_new();
    smf_add_track(smf, track);
    Add(track, 0, {0xFF, 0x51, 0x03, 0x07, 0xA1, 0x20});
    Add(track, 100, {0x90, 60, 100});
    Add(track, 500, {0x80, 60, 0});
    Add(track, 600, {0x90, 67, 40});
    Add(track, 1300, {0x90, 72, 127});
    Add(track, 1700, {0x80, 67, 0});
    Add(track, 1800, {0x80, 72, 0});
    ASSERT_EQ(smf_save(smf, path.c_str()), 0);
    smf_delete(smf);
}

BR::AudioData Render(const std::string& f, const std::string& name, const std::string& sets) {
    const auto result =
        BR::Test::RunCorvane("render voicecontroller --midi " + f +
                             "/melody.mid --seconds 2 --block 256 --set \"Output 2 Env1=1\" "
                             "--set \"Output 4 Velocity=1\" --set \"Output 5 Velocity=0.7\" " +
                             sets + " --out " + f + "/" + name + ".wav");
    EXPECT_EQ(result.status, 0) << result.err;
    return BR::ReadWav(f + "/" + name + ".wav");
}

int Byte(float x, float scale, float offset) {
    const int v = int(x * scale + offset);
    return v < 0 ? 0 : (v > 255 ? 255 : v);
}

}  // namespace

TEST(CliVoiceControllerHardware, FrameWordsFromTheFormulas) {
    const std::string f = BR::Test::MakeTempFolder();
    WriteMelody(f + "/melody.mid");
    const BR::AudioData plain = Render(f, "plain", "");
    ASSERT_EQ(plain.channels.size(), 6u);
    const size_t n = plain.Frames();
    ASSERT_EQ(n, 96000u);
    const auto& x = plain.channels;
    // The analogue outputs move: otherwise the comparisons below prove little.
    EXPECT_NE(x[1][1000], x[1][5000]);
    EXPECT_NE(x[3][5000], x[3][20000]);
    EXPECT_NE(x[4][1000], x[4][5000]);

    // "Ardent": a, b from outputs 1, 2; c, d, e from 3, 4, 5, the fourth output bipolar.
    const BR::AudioData ardent = Render(f, "ardent", "--set \"Hardware Mode=Ardent\" --set \"Bipolar 4=1\"");
    for (size_t i = 0; i < n; ++i) {
        const uint32_t a = Byte(x[0][i], 255, 0.5f), b = Byte(x[1][i], 255, 0.5f),
                       c = Byte(x[2][i], 255, 0.5f), d = Byte(x[3][i], 127, 128.5f),
                       e = Byte(x[4][i], 255, 0.5f);
        const uint32_t left = (a << 16) | (b << 8) | (e & 0xF0),
                       right = (c << 16) | (d << 8) | ((e & 0x0F) << 4);
        ASSERT_EQ(BR::Test::WordOf(ardent.channels[0][i], BR::Test::kCatA), left) << i;
        ASSERT_EQ(BR::Test::WordOf(ardent.channels[1][i], BR::Test::kCatA), right) << i;
        for (size_t o = 2; o < 6; ++o)
            ASSERT_EQ(ardent.channels[o][i], x[o][i]) << o << " " << i;
    }

    // "Cinder" on "Basalt" lane 5 (b4), category B: phase 2i & 15; a value is latched on even samples.
    const BR::AudioData cinder = Render(f, "cinder",
                                        "--set \"Hardware Mode=Cinder\" --set \"Target Hardware=Basalt\" "
                                        "--set \"Target Channel=5\" --set \"Interface Category=Cat B\"");
    for (size_t i = 0; i < n; ++i) {
        const size_t at = i & ~size_t(1);
        const int channel = int((at >> 1) & 3);
        const int value = BR::Test::ExpectedValue(x[size_t(channel)][at]);
        const int byte = (i & 1) == 0 ? (value & 127) : (0x80 | (channel << 5) | (value >> 7));
        const uint32_t left = BR::Test::WordOf(cinder.channels[0][i], BR::Test::kCatB);
        const uint32_t right = BR::Test::WordOf(cinder.channels[1][i], BR::Test::kCatB);
        ASSERT_EQ(left, 0u) << i;
        ASSERT_EQ(right, uint32_t(byte) << 8) << i;  // lane 4 is the right word's middle byte
    }

    // "Dunmore" on "Ardent" lane 2 (b1): adaptive skipping, every received value right at its sample.
    const BR::AudioData dunmore =
        Render(f, "dunmore", "--set \"Hardware Mode=Dunmore\" --set \"Target Channel=2\"");
    const auto bytes = BR::Test::LaneBytes(dunmore.channels[0], dunmore.channels[1], false, 1);
    const auto got = BR::Test::ReceiveDunmore(bytes);
    std::vector<int> count(8, 0);
    for (const auto& v : got) {
        const int want = v.channel < 6 ? BR::Test::ExpectedValue(x[size_t(v.channel)][v.at]) : 2048;
        ASSERT_EQ(v.value, want) << v.channel << " at " << v.at;
        ++count[size_t(v.channel)];
    }
    // Remembered values start at 0, so even the still channels 7 and 8 go out once.
    for (int k = 0; k < 8; ++k)
        EXPECT_GE(count[size_t(k)], 1) << k;
    for (size_t i = 0; i < n; ++i) {
        const auto frame = BR::Test::FiveBytes(BR::Test::WordOf(dunmore.channels[0][i], BR::Test::kCatA),
                                               BR::Test::WordOf(dunmore.channels[1][i], BR::Test::kCatA));
        ASSERT_TRUE(frame[0] == 0 && frame[2] == 0 && frame[3] == 0 && frame[4] == 0) << i;
    }

    // "Target Channel" 6 with "Ardent" is no lane: the first two outputs are silent.
    const BR::AudioData none = Render(f, "none", "--set \"Hardware Mode=Cinder\" --set \"Target Channel=6\"");
    for (size_t i = 0; i < n; ++i)
        ASSERT_TRUE(none.channels[0][i] == 0.0f && none.channels[1][i] == 0.0f) << i;
    std::filesystem::remove_all(f);
}
