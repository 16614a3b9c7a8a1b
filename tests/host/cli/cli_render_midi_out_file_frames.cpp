// render --midi-out and the patch key "midi_out" write what CV To MIDI sends as a Standard MIDI File
// (format 0, one track, the tempo first, full status bytes) whose ticks are the frames the messages
// were sent at; modules that send no MIDI are refused.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "host/cli/MidiFile.h"
#include "host/cli/MidiFileOut.h"
#include "host/cli/WavFile.h"
#include "tests/support/RampAndGate.h"
#include "tests/support/RunCommand.h"

namespace {

using Message = BR::Test::RampAndGate::Message;

struct ParsedFile {
    int format = -1, tracks = -1, division = -1;
    uint32_t tempo = 0;
    std::vector<Message> messages;  // frame = absolute tick
    uint64_t endTick = 0;
};

std::vector<uint8_t> ReadBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::vector<uint8_t>(std::istreambuf_iterator<char>(in), {});
}

ParsedFile Parse(const std::vector<uint8_t>& b) {
    ParsedFile f;
    auto big = [&](size_t at, int n) {
        uint64_t v = 0;
        for (int i = 0; i < n; ++i)
            v = v << 8 | b.at(at + size_t(i));
        return v;
    };
    EXPECT_EQ(std::string(b.begin(), b.begin() + 4), "MThd");
    EXPECT_EQ(big(4, 4), 6u);
    f.format = int(big(8, 2)), f.tracks = int(big(10, 2)), f.division = int(big(12, 2));
    EXPECT_EQ(std::string(b.begin() + 14, b.begin() + 18), "MTrk");
    const size_t end = 22 + size_t(big(18, 4));
    EXPECT_EQ(end, b.size());
    size_t at = 22;
    uint64_t tick = 0;
    while (at < end) {
        uint64_t delta = 0;
        uint8_t c;
        do {
            c = b.at(at++);
            delta = delta << 7 | (c & 0x7F);
        } while (c & 0x80);
        tick += delta;
        const uint8_t status = b.at(at++);
        if (status == 0xFF) {
            const uint8_t type = b.at(at++), length = b.at(at++);
            if (type == 0x51) f.tempo = uint32_t(big(at, 3));
            at += length;
            if (type == 0x2F) f.endTick = tick;
            continue;
        }
        EXPECT_LT(status & 0xF0, 0xF0) << "only channel messages, each with its status byte";
        f.messages.push_back({tick, status, b.at(at), b.at(at + 1)});
        at += 2;
    }
    return f;
}

std::string WriteInput(const std::string& folder, const BR::Test::RampAndGate& signal, int rate) {
    BR::AudioData in;
    in.sampleRate = rate;
    in.channels = {signal.cv, signal.gate};
    BR::WriteWav(folder + "/in.wav", in);
    return folder + "/in.wav";
}

std::string SetOptions(int channel = 3) {
    std::string options;
    for (const auto& [name, value] : BR::Test::RampAndGate::Settings(channel, 7))
        options += " --set \"" + name + "=" + std::to_string(value) + "\"";
    return options;
}

}  // namespace

TEST(CliMidiOut, RampAndGateGiveTheFormulasMessagesOnTheirFrames) {
    const std::string folder = BR::Test::MakeTempFolder();
    for (const int rate : {48000, 44100}) {
        const BR::Test::RampAndGate signal(uint32_t(rate), 4800, 2400);
        const std::string in = WriteInput(folder, signal, rate);
        // Host blocks of 300 frames, which the messages' frames must not follow.
        const auto result = BR::Test::RunCorvane("render cvtomidi --rate " + std::to_string(rate) + " --in " +
                                                 in + " --block 300" + SetOptions() + " --out " + folder +
                                                 "/out.wav --midi-out " + folder + "/out.mid");
        ASSERT_EQ(result.status, 0) << result.err;
        const ParsedFile file = Parse(ReadBytes(folder + "/out.mid"));
        EXPECT_EQ(file.format, 0);
        EXPECT_EQ(file.tracks, 1);
        // One tick is one frame: division rate / 2 at 500000 microseconds a quarter note.
        EXPECT_EQ(file.division, rate / 2);
        EXPECT_EQ(file.tempo, 500000u);
        EXPECT_EQ(file.endTick, uint64_t(rate));  // the track ends with the render
        const std::vector<Message> expected = signal.Expected(rate, 3, 7);
        ASSERT_GT(expected.size(), 140u);
        EXPECT_EQ(file.messages, expected) << "at " << rate << " Hz";
        // The first messages, by hand: the gate is open at frame 0 with cv -1 (note 0), the
        // controller 0 goes out at frame 1 (frame 0 opened the gate), then 1 once 48 samples passed.
        ASSERT_GE(file.messages.size(), 3u);
        EXPECT_EQ(file.messages[0], (Message{0, 0x92, 0, 64}));
        EXPECT_EQ(file.messages[1], (Message{1, 0xB2, 7, 0}));
        EXPECT_EQ(file.messages[2].status, 0xB2);
        EXPECT_EQ(file.messages[2].data2, 1);

        // The project's own reader, which goes through the tempo map in seconds, finds the same frames.
        const std::vector<BR::MidiEventSpec> read = BR::ReadMidiFile(folder + "/out.mid", rate);
        ASSERT_EQ(read.size(), expected.size());
        for (size_t i = 0; i < read.size(); ++i) {
            ASSERT_EQ(read[i].frame, expected[i].frame) << i;
            ASSERT_EQ(read[i].bytes,
                      (std::vector<uint8_t>{expected[i].status, expected[i].data1, expected[i].data2}));
        }
    }
}

