// --calibration-in loads a calibration file into a Voice Controller before the render and
// --calibration-out saves its table after it; a broken file or a module without a table ends the
// command with status 2 and the reason.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "host/cli/WavFile.h"
#include "tests/support/RunCommand.h"

TEST(CliRender, CalibrationFilesInAndOut) {
    const std::string f = BR::Test::MakeTempFolder();
    std::ofstream(f + "/in.txt") << "Corvane Calibration Data\nversion: 1\n60 0.25\n72 0.5\n";
    auto result =
        BR::Test::RunCorvane("render voicecontroller --frames 512 --event 0:904064 --calibration-in " + f +
                             "/in.txt --calibration-out " + f + "/out.txt --out " + f + "/vc.wav");
    ASSERT_EQ(result.status, 0) << result.err;
    const BR::AudioData out = BR::ReadWav(f + "/vc.wav");
    EXPECT_FLOAT_EQ(out.channels[0][100], 0.25f + 4.0f * 0.25f / 12.0f);  // note 64, interpolated
    std::ifstream saved(f + "/out.txt");
    std::stringstream text;
    text << saved.rdbuf();
    EXPECT_EQ(text.str(), "Corvane Calibration Data\nversion: 1\n60 0.25000000\n72 0.50000000\n");

    std::ofstream(f + "/bad.txt") << "Corvane Calibration Data\nversion: 1\n60 0.25\n72 7\n";
    result = BR::Test::RunCorvane("render voicecontroller --frames 64 --calibration-in " + f +
                                  "/bad.txt --out " + f + "/x.wav");
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("--calibration-in: \"" + f + "/bad.txt\": Value out of range"),
              std::string::npos)
        << result.err;
    result =
        BR::Test::RunCorvane("render dc --frames 64 --calibration-in " + f + "/in.txt --out " + f + "/x.wav");
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("module \"dc\" keeps no calibration table"), std::string::npos) << result.err;
    std::filesystem::remove_all(f);
}
