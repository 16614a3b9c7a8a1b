// A scale filters the calibration table by the pitch class of each entry's note above the key: an
// entry stays when its bit of the scale's mask is set, an empty mask lets every entry pass, and a mask
// that lets none pass leaves an empty table through which the signal passes unquantized.
#include <gtest/gtest.h>

#include "QuantizerRig.h"
#include "tests/support/Render.h"

namespace {

std::vector<int32_t> Notes(const BR::QuantizerTable& table) {
    return std::vector<int32_t>(table.notes, table.notes + table.count);
}

std::unique_ptr<BR::HostDriver> ArdentWithScale(const std::string& scale,
                                                const std::vector<BR::Test::ScaleRow>& extra = {}) {
    auto driver = BR::Test::MakeQuantizer(extra);
    auto& quantizer = BR::Test::Quantizer(*driver);
    EXPECT_EQ(driver->Module().SetProperty(BR::kPropertyMakeArdentTable, nullptr, 0), BR::kNoErr);
    driver->SetParameterByName("Enable L", 1);
    driver->SetParameterByName("Mode L", 1);
    driver->SetParameterByName("Enable Scale L", 1);
    const int index = BR::Test::ScaleIndex(quantizer, scale);
    EXPECT_GE(index, 0) << scale;
    driver->SetParameterByName("Scale L", float(index));
    return driver;
}

void RenderBlock(BR::HostDriver& driver) {
    BR::Test::RenderFrames(driver, 16, 16);
}

}  // namespace

TEST(QuantizerScale, OctavesInKeyCOnArdentTable) {
    auto driver = ArdentWithScale("Octaves");
    RenderBlock(*driver);
    const BR::QuantizerTable& table = BR::Test::Quantizer(*driver).ChannelTable(0);
    EXPECT_EQ(Notes(table), (std::vector<int32_t>{48, 60, 72, 84, 96, 108}));
    EXPECT_EQ(table.voltages[1], 12.0f * 0.015686275f);
    // 0.2 lies between notes 60 (0.188) and 72 (0.376).
    const std::vector<float> in = {0.2f, 0.5f, -0.3f};
    const auto out = BR::Test::RenderFrames(*driver, 3, 3, {in, in});
    EXPECT_EQ(out[0][0], 12.0f * 0.015686275f);
    EXPECT_EQ(out[0][1], 24.0f * 0.015686275f);
    EXPECT_EQ(out[0][2], 0.0f);
    EXPECT_EQ(BR::Test::Quantizer(*driver).CurrentNote(0), 48);
}

TEST(QuantizerScale, KeyAndKeyOffsetAddUp) {
    auto driver = ArdentWithScale("Octaves");
    driver->SetParameterByName("Key L", 2);  // D
    RenderBlock(*driver);
    EXPECT_EQ(Notes(BR::Test::Quantizer(*driver).ChannelTable(0)),
              (std::vector<int32_t>{50, 62, 74, 86, 98, 110}));
    driver->SetParameterByName("Key L", 11);          // B
    driver->SetParameterByName("Key Offset L", -21);  // 11 - 21 = -10, the pitch class of D again
    RenderBlock(*driver);
    EXPECT_EQ(Notes(BR::Test::Quantizer(*driver).ChannelTable(0)),
              (std::vector<int32_t>{50, 62, 74, 86, 98, 110}));
    driver->SetParameterByName("Key Offset L", 1.9f);  // truncated: 11 + 1 = 12, the pitch class of C
    RenderBlock(*driver);
    EXPECT_EQ(Notes(BR::Test::Quantizer(*driver).ChannelTable(0)),
              (std::vector<int32_t>{48, 60, 72, 84, 96, 108}));
}

