// The Step LFO's 321 rows in their places, the value names of its indexed rows, and the "Off" texts.
#include <gtest/gtest.h>

#include "StepLFORig.h"

TEST(StepLFOTable, RowsInPlace) {
    auto driver = BR::Test::MakeDriver("steplfo");
    const BrelCorvaneBase& module = driver->Module();
    ASSERT_EQ(module.NumTableParameters(), 321);
    const BR::ParameterDefinition* t = module.ParameterTable();
    const std::pair<int, const char*> rows[] = {
        {0, "OSC Port Offset"},    {1, "Speed Mode L"},      {4, "Sync L"},
        {21, "Swing Type L"},      {22, "Speed Mode R"},     {42, "Swing Type R"},
        {43, "Step 1 L"},          {138, "Step 96 L"},       {139, "Step 1 R"},
        {234, "Step 96 R"},        {235, "Reset By Note L"}, {239, "Trigger Note Max L"},
        {240, "Reset By Note R"},  {245, "Signal Input L"},  {247, "Reset Input L"},
        {248, "Signal Input R"},   {251, "Gate Length L"},   {252, "Gate Length R"},
        {253, "Random Enable L"},  {258, "Randomness L"},    {259, "Random Enable R"},
        {264, "Randomness R"},     {265, "DAC Bit 1 L"},     {288, "DAC Bit 24 L"},
        {289, "DAC Bit 1 R"},      {312, "DAC Bit 24 R"},    {313, "DAC Enable L"},
        {316, "DAC Range Mode L"}, {317, "DAC Enable R"},    {320, "DAC Range Mode R"},
    };
    for (const auto& [index, name] : rows)
        EXPECT_STREQ(t[index].name, name) << index;
    EXPECT_EQ(t[245].defaultValue, 1.0f);
    EXPECT_EQ(t[248].defaultValue, 2.0f);
    EXPECT_EQ(t[4].defaultValue, 2.0f);
    EXPECT_EQ(t[2].minimum, 0.05f);
    EXPECT_EQ(t[256].defaultValue, 8.0f);
    EXPECT_EQ(t[315].minimum, 1.0f);
    EXPECT_EQ(t[316].defaultValue, 1.0f);
    EXPECT_EQ(driver->Module().GetNumberOfParameters(), 322);  // every name is unique
}

TEST(StepLFOTable, ValueTexts) {
    auto driver = BR::Test::MakeDriver("steplfo");
    BrelCorvaneBase& module = driver->Module();
    char text[32];
    auto textOf = [&](const char* row, float value) {
        StepLFOTest::Set(*driver, row, value);
        module.GetParameterValueText(driver->ParameterIndexByName(row) - 1, text);
        return std::string(text);
    };
    EXPECT_EQ(textOf("Sync R", 4.0f), "Trig Free");
    EXPECT_EQ(textOf("Sync L", 5.0f), "Trig Tempo");
    EXPECT_EQ(textOf("Beat Divisor L", 5.0f), "1/32");
    EXPECT_EQ(textOf("Speed Mode L", 0.0f), "Cycle");
    EXPECT_EQ(textOf("Speed Multiplier R", 0.0f), "0.1");
    EXPECT_EQ(textOf("Length Mode L", 1.0f), "Start/End");
    EXPECT_EQ(textOf("Interpolation R", 1.0f), "Linear");
    EXPECT_EQ(textOf("Input Mode L", 2.0f), "Combine");
    EXPECT_EQ(textOf("Swing Type L", 1.0f), "8");
    EXPECT_EQ(textOf("Reset By Note R", 4.0f), "Closest");
    EXPECT_EQ(textOf("Trigger Input L", 0.0f), "Off");
    EXPECT_EQ(textOf("Reset Input R", 6.0f), "6");
    EXPECT_EQ(textOf("Random Mode L", 1.0f), "Rotate Left");
    EXPECT_EQ(textOf("DAC Scale Mode R", 2.0f), "Dynamic");
    EXPECT_EQ(textOf("DAC Range Mode L", 0.0f), "Unipolar");
    EXPECT_EQ(textOf("Range Mode R", 1.0f), "Bipolar");
    EXPECT_EQ(textOf("Smoothing R", 0.5f), "Off");
    EXPECT_EQ(textOf("OSC Port Offset", 0.0f), "Off");
    for (int32_t row = 0; row < 321; ++row)
        EXPECT_EQ(module.GetParameterFlags(row) != 0, row == 0 || row == 19 || row == 40) << row;
    EXPECT_STREQ(module.GetModuleName(), "Corvane Step LFO");
    EXPECT_STREQ(module.GetGuiScriptName(), "gui_steplfo.lua");
}
