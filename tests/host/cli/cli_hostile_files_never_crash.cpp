// Generated hostile files (fixed seed, thousands per format: truncations, bit flips, lying sizes and
// counts, huge numbers) given to the command in-process: MIDI files, WAV inputs, state files and
// calibration files each end in a render or in status 2 with a message naming the file, never in a
// crash, a hang, an unexpected exception or (in the sanitizer build) a report.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>

#include "HostileFiles.h"
#include "host/cli/InputLimits.h"
#include "host/cli/StateFile.h"

namespace {

using BR::Test::Bytes;
using BR::Test::CaseRandom;

constexpr size_t kCasesPerFormat = 4000;

struct Scratch {
    std::string folder = BR::Test::MakeCaseFolder();
    std::string out = folder + "/out.wav";
    ~Scratch() { std::filesystem::remove_all(folder); }
};

void RunRender(const std::vector<std::string>& args, const std::string& name, const std::string& file,
               const Scratch& scratch, BR::Test::CaseTally& tally, const std::string& alsoWritten = "") {
    std::vector<std::string> written{scratch.out};
    if (!alsoWritten.empty()) written.push_back(alsoWritten);
    BR::Test::RemoveAll(written);
    const auto outcome = BR::Test::RunCase(args, name);
    BR::Test::CheckCase(outcome, name, "\"" + file + "\"", written, tally);
}

}  // namespace

TEST(CliHostileFiles, MidiFiles) {
    Scratch scratch;
    CaseRandom random(2101);
    BR::Test::CaseTally tally;
    const std::string file = scratch.folder + "/case.mid";
    for (size_t k = 0; k < kCasesPerFormat; ++k) {
        std::vector<size_t> fields;
        Bytes bytes = BR::Test::MidiSeed(random, fields);
        if (!random.OneIn(5)) bytes = BR::Test::Damage(std::move(bytes), random, fields, true);
        BR::Test::WriteBytes(file, bytes);
        RunRender({"render", "dc", "--frames", "64", "--midi", file, "--out", scratch.out},
                  "midi case " + std::to_string(k), file, scratch, tally);
    }
    // Past the limits: more events than a file may hold, and more bytes.
    Bytes many{'M', 'T', 'h', 'd', 0, 0, 0, 6, 0, 0, 0, 1, 0, 96, 'M', 'T', 'r', 'k'};
    const uint32_t events = uint32_t(BR::kMaxMidiEvents) + 1;
    BR::Test::AppendBig(many, 4 + 3 * (events - 1) + 4, 4);
    many.insert(many.end(), {0x00, 0x90, 0x3C, 0x64});
    for (uint32_t i = 1; i < events; ++i)
        many.insert(many.end(), {0x00, 0x3C, 0x64});  // running status
    many.insert(many.end(), {0x00, 0xFF, 0x2F, 0x00});
    BR::Test::WriteBytes(file, many);
    auto outcome =
        BR::Test::RunCase({"render", "dc", "--frames", "64", "--midi", file, "--out", scratch.out}, "many");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.err.find("the file holds more than 1000000 events, the limit"), std::string::npos)
        << outcome.err;
    many.resize(BR::kMaxMidiFileBytes + 1, 0);
    BR::Test::WriteBytes(file, many);
    outcome =
        BR::Test::RunCase({"render", "dc", "--frames", "64", "--midi", file, "--out", scratch.out}, "large");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.err.find("it holds 16777217 bytes; MIDI files may hold at most 16777216"),
              std::string::npos)
        << outcome.err;
    std::printf("midi files: %zu rendered, %zu refused\n", tally.accepted, tally.refused);
    EXPECT_GT(tally.accepted, kCasesPerFormat / 10);
    EXPECT_GT(tally.refused, kCasesPerFormat / 2);
}

