// Well-formed files of each format the command reads, made from a fixed seed, for the hostile-input
// generator to damage; and the check that every case ends in success or a refusal with a message.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "HostileCases.h"
#include "host/cli/WavFile.h"

namespace BR::Test {

inline void AppendBig(Bytes& bytes, uint32_t value, int width) {
    for (int i = width - 1; i >= 0; --i)
        bytes.push_back(uint8_t(value >> (8 * i)));
}

inline void AppendQuantity(Bytes& bytes, uint32_t value) {
    Bytes groups{uint8_t(value & 0x7F)};
    for (value >>= 7; value; value >>= 7)
        groups.insert(groups.begin(), uint8_t(0x80 | (value & 0x7F)));
    bytes.insert(bytes.end(), groups.begin(), groups.end());
}

// A Standard MIDI File of one to three tracks with notes, running status, tempo changes, system
// exclusive and text; deltas now and then of the largest size. `fields` gets the offsets of its
// size and count fields.
inline Bytes MidiSeed(CaseRandom& random, std::vector<size_t>& fields) {
    const uint32_t tracks = 1 + uint32_t(random.Below(3));
    Bytes bytes{'M', 'T', 'h', 'd'};
    fields = {4, 8, 10, 12};
    AppendBig(bytes, 6, 4);
    AppendBig(bytes, tracks > 1 ? 1 : uint32_t(random.Below(2)), 2);
    AppendBig(bytes, tracks, 2);
    AppendBig(bytes, random.Pick(std::vector<uint32_t>{1, 24, 96, 480, 960, 0x7FFF}), 2);
    const bool far = random.OneIn(4);  // deltas of the largest size half the time: tick sums past 2^31
    for (uint32_t t = 0; t < tracks; ++t) {
        Bytes track;
        uint8_t running = 0;
        for (size_t n = random.Below(24); n > 0; --n) {
            AppendQuantity(track, random.OneIn(far ? 2 : 8)
                                      ? 0x0FFFFFFF
                                      : uint32_t(random.Below(random.OneIn(4) ? 100000 : 200)));
            switch (random.Below(6)) {
                case 0: {  // tempo
                    const uint32_t tempo = random.OneIn(4)
                                               ? random.Pick(std::vector<uint32_t>{0, 1, 0xFFFFFF})
                                               : 200000 + uint32_t(random.Below(1000000));
                    track.insert(track.end(), {0xFF, 0x51, 0x03});
                    AppendBig(track, tempo, 3);
                    running = 0;
                    break;
                }
                case 1:  // system exclusive
                    track.insert(track.end(), {0xF0, 0x03, 0x7E, 0x01, 0xF7});
                    running = 0;
                    break;
                case 2:  // text
                    track.insert(track.end(), {0xFF, 0x01, 0x02, 'h', 'i'});
                    running = 0;
                    break;
                default: {
                    const uint8_t status =
                        uint8_t(random.Pick(std::vector<uint32_t>{0x90, 0x80, 0xB0, 0xE0, 0xC0})) |
                        uint8_t(random.Below(16));
                    if (status != running || random.OneIn(2)) track.push_back(status);
                    running = status;
                    track.push_back(uint8_t(random.Below(128)));
                    if ((status & 0xF0) != 0xC0) track.push_back(uint8_t(random.Below(128)));
                }
            }
        }
        track.insert(track.end(), {0x00, 0xFF, 0x2F, 0x00});
        bytes.insert(bytes.end(), {'M', 'T', 'r', 'k'});
        fields.push_back(bytes.size());
        AppendBig(bytes, uint32_t(track.size()), 4);
        bytes.insert(bytes.end(), track.begin(), track.end());
    }
    return bytes;
}

// A WAV of 0 to 2000 frames, one to four channels, in float or 16-bit; `fields` gets the offsets of
// its header's sizes and counts (little-endian).
inline Bytes WavSeed(CaseRandom& random, const std::string& scratch, std::vector<size_t>& fields) {
    AudioData audio;
    audio.sampleRate = random.OneIn(8) ? 44100 : 48000;
    audio.channels.assign(1 + random.Below(4), std::vector<float>(random.Below(2001)));
    for (auto& channel : audio.channels)
        for (float& sample : channel)
            sample = float(int(random.Below(2001)) - 1000) / 1000.0f;
    if (audio.Frames() == 0) audio.channels.assign(audio.channels.size(), std::vector<float>(1, 0.5f));
    WriteWav(scratch, audio);
    fields = {4, 16, 20, 22, 24, 28, 32, 34, 40, 44, 48, 52, 56, 60, 64, 68, 72};
    return ReadBytes(scratch);
}

// A compressed file's header alone, claiming a length it does not hold.
inline Bytes ClaimingSeed(CaseRandom& random, std::vector<size_t>& fields) {
    const uint64_t frames = random.OneIn(2) ? (uint64_t(1) << (20 + random.Below(16))) : random.Below(100000);
    const uint64_t packed =
        (uint64_t(48000) << 44) | (uint64_t(random.Below(8)) << 41) | (uint64_t(15) << 36) | frames;
    Bytes bytes{'f', 'L', 'a', 'C', 0x80, 0x00, 0x00, 0x22, 0x10, 0x00, 0x10, 0x00, 0, 0, 0, 0, 0, 0};
    AppendBig(bytes, uint32_t(packed >> 32), 4);
    AppendBig(bytes, uint32_t(packed), 4);
    bytes.resize(bytes.size() + 16, 0);
    fields = {4, 8, 12, 18, 20, 22};
    return bytes;
}

struct CaseTally {
    size_t accepted = 0;
    size_t refused = 0;
};

// Every case ends in status 0, or in status 2 with a message on standard error that names `named`
// (when not empty) and with none of `written` written. Status 1 (an exception nobody expected) fails.
inline void CheckCase(const CaseOutcome& outcome, const std::string& name, const std::string& named,
                      const std::vector<std::string>& written, CaseTally& tally) {
    if (outcome.status == 0) {
        ++tally.accepted;
        return;
    }
    ++tally.refused;
    EXPECT_EQ(outcome.status, 2) << name << "\n" << outcome.err;
    EXPECT_EQ(outcome.err.rfind("corvane: ", 0), 0u) << name << "\n" << outcome.err;
    EXPECT_GT(outcome.err.size(), 20u) << name << "\n" << outcome.err;
    if (!named.empty()) {
        EXPECT_NE(outcome.err.find(named), std::string::npos) << name << "\n" << outcome.err;
    }
    for (const std::string& path : written)
        EXPECT_FALSE(std::filesystem::exists(path)) << name << ": " << path << " was written\n"
                                                    << outcome.err;
}

inline void RemoveAll(const std::vector<std::string>& paths) {
    std::error_code ec;
    for (const std::string& path : paths)
        std::filesystem::remove(path, ec);
}

}  // namespace BR::Test
