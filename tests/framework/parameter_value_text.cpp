// Value texts: the minus comes first then the size-dependent format; indexed rows show their value
// names; booleans read "Off"/"On"; display strings replace the number.
#include <gtest/gtest.h>

#include "framework/ParameterModel.h"
#include "tests/support/ProbeModule.h"

using namespace BR::Test;

namespace {
std::string Text(ProbeModule& module, int32_t row, float value) {
    module.SetTableValue(row, value);
    char out[BR::kValueTextBytes];
    module.GetParameterValueText(row, out);
    return out;
}
std::string Format(float value) {
    char out[BR::kValueTextBytes];
    BR::FormatValueNumber(value, out, sizeof out);
    return out;
}
}  // namespace

TEST(ParameterValueText, SmallNegativeReadsMinusThenThreeDecimals) {
    EXPECT_EQ(Format(-0.0005f), "-0.001");
}

TEST(ParameterValueText, DecimalsFollowTheSize) {
    EXPECT_EQ(Format(9.9994f), "9.999");
    EXPECT_EQ(Format(10.0f), "10.00");
    EXPECT_EQ(Format(99.5f), "99.50");
    EXPECT_EQ(Format(100.0f), "100.0");
    EXPECT_EQ(Format(999.94f), "999.9");
    EXPECT_EQ(Format(1000.0f), "1000");
    EXPECT_EQ(Format(-1234.4f), "-1234");
}

TEST(ParameterValueText, RowsOfTheProbe) {
    ProbeModule module;
    ManualHost host(module);
    EXPECT_EQ(Text(module, kGain, -0.5f), "-0.500");
    EXPECT_EQ(Text(module, kMode, 1.0f), "Tempo");
    EXPECT_EQ(Text(module, kMode, 1.9f), "Tempo");  // truncated to an integer
    // A value name longer than 23 characters falls back to the number.
    EXPECT_EQ(Text(module, kMode, 2.0f), "2");
    EXPECT_EQ(Text(module, kSwitch, 0.0f), "Off");
    EXPECT_EQ(Text(module, kSwitch, 1.0f), "On");
    EXPECT_EQ(Text(module, kOSCPort, 0.0f), "Off");
    EXPECT_EQ(Text(module, kOSCPort, 12.0f), "12");
    EXPECT_EQ(Text(module, kSmoothing, 0.5f), "Off");
    EXPECT_EQ(Text(module, kSmoothing, -0.5f), "Off");
    EXPECT_EQ(Text(module, kSmoothing, 0.75f), "0.750");
    EXPECT_EQ(Text(module, kCutoff, 440.0f), "440.0");
}

TEST(ParameterValueText, UnitTexts) {
    EXPECT_STREQ(BR::UnitText(BR::kUnitMilliseconds), "ms");
    EXPECT_STREQ(BR::UnitText(BR::kUnitFrequency), "Hz");
    EXPECT_STREQ(BR::UnitText(BR::kUnitPercent), "%");
    EXPECT_STREQ(BR::UnitText(BR::kUnitSeconds), "seconds");
    EXPECT_STREQ(BR::UnitText(BR::kUnitCents), "cents");
    EXPECT_STREQ(BR::UnitText(BR::kUnitDecibels), "dB");
    EXPECT_STREQ(BR::UnitText(BR::kUnitPan), "L/R");
    EXPECT_STREQ(BR::UnitText(BR::kUnitTempo), "BPM");
    EXPECT_STREQ(BR::UnitText(BR::kUnitBeats), "beats");
    EXPECT_STREQ(BR::UnitText(BR::kUnitGeneric), "");
    EXPECT_STREQ(BR::UnitText(BR::kUnitIndexed), "");
    EXPECT_STREQ(BR::UnitText(5), "");  // a gap in the numbering shows no text
}
