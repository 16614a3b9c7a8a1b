// A state file that is truncated, damaged, of another module, or not a state file at all is refused
// with a message and status 2, and the module keeps its values.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "host/cli/StateFile.h"
#include "modules/ModuleFactory.h"
#include "tests/support/Render.h"
#include "tests/support/RunCommand.h"

namespace {
std::vector<uint8_t> Slurp(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::vector<uint8_t>((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}
void Write(const std::string& path, const std::vector<uint8_t>& bytes) {
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
}

struct Damaged {
    std::string name;
    std::vector<uint8_t> bytes;
    std::string message;
};

std::vector<Damaged> DamagedFiles(const std::vector<uint8_t>& good) {
    std::vector<Damaged> files;
    files.push_back({"truncated", {good.begin(), good.end() - 9}, "is refused: truncated"});
    files.push_back({"half", {good.begin(), good.begin() + 30}, "is refused: truncated"});
    files.push_back({"header", {good.begin(), good.begin() + 12}, "is refused: truncated: the header"});
    std::vector<uint8_t> flipped = good;
    flipped[good.size() / 2] ^= 0x10;
    files.push_back({"flipped", flipped, "is refused: damaged: the checksum does not match"});
    std::vector<uint8_t> longer = good;
    longer.push_back(0);
    files.push_back({"longer", longer, "is refused: damaged: 1 bytes follow the last chunk"});
    files.push_back({"empty", {}, "is refused: not a Corvane state file"});
    files.push_back({"text", {'h', 'e', 'l', 'l', 'o', '\n'}, "is refused: not a Corvane state file"});
    std::vector<uint8_t> version = good;
    version[8] = 2;
    files.push_back({"version", version, "format version 2 is not known"});

    // Well formed, with a valid checksum, but wrong inside.
    BR::SavedState state = BR::DecodeState(good);
    BR::SavedState other = state;
    other.moduleId = BR::FourCC("CRlf");
    files.push_back(
        {"other", BR::EncodeState(other), "holds the state of \"CRlf\" (LFO), not of \"CRdc\" (DC)"});
    BR::SavedState controls = state;
    controls.chunks[0].data.resize(controls.chunks[0].data.size() - 2);
    files.push_back({"controls", BR::EncodeState(controls), "its \"elck\" chunk is damaged"});
    BR::SavedState chunky = state;
    chunky.chunks[1].data[8] = 40;  // a byte count past the image
    files.push_back({"chunky", BR::EncodeState(chunky), "its \"Chnk\" chunk is damaged"});
    BR::SavedState unknown = state;
    unknown.chunks.push_back({BR::FourCC("what"), 1, {1, 2, 3, 4}});
    files.push_back({"unknown", BR::EncodeState(unknown), "chunk \"what\" is unknown or repeated"});
    return files;
}
}  // namespace

TEST(CliRenderState, DamagedFilesAreRefusedWithStatus2) {
    const std::string f = BR::Test::MakeTempFolder();
    auto result = BR::Test::RunCorvane("render dc --frames 10 --set \"Output Positive L=0.5\" --out " + f +
                                       "/a.wav --state-out " + f + "/good.state");
    ASSERT_EQ(result.status, 0) << result.err;
    const std::vector<uint8_t> good = Slurp(f + "/good.state");
    for (const Damaged& damaged : DamagedFiles(good)) {
        const std::string path = f + "/" + damaged.name + ".state";
        Write(path, damaged.bytes);
        result = BR::Test::RunCorvane("render dc --frames 10 --state-in " + path + " --out " + f + "/x.wav");
        EXPECT_EQ(result.status, 2) << damaged.name;
        EXPECT_NE(result.err.find("--state-in: \"" + path + "\""), std::string::npos) << result.err;
        EXPECT_NE(result.err.find(damaged.message), std::string::npos) << damaged.name << ": " << result.err;
        EXPECT_EQ(result.err.find("usage:"), std::string::npos) << result.err;
        EXPECT_FALSE(std::filesystem::exists(f + "/x.wav")) << damaged.name;
    }
    result =
        BR::Test::RunCorvane("render dc --frames 10 --state-in " + f + "/none.state --out " + f + "/x.wav");
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("cannot read \"" + f + "/none.state\""), std::string::npos) << result.err;
    std::filesystem::remove_all(f);
}

TEST(CliRenderState, TheModuleKeepsItsValues) {
    const std::string f = BR::Test::MakeTempFolder();
    auto source = BR::Test::MakeDriver("dc");
    source->SetParameterByName("Output Positive L", 0.5f);
    source->SetParameterByName("Smoothing R", 100.0f);
    BR::WriteStateFile(f + "/good.state", *source);
    const std::vector<uint8_t> good = Slurp(f + "/good.state");

    auto target = BR::Test::MakeDriver("dc");
    target->SetParameterByName("Output Positive L", 0.25f);
    target->SetParameterByName("Multiplier L", -1.5f);
    auto values = [&] {
        std::vector<float> v;
        for (int32_t i = 0; i < target->Module().GetNumberOfParameters(); ++i)
            v.push_back(target->Module().GetParameter(i)->GetValueAsFloat());
        return v;
    };
    const std::vector<float> before = values();
    for (const Damaged& damaged : DamagedFiles(good)) {
        Write(f + "/bad.state", damaged.bytes);
        EXPECT_THROW(BR::RestoreStateFile(f + "/bad.state", *target), std::runtime_error) << damaged.name;
        EXPECT_EQ(values(), before) << damaged.name;
    }
    BR::RestoreStateFile(f + "/good.state", *target);
    EXPECT_EQ(target->Module().GetTableValue(0), 0.5f);
    EXPECT_EQ(target->Module().GetTableValue(2), 1.0f);
    EXPECT_EQ(target->Module().GetTableValue(12), 100.0f);
    std::filesystem::remove_all(f);
}