TEST(CliHostileFiles, WavInputs) {
    Scratch scratch;
    CaseRandom random(2102);
    BR::Test::CaseTally tally;
    const std::string file = scratch.folder + "/case.wav";
    for (size_t k = 0; k < kCasesPerFormat; ++k) {
        std::vector<size_t> fields;
        Bytes bytes = random.OneIn(5) ? BR::Test::ClaimingSeed(random, fields)
                                      : BR::Test::WavSeed(random, scratch.folder + "/seed.wav", fields);
        if (!random.OneIn(5)) bytes = BR::Test::Damage(std::move(bytes), random, fields, bytes[0] == 'f');
        BR::Test::WriteBytes(file, bytes);
        RunRender({"render", "dc", "--frames", "64", "--in", file, "--out", scratch.out},
                  "wav case " + std::to_string(k), file, scratch, tally);
    }
    std::printf("wav inputs: %zu rendered, %zu refused\n", tally.accepted, tally.refused);
    EXPECT_GT(tally.accepted, kCasesPerFormat / 10);
    EXPECT_GT(tally.refused, kCasesPerFormat / 4);
}

TEST(CliHostileFiles, StateFiles) {
    Scratch scratch;
    CaseRandom random(2103);
    BR::Test::CaseTally tally;
    // Saved states of several modules, each with settings away from the defaults.
    const std::vector<std::pair<std::string, std::string>> modules = {
        {"dc", "Output Positive L=0.25"},        {"lfo", "Speed L=2"},        {"steplfo", "Master Bypass=0"},
        {"voicecontroller", "Poly Mode=Master"}, {"sync", "Master Bypass=0"}, {"trigger", "Master Bypass=0"}};
    std::vector<Bytes> seeds;
    for (const auto& [stem, setting] : modules) {
        const std::string path = scratch.folder + "/" + stem + ".state";
        const auto made = BR::Test::RunCase(
            {"render", stem, "--frames", "16", "--set", setting, "--state-out", path, "--out", scratch.out},
            "seed " + stem);
        ASSERT_EQ(made.status, 0) << made.err;
        seeds.push_back(BR::Test::ReadBytes(path));
    }
    const std::string file = scratch.folder + "/case.state";
    for (size_t k = 0; k < kCasesPerFormat; ++k) {
        const size_t seed = random.Below(seeds.size());
        Bytes bytes = seeds[seed];
        if (random.OneIn(2)) {
            // Damage inside a state whose form and checksum are right: the chunks' contents lie.
            BR::SavedState state = BR::DecodeState(bytes);
            for (BR::SavedChunk& chunk : state.chunks) {
                if (random.OneIn(2))
                    chunk.data = BR::Test::Damage(std::move(chunk.data), random, {0, 4, 8, 12, 16}, false);
                if (random.OneIn(16)) chunk.version = BR::Test::EdgeValue(random);
            }
            if (random.OneIn(16)) state.chunks.push_back({BR::Test::EdgeValue(random), 1, {1, 2, 3}});
            if (random.OneIn(16) && !state.chunks.empty()) state.chunks.pop_back();
            bytes = BR::EncodeState(state);
        } else if (!random.OneIn(8)) {
            bytes = BR::Test::Damage(std::move(bytes), random, {8, 12, 16, 20, 24, 28, 32}, false);
        }
        BR::Test::WriteBytes(file, bytes);
        const std::string stem =
            random.OneIn(8) ? modules[random.Below(modules.size())].first : modules[seed].first;
        RunRender({"render", stem, "--frames", "64", "--state-in", file, "--out", scratch.out},
                  "state case " + std::to_string(k) + " (" + stem + ")", file, scratch, tally);
    }
    Bytes large(BR::kMaxStateFileBytes + 1, 0);
    BR::Test::WriteBytes(file, large);
    const auto outcome = BR::Test::RunCase(
        {"render", "dc", "--frames", "64", "--state-in", file, "--out", scratch.out}, "large");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.err.find("state files may hold at most 16777216"), std::string::npos) << outcome.err;
    std::printf("state files: %zu rendered, %zu refused\n", tally.accepted, tally.refused);
    EXPECT_GT(tally.accepted, kCasesPerFormat / 10);
    EXPECT_GT(tally.refused, kCasesPerFormat / 4);
}

