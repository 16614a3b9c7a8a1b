// --state-out writes both chunks into one file after the render; --state-in restores it before the
// settings apply. A round trip reproduces every parameter exactly, and writing again gives the same
// bytes.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "framework/StateChunkStore.h"
#include "host/cli/StateFile.h"
#include "host/cli/WavFile.h"
#include "tests/support/RunCommand.h"

namespace {
std::vector<uint8_t> Slurp(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::vector<uint8_t>((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

// The values of the "elck" chunk by identifier.
std::map<std::string, float> Controls(const BR::SavedState& state) {
    std::map<std::string, float> values;
    for (const BR::SavedChunk& chunk : state.chunks) {
        if (chunk.id != BR::kChunkIdControls) continue;
        const uint8_t* p = chunk.data.data() + 8;
        for (uint32_t i = 0; i < BR::ReadU32(chunk.data.data() + 4); ++i) {
            const size_t length = p[0] | (p[1] << 8);
            const std::string id(reinterpret_cast<const char*>(p + 2), length);
            const uint32_t bits = BR::ReadU32(p + 3 + length);
            std::memcpy(&values[id], &bits, 4);
            p += 7 + length;
        }
    }
    return values;
}
}  // namespace

TEST(CliRenderState, RoundTripReproducesParametersExactly) {
    const std::string f = BR::Test::MakeTempFolder();
    auto result = BR::Test::RunCorvane(
        "render dc --frames 4800 --set \"Output Positive L=0.123456789\" --set \"Output Symmetric "
        "R=-0.7071\" "
        "--set \"Multiplier R=1.999\" --set \"Smoothing L=333.333\" --set \"OSC Port Offset=12\" "
        "--set \"Master Bypass=0\" --out " +
        f + "/a.wav --state-out " + f + "/a.state");
    ASSERT_EQ(result.status, 0) << result.err;
    const BR::SavedState saved = BR::DecodeState(Slurp(f + "/a.state"));
    EXPECT_EQ(saved.moduleId, BR::FourCC("CRdc"));
    ASSERT_EQ(saved.chunks.size(), 2u);
    EXPECT_EQ(saved.chunks[0].id, BR::kChunkIdControls);
    EXPECT_EQ(saved.chunks[1].id, BR::kChunkIdChunky);
    EXPECT_EQ(saved.chunks[1].data.size(), 12u);
    EXPECT_EQ(saved.chunks[0].version, 132609u);
    std::map<std::string, float> values = Controls(saved);
    EXPECT_EQ(values.size(), 14u);  // Master Bypass and thirteen rows
    EXPECT_EQ(values["Output Positive L"], 0.123456789f);
    EXPECT_EQ(values["Output Symmetric R"], -0.7071f);
    EXPECT_EQ(values["Multiplier R"], 1.999f);
    EXPECT_EQ(values["Smoothing L"], 333.333f);
    EXPECT_EQ(values["OSC Port Offset"], 12.0f);
    EXPECT_EQ(values["MasterBypassID"], 0.0f);

    result = BR::Test::RunCorvane("render dc --frames 4800 --state-in " + f + "/a.state --state-out " + f +
                                  "/b.state --out " + f + "/b.wav");
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(Slurp(f + "/b.state"), Slurp(f + "/a.state"));
    const BR::AudioData a = BR::ReadWav(f + "/a.wav"), b = BR::ReadWav(f + "/b.wav");
    EXPECT_EQ(a.channels, b.channels);
    EXPECT_NE(a.channels[0][4799], 0.0f);

    // Settings come after the state.
    result =
        BR::Test::RunCorvane("render dc --frames 10 --state-in " + f + "/a.state --set \"Multiplier R=-1\" " +
                             "--state-out " + f + "/c.state --out " + f + "/c.wav");
    ASSERT_EQ(result.status, 0) << result.err;
    values = Controls(BR::DecodeState(Slurp(f + "/c.state")));
    EXPECT_EQ(values["Multiplier R"], -1.0f);
    EXPECT_EQ(values["Output Positive L"], 0.123456789f);
    std::filesystem::remove_all(f);
}

TEST(CliRenderState, FileLayout) {
    BR::SavedState state{BR::FourCC("CRdc"),
                         {{BR::FourCC("elck"), 7, {1, 2, 3}}, {BR::FourCC("Chnk"), 9, {}}}};
    const std::vector<uint8_t> bytes = BR::EncodeState(state);
    // "CorvStat", version 1, module id, 2 chunks, {id, version, size, bytes} each, CRC-32.
    ASSERT_EQ(bytes.size(), 20u + 15u + 12u + 4u);
    EXPECT_EQ(std::string(bytes.begin(), bytes.begin() + 8), "CorvStat");
    EXPECT_EQ(BR::ReadU32(bytes.data() + 8), 1u);
    EXPECT_EQ(BR::ReadU32(bytes.data() + 12), BR::FourCC("CRdc"));
    EXPECT_EQ(BR::ReadU32(bytes.data() + 16), 2u);
    EXPECT_EQ(BR::ReadU32(bytes.data() + 20), BR::FourCC("elck"));
    EXPECT_EQ(BR::ReadU32(bytes.data() + 24), 7u);
    EXPECT_EQ(BR::ReadU32(bytes.data() + 28), 3u);
    EXPECT_EQ(bytes[34], 3);
    EXPECT_EQ(BR::ReadU32(bytes.data() + 35), BR::FourCC("Chnk"));
    EXPECT_EQ(BR::ReadU32(bytes.data() + 43), 0u);
    const BR::SavedState back = BR::DecodeState(bytes);
    EXPECT_EQ(back.moduleId, state.moduleId);
    ASSERT_EQ(back.chunks.size(), 2u);
    EXPECT_EQ(back.chunks[0].data, state.chunks[0].data);
    EXPECT_EQ(back.chunks[1].version, 9u);
}
