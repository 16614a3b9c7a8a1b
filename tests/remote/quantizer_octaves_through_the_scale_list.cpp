// End to end: the scale list a Quantizer gets is the one the script host runs at construction, and
// "Octaves" in key C on the Ardent table keeps notes 48, 60, 72, 84, 96 and 108.
#include <gtest/gtest.h>

#include <filesystem>

#include "RemoteRig.h"
#include "modules/sequencing/Quantizer.h"
#include "tests/support/RunCommand.h"
#include "tests/support/ScopedEnvironment.h"

using namespace BR::Test;

TEST(QuantizerScripts, OctavesInKeyCOnTheArdentTableThroughTheRealScaleList) {
    ScopedEnvironment environment;
    const std::string data = MakeTempFolder();
    environment.Set("XDG_DATA_HOME", data.c_str());  // no user scripts: the built-in list alone
    auto driver = MakeRemoteDriver("quantizer", 17550);
    auto& quantizer = static_cast<BrelCorvaneQuantizer::BrelCorvane&>(driver->Module());
    const std::vector<BrelCorvaneQuantizer::ScaleDefinition> scales = quantizer.Scales();
    ASSERT_EQ(scales.size(), 12u);
    EXPECT_EQ(scales[0].name, "Major");
    EXPECT_EQ(scales[11].name, "Octaves");
    EXPECT_EQ(scales[11].mask, 0x001);

    ASSERT_EQ(driver->Module().SetProperty(BR::kPropertyMakeArdentTable, nullptr, 0), BR::kNoErr);
    driver->SetParameterByName("Enable L", 1);
    driver->SetParameterByName("Mode L", 1);
    driver->SetParameterByName("Enable Scale L", 1);
    driver->SetParameterByName("Key L", 0);  // C
    driver->SetParameterByName("Scale L", 11);
    RenderFrames(*driver, 16, 16);
    const BR::QuantizerTable& table = quantizer.ChannelTable(0);
    EXPECT_EQ(std::vector<int32_t>(table.notes, table.notes + table.count),
              (std::vector<int32_t>{48, 60, 72, 84, 96, 108}));
    std::filesystem::remove_all(data);
}
