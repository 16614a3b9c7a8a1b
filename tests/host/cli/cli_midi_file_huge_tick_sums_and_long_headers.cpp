// MIDI files whose delta times add up past 2^31 ticks are read with their times intact (no count
// overflows), a header longer than six bytes is read past its extra bytes, and format 2 is refused
// with a message and status 2, all without a leak.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>

#include "host/cli/MidiFile.h"
#include "tests/support/RunCommand.h"

namespace {
std::string Big(uint32_t value, int bytes) {
    std::string text;
    for (int i = bytes - 1; i >= 0; --i)
        text += char((value >> (8 * i)) & 0xFF);
    return text;
}

std::string MidiFile(uint32_t headerLength, uint32_t format, const std::string& track) {
    std::string header = Big(format, 2) + Big(1, 2) + Big(96, 2);
    header.resize(headerLength, '\0');
    return "MThd" + Big(headerLength, 4) + header + "MTrk" + Big(uint32_t(track.size()), 4) + track;
}

// Nine notes, each 2^28 - 1 ticks after the last: 2415919095 ticks in all.
std::string FarApartNotes() {
    std::string track;
    for (int i = 0; i < 9; ++i)
        track += std::string("\xFF\xFF\xFF\x7F") + "\x90\x3C\x64";
    return track + std::string("\x00\xFF\x2F\x00", 4);
}

void Write(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}
}  // namespace

TEST(CliMidiFileBounds, TickSumsPast31BitsKeepTheirTimes) {
    const std::string f = BR::Test::MakeTempFolder();
    Write(f + "/far.mid", MidiFile(6, 0, FarApartNotes()));
    const auto events = BR::ReadMidiFile(f + "/far.mid", 48000);
    ASSERT_EQ(events.size(), 9u);
    for (size_t k = 0; k < 9; ++k) {
        // 96 ticks a quarter note at 120 BPM: 1/192 s a tick.
        const double seconds = double(k + 1) * 268435455.0 / 192.0;
        EXPECT_EQ(events[k].frame, uint64_t(std::llround(seconds * 48000))) << k;
        EXPECT_EQ(events[k].bytes, (std::vector<uint8_t>{0x90, 0x3C, 0x64}));
    }
    auto result =
        BR::Test::RunCorvane("render dc --frames 10 --midi " + f + "/far.mid --out " + f + "/a.wav");
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_TRUE(std::filesystem::exists(f + "/a.wav"));

    std::ofstream(f + "/p.json")
        << R"({"frames": 10, "instances": [{"name": "a", "module": "dc", "midi": "far.mid"}]})";
    result = BR::Test::RunCorvane("patch " + f + "/p.json");
    EXPECT_EQ(result.status, 0) << result.err;
    std::filesystem::remove_all(f);
}

TEST(CliMidiFileBounds, LongerHeadersAreReadAndFormat2IsRefused) {
    const std::string f = BR::Test::MakeTempFolder();
    const std::string track("\x00\x90\x3C\x64\x00\xFF\x2F\x00", 8);
    Write(f + "/long.mid", MidiFile(7, 1, track));
    const auto events = BR::ReadMidiFile(f + "/long.mid", 48000);
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].frame, 0u);

    Write(f + "/f2.mid", MidiFile(7, 2, track));
    EXPECT_THROW(BR::ReadMidiFile(f + "/f2.mid", 48000), std::runtime_error);
    const auto result =
        BR::Test::RunCorvane("render dc --frames 10 --midi " + f + "/f2.mid --out " + f + "/a.wav");
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("--midi: cannot read \"" + f +
                              "/f2.mid\": not a Standard MIDI File, or damaged "
                              "(format 2 (independent sequences) is not supported, only formats 0 and 1)"),
              std::string::npos)
        << result.err;
    EXPECT_FALSE(std::filesystem::exists(f + "/a.wav"));
    std::filesystem::remove_all(f);
}

TEST(CliMidiFileBounds, DamageIsRefusedWithItsPlace) {
    const std::string f = BR::Test::MakeTempFolder();
    Write(f + "/tempo.mid", MidiFile(6, 0, std::string("\x00\xFF\x51\x02\x07\xA1\x00\xFF\x2F\x00", 10)));
    auto result =
        BR::Test::RunCorvane("render dc --frames 10 --midi " + f + "/tempo.mid --out " + f + "/a.wav");
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("track 1: a tempo event holds 2 bytes, not 3 (at byte 22 of the file)"),
              std::string::npos)
        << result.err;
    // A chunk that claims more bytes than the file has.
    std::string lying = MidiFile(6, 0, std::string("\x00\xFF\x2F\x00", 4));
    lying[18] = char(0x7F);
    Write(f + "/lying.mid", lying);
    result = BR::Test::RunCorvane("render dc --frames 10 --midi " + f + "/lying.mid --out " + f + "/a.wav");
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("chunk 1 at byte 14 claims 2130706436 bytes, past the end of the file"),
              std::string::npos)
        << result.err;
    EXPECT_FALSE(std::filesystem::exists(f + "/a.wav"));
    std::filesystem::remove_all(f);
}