TEST(CliMidiOut, PatchInstancesWriteTheSameFileAsRender) {
    const std::string folder = BR::Test::MakeTempFolder();
    const BR::Test::RampAndGate signal(24000, 4000, 1000);
    const std::string in = WriteInput(folder, signal, 48000);
    // Channel 3 given as the plain text "3" on both sides: "Channel" is a number row without value
    // names, so the text can only mean the value 3 (MIDI channel 3, status low nibble 2).
    auto result =
        BR::Test::RunCorvane("render cvtomidi --in " + in + SetOptions(3) + " --set \"Channel L=3\" --out " +
                             folder + "/r.wav --midi-out " + folder + "/r.mid");
    ASSERT_EQ(result.status, 0) << result.err;
    std::ofstream(folder + "/p.json") << R"({"rate": 48000, "block": 128, "frames": 24000, "instances": [
        {"name": "a", "module": "cvtomidi", "inputs": ["in.wav:0", "in.wav:1"], "midi_out": "a.mid",
         "set": {"Enable CC L": 1, "Send CC L": 7, "Enable Note L": 1, "Note On Mode L": "Gate Only",
                 "Enable R": 0, "Channel L": 3}},
        {"name": "silent", "module": "cvtomidi", "midi_out": "silent.mid"}]})";
    result = BR::Test::RunCorvane("patch " + folder + "/p.json");
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(ReadBytes(folder + "/a.mid"), ReadBytes(folder + "/r.mid"));
    const ParsedFile rendered = Parse(ReadBytes(folder + "/r.mid"));
    ASSERT_FALSE(rendered.messages.empty());
    for (const Message& m : rendered.messages)
        ASSERT_EQ(m.status & 0x0F, 2) << "channel 3";
    const ParsedFile silent = Parse(ReadBytes(folder + "/silent.mid"));
    EXPECT_TRUE(silent.messages.empty());
    EXPECT_EQ(silent.endTick, 24000u);
}

TEST(CliMidiOut, ModulesThatSendNoMidiAreRefusedBeforeAnythingIsWritten) {
    const std::string folder = BR::Test::MakeTempFolder();
    auto result =
        BR::Test::RunCorvane("render dc --out " + folder + "/dc.wav --midi-out " + folder + "/dc.mid");
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("--midi-out: Corvane DC sends no MIDI (CV To MIDI does)"), std::string::npos)
        << result.err;
    EXPECT_FALSE(std::ifstream(folder + "/dc.wav").good());
    EXPECT_FALSE(std::ifstream(folder + "/dc.mid").good());
    result =
        BR::Test::RunCorvane("render cvtomidi --out " + folder + "/c.wav --midi-out " + folder + "/no/c.mid");
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("--midi-out: there is no folder"), std::string::npos) << result.err;

    std::ofstream(folder + "/p.json")
        << R"({"instances": [{"name": "d", "module": "dc", "midi_out": "d.mid"}]})";
    result = BR::Test::RunCorvane("patch " + folder + "/p.json");
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("instances[0].midi_out: DC sends no MIDI"), std::string::npos) << result.err;
    EXPECT_FALSE(std::ifstream(folder + "/d.wav").good());
    std::ofstream(folder + "/q.json")
        << R"({"instances": [{"name": "c", "module": "cvtomidi", "out": "same", "midi_out": "same"}]})";
    result = BR::Test::RunCorvane("patch " + folder + "/q.json");
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(
        result.err.find("instances[0].midi_out: \"" + folder + "/same\" is written by instances[0] already"),
        std::string::npos)
        << result.err;
}

TEST(CliMidiOut, TicksAreFramesAtEveryUsualRate) {
    // rate -> ticks per quarter note, microseconds per quarter note
    const struct {
        int64_t rate;
        uint16_t ticks;
        uint32_t tempo;
    } cases[] = {{8000, 8000, 1000000},   {22050, 22050, 1000000}, {44100, 22050, 500000},
                 {48000, 24000, 500000},  {88200, 22050, 250000},  {96000, 24000, 250000},
                 {192000, 24000, 125000}, {768000, 30720, 40000}};
    for (const auto& c : cases) {
        const BR::MidiFileTiming t = BR::MidiFileTimingFor(c.rate);
        EXPECT_TRUE(t.exact) << c.rate;
        EXPECT_EQ(t.ticksPerQuarter, c.ticks) << c.rate;
        EXPECT_EQ(t.microsecondsPerQuarter, c.tempo) << c.rate;
        // One tick lasts one frame.
        EXPECT_EQ(uint64_t(t.microsecondsPerQuarter) * uint64_t(c.rate), 1000000ull * t.ticksPerQuarter)
            << c.rate;
    }
    // A rate that shares no factor with 1e6 and exceeds 15 bits gets the nearest tick of 48000 a second.
    const BR::MidiFileTiming odd = BR::MidiFileTimingFor(44099);
    EXPECT_FALSE(odd.exact);
    EXPECT_EQ(odd.ticksPerQuarter, 24000);
    EXPECT_EQ(odd.microsecondsPerQuarter, 500000u);
    const std::string folder = BR::Test::MakeTempFolder();
    BR::WriteMidiFile(folder + "/odd.mid", {{44099, {0x90, 60, 64}}}, 44099, 44099 * 2);
    const ParsedFile file = Parse(ReadBytes(folder + "/odd.mid"));
    ASSERT_EQ(file.messages.size(), 1u);
    EXPECT_EQ(file.messages[0].frame, 48000u);  // one second
    EXPECT_EQ(file.endTick, 96000u);
}
