// "QuantizerLoad": a calibration file becomes the Quantizer's grid (ascending voltages, the file's
// index as the note) and its path the calibration's name; a refused file leaves grid and name alone.
#include <gtest/gtest.h>

#include "CalibrationTestFiles.h"
#include "QuantizerRig.h"
#include "tests/support/Render.h"

TEST(QuantizerLoad, FileBecomesTheGridAndThePathItsName) {
    auto driver = BR::Test::MakeQuantizer();
    auto& quantizer = BR::Test::Quantizer(*driver);
    const std::string path = BR::Test::WriteTempFile(
        "vco.txt", std::string(BR::Test::kCalibrationHeader) + "72 0.5\n48 -0.25\n60 0.125\n");
    ASSERT_EQ(BR::LoadQuantizerCalibration(driver->Module(), path), "");
    EXPECT_EQ(quantizer.CalibrationName(), path);
    const BR::QuantizerTable& table = quantizer.Calibration();
    ASSERT_EQ(table.count, 3);
    EXPECT_EQ(table.voltages[0], -0.25f);
    EXPECT_EQ(table.notes[0], 48);
    EXPECT_EQ(table.voltages[2], 0.5f);
    EXPECT_EQ(table.notes[2], 72);

    driver->SetParameterByName("Enable L", 1);
    driver->SetParameterByName("Mode L", 1);
    const std::vector<float> in = {0.0f, 0.2f, 0.9f};
    EXPECT_EQ(BR::Test::RenderFrames(*driver, 3, 3, {in, in})[0], (std::vector<float>{-0.25f, 0.125f, 0.5f}));
}

TEST(QuantizerLoad, RefusedFilesLeaveGridAndName) {
    auto driver = BR::Test::MakeQuantizer();
    auto& quantizer = BR::Test::Quantizer(*driver);
    driver->Module().SetProperty(BR::kPropertyMakeArdentTable, nullptr, 0);
    const std::string header = BR::Test::kCalibrationHeader;
    EXPECT_EQ(BR::LoadQuantizerCalibration(driver->Module(), BR::Test::WriteTempFile("empty.txt", header)),
              "No values loaded from file");
    std::string many = header;
    for (int k = 0; k < 130; ++k)
        many += std::to_string(k) + " " + std::to_string(k / 200.0) + "\n";
    EXPECT_EQ(BR::LoadQuantizerCalibration(driver->Module(), BR::Test::WriteTempFile("many.txt", many)),
              "Too many steps");
    EXPECT_EQ(BR::LoadQuantizerCalibration(driver->Module(),
                                           BR::Test::WriteTempFile("neg.txt", header + "-1 0.5\n")),
              "Index out of range");
    EXPECT_EQ(BR::LoadQuantizerCalibration(driver->Module(),
                                           BR::Test::WriteTempFile("big.txt", header + "3 1.5\n")),
              "Value out of range");
    EXPECT_EQ(quantizer.Calibration().count, 64);
    EXPECT_EQ(quantizer.CalibrationName(), "<Ardent Calibration>");
}