namespace {
std::string CalibrationText(CaseRandom& random) {
    static const std::vector<std::string> headers = {
        "Corvane Calibration Data\n", "Corvane Calibration Data\r\n", "Corvane Calibration\n", "", "\n"};
    static const std::vector<std::string> versions = {
        "version: 1\n", "version: 2\n", "version: 99999999999999\n", "version:\n", "version: -1\n", ""};
    static const std::vector<std::string> indices = {
        "0", "60", "127", "128", "129", "-1", "2147483647", "99999999999999999999", "x", "60.5", ""};
    static const std::vector<std::string> values = {"0.5", "-1", "1",     "1.0000001",  "1e400", "nan",
                                                    "inf", "-0", "1e-45", "0.12345678", "",      "abc"};
    std::string text = random.OneIn(8) ? random.Pick(headers) : headers[0];
    text += random.OneIn(8) ? random.Pick(versions) : versions[0];
    const size_t hostility = random.OneIn(2) ? 0 : 1 + random.Below(3);  // 0: plain lines only
    for (size_t n = random.OneIn(16) ? 3000 : random.Below(140); n > 0; --n) {
        if (hostility && random.OneIn(40 / hostility)) {
            text += std::string(200 + random.Below(400), char('0' + random.Below(10))) + "\n";
        } else if (hostility && random.OneIn(40 / hostility)) {
            for (size_t b = random.Below(20); b > 0; --b)
                text += char(random.Next());
            text += "\n";
        } else {
            const bool plain = !hostility || !random.OneIn(12 / hostility);
            text += (plain ? std::to_string(random.Below(129)) : random.Pick(indices)) + " " +
                    (plain ? std::to_string(double(int(random.Below(2001)) - 1000) / 1000.0)
                           : random.Pick(values)) +
                    (random.OneIn(20) ? "\r\n" : "\n");
        }
    }
    if (random.OneIn(8)) text.resize(random.Below(text.size() + 1));
    return text;
}
}  // namespace

TEST(CliHostileFiles, CalibrationFiles) {
    Scratch scratch;
    CaseRandom random(2104);
    BR::Test::CaseTally tally;
    const std::string file = scratch.folder + "/case.txt";
    const std::string saved = scratch.folder + "/saved.txt";
    for (size_t k = 0; k < kCasesPerFormat; ++k) {
        const std::string text = CalibrationText(random);
        BR::Test::WriteBytes(file, Bytes(text.begin(), text.end()));
        BR::Test::RemoveAll({saved});
        const bool grid =
            random.OneIn(3);  // read as a Quantizer's grid, else into a Voice Controller's table
        std::vector<std::string> args = {"render",
                                         grid ? "quantizer" : "voicecontroller",
                                         "--frames",
                                         "64",
                                         "--calibration-in",
                                         file,
                                         "--out",
                                         scratch.out};
        if (!grid && random.OneIn(4)) args.insert(args.end(), {"--calibration-out", saved});
        RunRender(args, "calibration case " + std::to_string(k), file, scratch, tally, saved);
    }
    std::ofstream(file, std::ios::binary | std::ios::trunc)
        << "Corvane Calibration Data\nversion: 1\n"
        << std::string(BR::kMaxCalibrationFileBytes, '\n');
    const auto outcome = BR::Test::RunCase(
        {"render", "voicecontroller", "--frames", "64", "--calibration-in", file, "--out", scratch.out},
        "large");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.err.find("calibration files may hold at most 1048576"), std::string::npos)
        << outcome.err;
    std::printf("calibration files: %zu rendered, %zu refused\n", tally.accepted, tally.refused);
    EXPECT_GT(tally.accepted, kCasesPerFormat / 4);
    EXPECT_GT(tally.refused, kCasesPerFormat / 20);
}
