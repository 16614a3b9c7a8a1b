// The Quantizer's 23 rows, its channel layout, the value names of its indexed rows, and the "Scale"
// rows' upper limit that follows the instance's scale list.
#include <gtest/gtest.h>

#include <cstring>

#include "QuantizerRig.h"

namespace {

std::vector<std::string> Names(BrelCorvaneBase& module, int32_t row) {
    BR::CountedTextList* list = nullptr;
    if (module.GetParameterValueStrings(row, &list) != BR::kNoErr || !list) return {};
    std::vector<std::string> names = list->Get();
    list->Release();
    return names;
}

}  // namespace

TEST(QuantizerTable, RowsInOrder) {
    auto driver = BR::Test::MakeQuantizer();
    BrelCorvaneBase& module = driver->Module();
    ASSERT_EQ(module.NumTableParameters(), 23);
    EXPECT_EQ(module.NumInputs(), 2);
    EXPECT_EQ(module.NumOutputs(), 2);
    EXPECT_EQ(module.NumSidechains(), 0);
    EXPECT_EQ(module.NumPresets(), 1);
    EXPECT_STREQ(module.GetModuleName(), "Corvane Quantizer");
    EXPECT_STREQ(module.GetGuiScriptName(), "gui_quantizer.lua");
    struct Row {
        const char* name;
        uint32_t unit;
        float minimum, maximum, defaultValue;
    };
    const Row expected[23] = {
        {"OSC Port Offset", BR::kUnitIndexed, 0, 100, 0},
        {"Enable L", BR::kUnitBoolean, 0, 1, 0},
        {"Mode L", BR::kUnitIndexed, 0, 1, 0},
        {"Steps L", BR::kUnitGeneric, 1, 400, 96},
        {"Steps Fine L", BR::kUnitGeneric, -1, 1, 0},
        {"Offset L", BR::kUnitPercent, 0, 100, 0},
        {"Transpose L", BR::kUnitMIDINote, -36, 36, 0},
        {"Smoothing L", BR::kUnitMilliseconds, -500, 500, 0},
        {"Enable R", BR::kUnitBoolean, 0, 1, 0},
        {"Mode R", BR::kUnitIndexed, 0, 1, 0},
        {"Steps R", BR::kUnitGeneric, 1, 400, 96},
        {"Steps Fine R", BR::kUnitGeneric, -1, 1, 0},
        {"Offset R", BR::kUnitPercent, 0, 100, 0},
        {"Transpose R", BR::kUnitMIDINote, -36, 36, 0},
        {"Smoothing R", BR::kUnitMilliseconds, -500, 500, 0},
        {"Enable Scale L", BR::kUnitBoolean, 0, 1, 0},
        {"Key L", BR::kUnitIndexed, 0, 11, 0},
        {"Key Offset L", BR::kUnitMIDINote, -36, 36, 0},
        {"Scale L", BR::kUnitIndexed, 0, 11, 0},
        {"Enable Scale R", BR::kUnitBoolean, 0, 1, 0},
        {"Key R", BR::kUnitIndexed, 0, 11, 0},
        {"Key Offset R", BR::kUnitMIDINote, -36, 36, 0},
        {"Scale R", BR::kUnitIndexed, 0, 11, 0},
    };
    const BR::ParameterDefinition* table = module.ParameterTable();
    for (int k = 0; k < 23; ++k) {
        SCOPED_TRACE(expected[k].name);
        EXPECT_STREQ(table[k].name, expected[k].name);
        EXPECT_EQ(table[k].unit, expected[k].unit);
        EXPECT_EQ(table[k].minimum, expected[k].minimum);
        EXPECT_EQ(table[k].maximum, expected[k].maximum);
        EXPECT_EQ(table[k].defaultValue, expected[k].defaultValue);
        // The parameter objects were built from the instance's rows.
        ASSERT_NE(module.GetParameter(k + 1), nullptr);
        EXPECT_EQ(module.GetParameter(k + 1)->Maximum(), expected[k].maximum);
    }
}

TEST(QuantizerTable, ValueNames) {
    auto driver = BR::Test::MakeQuantizer();
    BrelCorvaneBase& module = driver->Module();
    const std::vector<std::string> modes = {"Manual", "Calibrated"};
    EXPECT_EQ(Names(module, 2), modes);
    EXPECT_EQ(Names(module, 9), modes);
    const std::vector<std::string> keys = {"C",     "C#/Db", "D",     "D#/Eb", "E",     "F",
                                           "F#/Gb", "G",     "G#/Ab", "A",     "A#/Bb", "B"};
    EXPECT_EQ(Names(module, 16), keys);
    EXPECT_EQ(Names(module, 20), keys);
    std::vector<std::string> scales;
    for (const auto& row : BR::Test::DefaultScaleRows())
        scales.push_back(row.name);
    EXPECT_EQ(Names(module, 18), scales);
    EXPECT_EQ(Names(module, 22), scales);
    EXPECT_TRUE(Names(module, 3).empty());

    char text[32];
    driver->SetParameterByName("Scale R", 11.0f);
    module.GetParameterValueText(22, text);
    EXPECT_STREQ(text, "Octaves");
    driver->SetParameterByName("Key L", 6.0f);
    module.GetParameterValueText(16, text);
    EXPECT_STREQ(text, "F#/Gb");
    module.GetParameterValueText(0, text);
    EXPECT_STREQ(text, "Off");
    driver->SetParameterByName("Smoothing R", -0.5f);
    module.GetParameterValueText(14, text);
    EXPECT_STREQ(text, "Off");
    driver->SetParameterByName("Smoothing R", 20.0f);
    module.GetParameterValueText(14, text);
    EXPECT_STRNE(text, "Off");
}

TEST(QuantizerTable, ScaleRowsFollowTheScaleList) {
    // Two scales added behind the default twelve: the limit is 13.
    auto driver = BR::Test::MakeQuantizer({{"Whole Tone", {1, 3, 5, 7, 9, 11}}, {"Fifths", {1, 8}}});
    BrelCorvaneBase& module = driver->Module();
    EXPECT_EQ(module.ParameterTable()[18].maximum, 13.0f);
    EXPECT_EQ(module.GetParameter(23)->Maximum(), 13.0f);
    EXPECT_EQ(Names(module, 22).back(), "Fifths");
    const auto scales = BR::Test::Quantizer(*driver).Scales();
    ASSERT_EQ(scales.size(), 14u);
    EXPECT_EQ(scales[0].mask, 0xAB5);  // Major: semitones 0, 2, 4, 5, 7, 9, 11
    EXPECT_EQ(scales[13].mask, 0x81);

    // Instances keep their own rows: a fresh one knows only what its script host added (nothing
    // without one), and shows "(none)" at a limit of 0 when that is nothing.
    std::unique_ptr<BrelCorvaneBase> bare = BR::CreateModule("quantizer");
    const size_t known = BR::Test::AsQuantizer(*bare).Scales().size();
    EXPECT_EQ(bare->ParameterTable()[18].maximum, known == 0 ? 0.0f : float(known - 1));
    EXPECT_EQ(bare->ParameterTable()[22].maximum, known == 0 ? 0.0f : float(known - 1));
    if (known == 0) {
        EXPECT_EQ(Names(*bare, 18), std::vector<std::string>{"(none)"});
    } else {
        EXPECT_EQ(Names(*bare, 18).size(), known);
    }
    EXPECT_EQ(module.ParameterTable()[18].maximum, 13.0f);
}