TEST(QuantizerScale, MajorOnCinderTable) {
    auto driver = BR::Test::MakeQuantizer();
    driver->Module().SetProperty(BR::kPropertyMakeCinderTable, nullptr, 0);
    driver->SetParameterByName("Enable R", 1);
    driver->SetParameterByName("Mode R", 1);
    driver->SetParameterByName("Enable Scale R", 1);
    driver->SetParameterByName("Scale R", float(BR::Test::ScaleIndex(BR::Test::Quantizer(*driver), "Major")));
    driver->SetParameterByName("Key R", 9);  // A major: A B C# D E F# G#
    RenderBlock(*driver);
    const BR::QuantizerTable& table = BR::Test::Quantizer(*driver).ChannelTable(1);
    EXPECT_EQ(table.count, 74);
    EXPECT_EQ(Notes(table)[0], 1);  // C#
    EXPECT_EQ(Notes(table)[1], 2);  // D
    for (int32_t i = 0; i < table.count; ++i) {
        const int pc = table.notes[i] % 12;
        EXPECT_TRUE(pc == 9 || pc == 11 || pc == 1 || pc == 2 || pc == 4 || pc == 6 || pc == 8)
            << table.notes[i];
    }
    // The left channel, without a scale, keeps the whole table.
    EXPECT_EQ(BR::Test::Quantizer(*driver).ChannelTable(0).count, 128);
}

TEST(QuantizerScale, MaskThatLetsNothingPassLeavesTheSignalUnquantized) {
    // Degree 13 alone sets bit 12, which no note above the key reaches.
    auto driver = ArdentWithScale("Thirteen", {{"Thirteen", {13}}});
    const auto scales = BR::Test::Quantizer(*driver).Scales();
    EXPECT_EQ(scales.back().mask, 0x1000);
    const std::vector<float> in = {0.2f, -0.33f, 0.91f};
    const auto out = BR::Test::RenderFrames(*driver, 3, 3, {in, in});
    EXPECT_EQ(BR::Test::Quantizer(*driver).ChannelTable(0).count, 0);
    EXPECT_EQ(out[0], in);
    EXPECT_EQ(BR::Test::Quantizer(*driver).CurrentNote(0), -1);
}

TEST(QuantizerScale, EmptyMaskLetsEveryNotePass) {
    // An empty degree list gives mask 0, which lets everything pass.
    EXPECT_EQ(BR::Test::MaskOfDegrees({}), 0);
    auto driver = ArdentWithScale("Empty", {{"Empty", {}}});
    RenderBlock(*driver);
    const BR::QuantizerTable& table = BR::Test::Quantizer(*driver).ChannelTable(0);
    ASSERT_EQ(table.count, 64);
    EXPECT_EQ(table.notes[0], 48);
    EXPECT_EQ(table.notes[63], 111);
}

TEST(QuantizerScale, HighDegreesWrapAndHighBitsAreLost) {
    // Degree 33 is bit 0 again ((33 - 1) & 31), and a mask keeps only 16 bits (degree 17 sets bit 16).
    EXPECT_EQ(BR::Test::MaskOfDegrees({33}), 1);
    EXPECT_EQ(BR::Test::MaskOfDegrees({17}), 0);
    auto driver = ArdentWithScale("Wrapped", {{"Wrapped", {33}}});
    RenderBlock(*driver);
    EXPECT_EQ(Notes(BR::Test::Quantizer(*driver).ChannelTable(0)),
              (std::vector<int32_t>{48, 60, 72, 84, 96, 108}));
}

TEST(QuantizerScale, TransposeCountsScaleDegrees) {
    auto driver = ArdentWithScale("Pentatonic Maj");  // C D E G A
    driver->SetParameterByName("Transpose L", 1);
    const std::vector<float> in = {0.0f};  // note 48, C
    const auto out = BR::Test::RenderFrames(*driver, 1, 1, {in, in});
    EXPECT_EQ(out[0][0], 2.0f * 0.015686275f);  // one degree up: D, note 50
    EXPECT_EQ(BR::Test::Quantizer(*driver).CurrentNote(0), 50);
}
