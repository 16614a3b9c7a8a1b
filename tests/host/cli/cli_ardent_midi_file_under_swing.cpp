// A MIDI file with notes for a note channel and a gate group, rendered by "corvane render" under a
// playing transport at 120 BPM with swing 66 on the MIDI clock: gate edges, trigger lengths, accent
// gates, note levels and clock ticks come out on the samples the formulas give, and the same at
// host blocks of 1, 7, 256 and 1024. The frames are read back with the independent decoder.
#include <gtest/gtest.h>
#include <smf.h>

#include <cmath>
#include <filesystem>

#include "host/cli/WavFile.h"
#include "tests/modules/hardware/FrameDecoder.h"
#include "tests/support/RunCommand.h"

namespace {

void Add(smf_track_t* track, int pulses, std::vector<uint8_t> bytes) {
    smf_event_t* event = smf_event_new_from_pointer(bytes.data(), int(bytes.size()));
    ASSERT_NE(event, nullptr);
    smf_track_add_event_pulses(track, event, pulses);
}

// 960 pulses a quarter note at 120 BPM: pulse p is frame 25 * p at 48000 Hz.
void WriteMidiFile(const std::string& path) {
    smf_t* smf = smf_new();
    ASSERT_EQ(smf_set_ppqn(smf, 960), 0);
    smf_track_t* track = smf_track_new();
    smf_add_track(smf, track);
    Add(track, 0, {0xFF, 0x51, 0x03, 0x07, 0xA1, 0x20});
    Add(track, 480, {0x90, 60, 100});  // note channel 1: 12000
    Add(track, 960, {0x91, 48, 100});  // group 2, gate 1 with its accent: 24000
    Add(track, 1000, {0x81, 48, 0});   // after the trigger ended: no effect
    Add(track, 1200, {0x91, 50, 30});  // gate 3, no trigger time: 30000 to 40000
    Add(track, 1440, {0x90, 64, 90});  // the newest note: 36000
    Add(track, 1600, {0x81, 50, 0});
    Add(track, 1700, {0x91, 52, 100});  // gate 5, 100 ms trigger cut short by its note off at 45000
    Add(track, 1800, {0x81, 52, 0});
    Add(track, 1920, {0x80, 64, 0});  // back to 60: 48000
    Add(track, 2400, {0x80, 60, 0});  // gate off: 60000
    ASSERT_EQ(smf_save(smf, path.c_str()), 0);
    smf_delete(smf);
}

std::vector<uint32_t> Edges(const std::vector<std::array<uint8_t, 6>>& frames, int gate, bool rising) {
    std::vector<uint32_t> edges;
    for (size_t i = 1; i < frames.size(); ++i)
        if (BR::Test::GateOf(frames[i], gate) == rising && BR::Test::GateOf(frames[i - 1], gate) != rising)
            edges.push_back(uint32_t(i));
    return edges;
}

// Where clock k lands: its swung place in clocks, 1000 samples a clock, to the nearest sample.
uint32_t ClockSample(int k) {
    const double w = double(0.66f), period = 12.0;
    const double r = std::fmod(double(k), period), base = k - r, phase = r / period;
    const double y = phase < 0.5 ? w * 2.0 * phase : 1.0 - (1.0 - w) * 2.0 * (1.0 - phase);
    return uint32_t(std::floor((y * period + base) * 1000.0 + 0.5));
}

}  // namespace

TEST(CliArdent, MidiFileUnderSwingLandsOnComputedSamples) {
    const std::string folder = BR::Test::MakeTempFolder();
    WriteMidiFile(folder + "/in.mid");
    std::vector<std::vector<float>> reference;
    for (uint32_t block : {1u, 7u, 256u, 1024u}) {
        const std::string out = folder + "/a" + std::to_string(block) + ".wav";
        const auto result = BR::Test::RunCorvane(
            "render ardentcontroller --frames 70000 --tempo 120 --block " + std::to_string(block) +
            " --midi " + folder +
            "/in.mid --set 'MIDI Out Clock=1' --set 'MIDI Clock Swing=66' --set 'Gates 2 MIDI Channel=2'"
            " --set 'Trigger 2/1 Length=5' --set 'Trigger 2/2 Length=2' --set 'Accent 2/2=1'"
            " --set 'Trigger 2/5 Length=100' --set 'Ch 1 Vel Output=Output 4' --out " +
            out);
        ASSERT_EQ(result.status, 0) << result.err;
        const BR::AudioData audio = BR::ReadWav(out);
        ASSERT_EQ(audio.channels.size(), 2u);
        const auto frames = BR::Test::Frames(audio.channels[0], audio.channels[1], false);

        // Group 2 is byte 2: gate 1 (bit 8) for 5 ms, its accent gate 2 (bit 9) for 2 ms.
        EXPECT_EQ(Edges(frames, 8, true), (std::vector<uint32_t>{24000})) << block;
        EXPECT_EQ(Edges(frames, 8, false), (std::vector<uint32_t>{24240})) << block;
        EXPECT_EQ(Edges(frames, 9, true), (std::vector<uint32_t>{24000})) << block;
        EXPECT_EQ(Edges(frames, 9, false), (std::vector<uint32_t>{24096})) << block;
        EXPECT_EQ(Edges(frames, 10, true), (std::vector<uint32_t>{30000})) << block;
        EXPECT_EQ(Edges(frames, 10, false), (std::vector<uint32_t>{40000})) << block;
        EXPECT_EQ(Edges(frames, 12, true), (std::vector<uint32_t>{42500})) << block;
        EXPECT_EQ(Edges(frames, 12, false), (std::vector<uint32_t>{45000})) << block;
        // The note channel: its gate on "Output 3", its level on byte 1 with "Newest" priority, its
        // velocity on "Output 4".
        for (uint32_t i : {11999u, 12000u, 35999u, 36000u, 47999u, 48000u, 59999u, 60000u, 65000u}) {
            const bool on = i >= 12000 && i < 60000;
            EXPECT_EQ(frames[i][2], on ? 255 : 0) << block << " " << i;
            const int note = i >= 36000 && i < 48000 ? 64 : 60;
            EXPECT_EQ(frames[i][0] & 0xFC, i < 12000 ? 64 : (note - 48) * 4) << block << " " << i;
        }
        EXPECT_EQ(frames[20000][3], int(float(100 * 0.007874016f) * 255.0f));
        EXPECT_EQ(frames[40000][3], int(float(90 * 0.007874016f) * 255.0f));

        // The clock on "Gates 1/1": start and clock 0 at sample 0, then every clock on its swung sample.
        const auto received = BR::Test::ReceiveSerial(BR::Test::GateLine(frames, 0), 48000.0);
        ASSERT_GE(received.size(), 60u) << block;
        EXPECT_EQ(received[0], (BR::Test::ReceivedByte{0, 250})) << block;
        EXPECT_EQ(received[1], (BR::Test::ReceivedByte{16, 248})) << block;
        for (int k = 1; size_t(k + 1) < received.size(); ++k)
            ASSERT_EQ(received[size_t(k + 1)], (BR::Test::ReceivedByte{ClockSample(k), 248}))
                << block << " clock " << k;
        EXPECT_EQ(received.size(), 1u + 70u) << block;  // clocks 0 to 69 in 70000 samples
        EXPECT_EQ(ClockSample(6), 7920u);               // half a period is placed at 0.66 of it

        if (reference.empty()) reference = audio.channels;
        EXPECT_EQ(audio.channels, reference) << block;
    }
    std::filesystem::remove_all(folder);
}
