// Properties 64090 and 64091 make the Ardent and Cinder grids and name them, 64120 copies a grid in and
// has the filtered tables built again, and 64121 reads and writes the calibration's name.
#include <gtest/gtest.h>

#include <cstring>

#include "QuantizerRig.h"
#include "tests/support/Render.h"

namespace {

struct Seen {
    std::vector<uint32_t> ids;
};

void Listen(void* userData, BrelAuBase*, uint32_t id) {
    static_cast<Seen*>(userData)->ids.push_back(id);
}

std::string Name(BrelCorvaneBase& module) {
    const char* name = nullptr;
    EXPECT_EQ(module.GetProperty(BR::kPropertyCalibrationName, &name), BR::kNoErr);
    return name ? name : "";
}

}  // namespace

TEST(QuantizerProperties, ArdentGrid) {
    auto driver = BR::Test::MakeQuantizer();
    BrelCorvaneBase& module = driver->Module();
    Seen seen;
    module.AddPropertyListener(BR::kPropertyCalibrationName, &Listen, &seen);
    module.AddPropertyListener(BR::kPropertyQuantizerTable, &Listen, &seen);
    ASSERT_EQ(module.SetProperty(BR::kPropertyMakeArdentTable, nullptr, 0), BR::kNoErr);
    const BR::QuantizerTable& table = BR::Test::Quantizer(*driver).Calibration();
    ASSERT_EQ(table.count, 64);
    for (int i = 0; i < 64; ++i) {
        EXPECT_EQ(table.voltages[i], float(i) * 0.015686275f);
        EXPECT_EQ(table.notes[i], 48 + i);
    }
    EXPECT_EQ(Name(module), "<Ardent Calibration>");
    EXPECT_EQ(seen.ids, (std::vector<uint32_t>{BR::kPropertyQuantizerTable, BR::kPropertyCalibrationName}));
    module.RemovePropertyListener(BR::kPropertyCalibrationName, &Listen, &seen);
    module.RemovePropertyListener(BR::kPropertyQuantizerTable, &Listen, &seen);
}

TEST(QuantizerProperties, CinderGrid) {
    auto driver = BR::Test::MakeQuantizer();
    ASSERT_EQ(driver->Module().SetProperty(BR::kPropertyMakeCinderTable, nullptr, 0), BR::kNoErr);
    const BR::QuantizerTable& table = BR::Test::Quantizer(*driver).Calibration();
    ASSERT_EQ(table.count, 128);
    for (int i = 0; i < 128; ++i) {
        EXPECT_EQ(table.voltages[i], float(i - 60) * 0.015628817f);
        EXPECT_EQ(table.notes[i], i);
    }
    EXPECT_EQ(table.voltages[60], 0.0f);
    EXPECT_EQ(Name(driver->Module()), "<Cinder Calibration>");
}

TEST(QuantizerProperties, GridWriteClearsTheBuiltTables) {
    auto driver = BR::Test::MakeQuantizer();
    auto& quantizer = BR::Test::Quantizer(*driver);
    driver->SetParameterByName("Enable L", 1);
    driver->SetParameterByName("Mode L", 1);
    BR::Test::SetGrid(*driver, {-0.5f, 0.5f}, {1, 2});
    EXPECT_FALSE(quantizer.TablesBuilt());
    const std::vector<float> in = {0.1f};
    EXPECT_EQ(BR::Test::RenderFrames(*driver, 1, 1, {in, in})[0][0], -0.5f);
    EXPECT_TRUE(quantizer.TablesBuilt());
    BR::Test::SetGrid(*driver, {0.0f, 0.75f}, {1, 2});
    EXPECT_FALSE(quantizer.TablesBuilt());
    EXPECT_EQ(BR::Test::RenderFrames(*driver, 1, 1, {in, in})[0][0], 0.0f);
    EXPECT_TRUE(quantizer.TablesBuilt());
}

TEST(QuantizerProperties, GridPayloadChecks) {
    auto driver = BR::Test::MakeQuantizer();
    BrelCorvaneBase& module = driver->Module();
    uint32_t size = 0;
    bool writable = false;
    ASSERT_EQ(module.GetPropertyInfo(BR::kPropertyQuantizerTable, &size, &writable), BR::kNoErr);
    EXPECT_EQ(size, 1036u);
    EXPECT_TRUE(writable);
    BR::QuantizerTable table{};
    table.count = 3;
    EXPECT_EQ(module.SetProperty(BR::kPropertyQuantizerTable, &table, 1035), BR::kErrInvalidProperty);
    EXPECT_EQ(module.SetProperty(BR::kPropertyQuantizerTable, nullptr, 1036), BR::kErrInvalidProperty);
    EXPECT_EQ(BR::Test::Quantizer(*driver).Calibration().count, 0);
    // A count beyond the 129 entries cannot take the render path past them.
    table.count = 5000;
    EXPECT_EQ(module.SetProperty(BR::kPropertyQuantizerTable, &table, 1036), BR::kNoErr);
    EXPECT_EQ(BR::Test::Quantizer(*driver).Calibration().count, 129);
    table.count = -4;
    module.SetProperty(BR::kPropertyQuantizerTable, &table, 1036);
    EXPECT_EQ(BR::Test::Quantizer(*driver).Calibration().count, 0);
    EXPECT_EQ(module.GetProperty(BR::kPropertyQuantizerTable, &table), BR::kErrInvalidProperty);
}

TEST(QuantizerProperties, CalibrationName) {
    auto driver = BR::Test::MakeQuantizer();
    BrelCorvaneBase& module = driver->Module();
    EXPECT_EQ(Name(module), "");
    const char text[] = "/home/me/vco.txt";
    EXPECT_EQ(module.SetProperty(BR::kPropertyCalibrationName, text, sizeof text), BR::kNoErr);
    EXPECT_EQ(Name(module), text);
    uint32_t size = 0;
    bool writable = false;
    module.GetPropertyInfo(BR::kPropertyCalibrationName, &size, &writable);
    EXPECT_EQ(size, sizeof text);
    EXPECT_TRUE(writable);
    // Without a terminator the size given ends the text.
    EXPECT_EQ(module.SetProperty(BR::kPropertyCalibrationName, "abcdef", 3), BR::kNoErr);
    EXPECT_EQ(Name(module), "abc");
    EXPECT_EQ(module.SetProperty(BR::kPropertyCalibrationName, nullptr, 3), BR::kErrInvalidProperty);
}
