// `corvane patch` with a Voice Controller master fed a MIDI file and four voice instances fed by the
// master's first output: each voice's gate opens on the exact frame of its note, each plays its note
// through the calibration file it loaded, and a later note skips the busy voice as pickVoice decides.
#include <gtest/gtest.h>
#include <smf.h>

#include <filesystem>
#include <fstream>

#include "host/cli/WavFile.h"
#include "tests/support/RunCommand.h"

namespace {

void Add(smf_track_t* track, int pulses, std::vector<uint8_t> bytes) {
    smf_event_t* event = smf_event_new_from_pointer(bytes.data(), int(bytes.size()));
    ASSERT_NE(event, nullptr);
    smf_track_add_event_pulses(track, event, pulses);
}

// 960 pulses a quarter note at 120 BPM: 960 pulses are 24000 frames at 48 kHz.
void WriteChord(const std::string& path) {
    smf_t* smf = smf_new();
    ASSERT_EQ(smf_set_ppqn(smf, 960), 0);
    smf_track_t* track = smf_track_new();
    smf_add_track(smf, track);
    Add(track, 0, {0xFF, 0x51, 0x03, 0x07, 0xA1, 0x20});
    Add(track, 480, {0x90, 60, 100});  // 12000
    Add(track, 480, {0x90, 64, 100});  // 12000, same marker
    Add(track, 720, {0x90, 67, 100});  // 18000
    Add(track, 960, {0x90, 71, 100});  // 24000
    Add(track, 1920, {0x80, 64, 0});   // 48000: all but 60 let go
    Add(track, 1920, {0x80, 67, 0});
    Add(track, 1920, {0x80, 71, 0});
    Add(track, 2880, {0x90, 72, 100});  // 72000: voice 1 is next but busy
    Add(track, 3360, {0x90, 74, 100});  // 84000
    ASSERT_EQ(smf_save(smf, path.c_str()), 0);
    smf_delete(smf);
}

uint32_t FirstRise(const std::vector<float>& gate, uint32_t from = 0) {
    for (uint32_t i = std::max<uint32_t>(from, 1); i < gate.size(); ++i)
        if (gate[i] > 0.5f && gate[i - 1] <= 0.5f) return i;
    return 0;
}

}  // namespace

TEST(CliPatch, VoiceControllerChordFromAMidiFile) {
    const std::string f = BR::Test::MakeTempFolder();
    WriteChord(f + "/chord.mid");
    std::ofstream(f + "/vco.txt") << "Corvane Calibration Data\nversion: 1\n0 -0.5\n128 0.5\n";
    std::ofstream(f + "/poly.json") << R"({
  "rate": 48000, "block": 256, "seconds": 2,
  "instances": [
    {"name": "voice1", "module": "voicecontroller", "inputs": ["master:0"], "calibration": "vco.txt",
     "set": {"Poly Mode": "Voice", "Polyphony/Voice": 1}},
    {"name": "voice2", "module": "voicecontroller", "inputs": ["master:0"], "calibration": "vco.txt",
     "set": {"Poly Mode": "Voice", "Polyphony/Voice": 2}},
    {"name": "voice3", "module": "voicecontroller", "inputs": ["master:0"], "calibration": "vco.txt",
     "set": {"Poly Mode": "Voice", "Polyphony/Voice": 3}},
    {"name": "voice4", "module": "voicecontroller", "inputs": ["master:0"], "calibration": "vco.txt",
     "set": {"Poly Mode": "Voice", "Polyphony/Voice": 4}},
    {"name": "master", "module": "voicecontroller", "midi": "chord.mid",
     "set": {"Poly Mode": "Master", "Polyphony/Voice": 4}}
  ]
})";
    const auto result = BR::Test::RunCorvane("patch " + f + "/poly.json");
    ASSERT_EQ(result.status, 0) << result.err;

    const BR::AudioData master = BR::ReadWav(f + "/master.wav");
    ASSERT_EQ(master.channels.size(), 6u);
    EXPECT_EQ(master.channels[0][12000], 4.0f);  // the marker of batch 0
    EXPECT_EQ(master.channels[0][11999], 0.0f);

    std::vector<BR::AudioData> voices;
    for (int v = 1; v <= 4; ++v)
        voices.push_back(BR::ReadWav(f + "/voice" + std::to_string(v) + ".wav"));
    const uint32_t onsets[4] = {12000, 12000, 18000, 24000};
    const int notes[4] = {60, 64, 67, 71};
    for (size_t v = 0; v < 4; ++v) {
        const auto& gate = voices[v].channels[1];
        EXPECT_EQ(FirstRise(gate), onsets[v]) << "voice " << v + 1;
        EXPECT_EQ(gate[onsets[v] - 1], 0.0f);
        EXPECT_EQ(gate[onsets[v]], 1.0f);
        EXPECT_FLOAT_EQ(voices[v].channels[0][40000], -0.5f + notes[v] / 128.0f) << "voice " << v + 1;
    }
    // Voice 1 holds 60 throughout; 72 goes to idle voice 2 instead, and 74 to voice 3 after it.
    EXPECT_EQ(voices[0].channels[1][90000], 1.0f);
    EXPECT_FLOAT_EQ(voices[0].channels[0][90000], -0.5f + 60 / 128.0f);
    EXPECT_EQ(voices[1].channels[1][48000], 0.0f);
    EXPECT_EQ(FirstRise(voices[1].channels[1], 48000), 72000u);
    EXPECT_FLOAT_EQ(voices[1].channels[0][80000], -0.5f + 72 / 128.0f);
    EXPECT_EQ(FirstRise(voices[2].channels[1], 48000), 84000u);
    EXPECT_FLOAT_EQ(voices[2].channels[0][90000], -0.5f + 74 / 128.0f);
    EXPECT_EQ(FirstRise(voices[3].channels[1], 48000), 0u);
    std::filesystem::remove_all(f);
}
