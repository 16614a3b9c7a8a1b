// A new value enters through UpdateParameterNormalizedValue on the linear taper; an unknown
// identifier answers -20001.
#include <gtest/gtest.h>

#include "tests/support/ProbeModule.h"

using namespace BR::Test;

TEST(UpdateParameterNormalizedValue, UnknownIdentifierIsUnknownParameter) {
    ProbeModule module;
    ManualHost host(module);
    EXPECT_EQ(module.UpdateParameterNormalizedValue("No Such Row", 0.5), -20001);
}

TEST(UpdateParameterNormalizedValue, LinearTaperOverTheWholeRangeWhateverTheUnit) {
    ProbeModule module;
    ManualHost host(module);
    EXPECT_EQ(module.UpdateParameterNormalizedValue("Gain", 0.75), BR::kNoErr);
    EXPECT_FLOAT_EQ(module.GetTableValue(kGain), 0.5f);
    // The host's object of a frequency row is linear too: 0.5 is the middle of 20..20000.
    module.UpdateParameterNormalizedValue("Cutoff", 0.5);
    EXPECT_FLOAT_EQ(module.GetTableValue(kCutoff), 10010.0f);
    // Values beyond the taper are clamped to its ends.
    module.SetTableValue(kGain, 5.0f);
    EXPECT_EQ(module.GetTableValue(kGain), 1.0f);
}
