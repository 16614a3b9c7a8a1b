// "corvane render quantizer" renders exact grid steps in "Manual", with the one-step offset at exact
// negative grid points, and in "Calibrated" the grid of a calibration file loaded with
// --calibration-in, filtered by a scale; a file the Quantizer refuses ends the command with its text.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "host/cli/RenderJob.h"
#include "host/cli/WavFile.h"
#include "tests/modules/sequencing/QuantizerRig.h"
#include "tests/support/RunCommand.h"

namespace {

const std::vector<float> kLeft = {0.3f, 0.5f, -0.1f, -0.5f, -1.0f, 0.0f, 0.99f, -0.26f};
const std::vector<float> kRight = {-0.9f, -0.3f, -0.2f, 0.05f, 0.1f, 0.3f, 0.45f, 0.8f};

// The grid's values as the file holds them, nine digits each: enough to come back as the same float.
std::string GridText(int note) {
    char text[32];
    std::snprintf(text, sizeof text, "%.9g", note == 36 ? -1.0 : (note - 48) / 12.0);
    return text;
}

std::string WriteInputAndGrid(const std::string& folder) {
    BR::AudioData in;
    in.sampleRate = 48000;
    in.channels = {kLeft, kRight};
    BR::WriteWav(folder + "/in.wav", in);
    // Notes 48 to 60 at 1/12 apart from 0, and note 36 at -1: a volt-per-octave grid of its own.
    std::ofstream file(folder + "/grid.txt");
    file << "Corvane Calibration Data\nversion: 1\n36 " << GridText(36) << "\n";
    for (int note = 48; note <= 60; ++note)
        file << note << " " << GridText(note) << "\n";
    return folder + "/grid.txt";
}

std::vector<float> GridVoltages(const std::vector<int>& notes) {
    std::vector<float> out;
    for (int note : notes)
        out.push_back(std::strtof(GridText(note).c_str(), nullptr));
    return out;
}

}  // namespace

TEST(CliRenderQuantizer, ManualGridAndCalibratedFile) {
    const std::string f = BR::Test::MakeTempFolder();
    const std::string grid = WriteInputAndGrid(f);
    auto result =
        BR::Test::RunCorvane("render quantizer --in " + f +
                             "/in.wav --set \"Enable L=1\" --set \"Steps L=4\" --set \"Enable R=1\" "
                             "--set \"Mode R=Calibrated\" --calibration-in " +
                             grid + " --state-out " + f + "/q.state --out " + f + "/q.wav");
    ASSERT_EQ(result.status, 0) << result.err;
    const BR::AudioData out = BR::ReadWav(f + "/q.wav");
    ASSERT_EQ(out.channels.size(), 2u);
    // Steps of 0.5; -0.5 and -1.0 are grid points and land one step lower.
    EXPECT_EQ(out.channels[0], (std::vector<float>{0.0f, 0.5f, -0.5f, -1.0f, -1.5f, 0.0f, 0.5f, -0.5f}));
    // Each sample falls to the grid entry at or below it; below -1 and 0 lies nothing but note 36.
    EXPECT_EQ(out.channels[1], GridVoltages({36, 36, 36, 48, 49, 51, 53, 57}));
    // The file's path became the calibration's name, kept in the state.
    std::ifstream state(f + "/q.state", std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(state)), std::istreambuf_iterator<char>());
    EXPECT_NE(bytes.find(grid + std::string(1, '\0')), std::string::npos);
    std::filesystem::remove_all(f);
}

TEST(CliRenderQuantizer, ScaleFilteredCalibratedGrid) {
    const std::string f = BR::Test::MakeTempFolder();
    const std::string grid = WriteInputAndGrid(f);
    // The render command's own parsing and rendering, on a Quantizer that knows the default scales.
    const std::string args[] = {"corvane",
                                "render",
                                "quantizer",
                                "--in",
                                f + "/in.wav",
                                "--set",
                                "Enable R=1",
                                "--set",
                                "Mode R=1",
                                "--set",
                                "Enable Scale R=1",
                                "--set",
                                "Key R=D",
                                "--set",
                                "Scale R=Pentatonic Min",
                                "--calibration-in",
                                grid,
                                "--out",
                                f + "/scaled.wav"};
    std::vector<char*> argv;
    for (const std::string& a : args)
        argv.push_back(const_cast<char*>(a.c_str()));
    const BR::RenderJob job = BR::ParseRenderJob(int(argv.size()), argv.data(), 2);
    auto driver = BR::Test::MakeQuantizer();
    ASSERT_EQ(BR::RenderWithDriver(*driver, job), 8);
    // D minor pentatonic: D F G A C; of the grid 36 (C) 48 (C) 50 (D) 53 (F) 55 (G) 57 (A) 60 (C) stay.
    EXPECT_EQ(BR::Test::Quantizer(*driver).ChannelTable(1).count, 7);
    const BR::AudioData out = BR::ReadWav(f + "/scaled.wav");
    EXPECT_EQ(out.channels[0], kLeft);
    EXPECT_EQ(out.channels[1], GridVoltages({36, 36, 36, 48, 48, 50, 53, 57}));
    std::filesystem::remove_all(f);
}

TEST(CliRenderQuantizer, RefusedCalibrationFiles) {
    const std::string f = BR::Test::MakeTempFolder();
    std::ofstream(f + "/empty.txt") << "Corvane Calibration Data\nversion: 1\n";
    auto result = BR::Test::RunCorvane("render quantizer --frames 8 --calibration-in " + f +
                                       "/empty.txt --out " + f + "/x.wav");
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("--calibration-in: \"" + f + "/empty.txt\": No values loaded from file"),
              std::string::npos)
        << result.err;
    std::ofstream many(f + "/many.txt");
    many << "Corvane Calibration Data\nversion: 1\n";
    for (int k = 0; k < 130; ++k)
        many << k << " " << k / 200.0 << "\n";
    many.close();
    result = BR::Test::RunCorvane("render quantizer --frames 8 --calibration-in " + f + "/many.txt --out " +
                                  f + "/x.wav");
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("Too many steps"), std::string::npos) << result.err;
    std::ofstream(f + "/neg.txt") << "Corvane Calibration Data\nversion: 1\n-3 0.5\n";
    result = BR::Test::RunCorvane("render quantizer --frames 8 --calibration-in " + f + "/neg.txt --out " +
                                  f + "/x.wav");
    EXPECT_NE(result.err.find("Index out of range"), std::string::npos) << result.err;
    result = BR::Test::RunCorvane("render quantizer --frames 8 --calibration-out " + f + "/o.txt --out " + f +
                                  "/x.wav");
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("module \"quantizer\" keeps no calibration table"), std::string::npos)
        << result.err;
    EXPECT_FALSE(std::filesystem::exists(f + "/o.txt"));
    std::filesystem::remove_all(f);
}
