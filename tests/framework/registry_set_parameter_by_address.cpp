// The lookup behind OSC addresses that name a module: by global id when no module name is given; by
// short name and local id; or every instance of a name for a negative id. The parameter comes from
// its path name or its index, plus the index offset, and must lie inside the table.
#include <gtest/gtest.h>

#include "framework/InstanceRegistry.h"
#include "tests/support/ProbeModule.h"

using namespace BR::Test;
using BR::InstanceRegistry::SetParameterByAddress;

namespace {
struct Instances {
    ProbeModule a, b, c;  // global ids 1, 2, 3
    ManualHost hostA{a}, hostB{b}, hostC{c};
};
}  // namespace

TEST(RegistryByAddress, NullModuleNameSelectsByGlobalId) {
    Instances t;
    EXPECT_TRUE(SetParameterByAddress({nullptr, 2, "Gain", 0, 0}, 0.5f));
    EXPECT_EQ(t.a.GetTableValue(kGain), 0.0f);
    EXPECT_EQ(t.b.GetTableValue(kGain), 0.5f);
    EXPECT_EQ(t.c.GetTableValue(kGain), 0.0f);
    EXPECT_FALSE(SetParameterByAddress({nullptr, 4, "Gain", 0, 0}, 0.5f));
}

TEST(RegistryByAddress, NameAndLocalIdSelectOne) {
    Instances t;
    EXPECT_TRUE(SetParameterByAddress({"CRProbeModule", 3, "Gain", 0, 0}, -0.5f));
    EXPECT_EQ(t.c.GetTableValue(kGain), -0.5f);
    EXPECT_EQ(t.a.GetTableValue(kGain), 0.0f);
    EXPECT_FALSE(SetParameterByAddress({"CRDC", 1, "Gain", 0, 0}, 0.5f));  // no such instance
}

TEST(RegistryByAddress, NegativeIdSelectsEveryInstanceOfTheName) {
    Instances t;
    EXPECT_TRUE(SetParameterByAddress({"CRProbeModule", -1, "SmoothingL", 0, 0}, 20.0f));
    EXPECT_EQ(t.a.GetTableValue(kSmoothing), 20.0f);
    EXPECT_EQ(t.b.GetTableValue(kSmoothing), 20.0f);
    EXPECT_EQ(t.c.GetTableValue(kSmoothing), 20.0f);
}

TEST(RegistryByAddress, IndexAndOffset) {
    Instances t;
    // No name: the index, plus the offset.
    EXPECT_TRUE(SetParameterByAddress({nullptr, 1, nullptr, kGain, 5}, 300.0f));
    EXPECT_EQ(t.a.GetTableValue(kCutoff), 300.0f);
    // A path name plus an offset: "Gain" + 4 is "Smoothing L".
    EXPECT_TRUE(SetParameterByAddress({nullptr, 1, "Gain", 0, 4}, -30.0f));
    EXPECT_EQ(t.a.GetTableValue(kSmoothing), -30.0f);
    // Outside the table, or an unknown path: nothing is set.
    EXPECT_FALSE(SetParameterByAddress({nullptr, 1, nullptr, kNumProbeRows, 0}, 1.0f));
    EXPECT_FALSE(SetParameterByAddress({nullptr, 1, nullptr, 0, -1}, 1.0f));  // never Master Bypass
    EXPECT_FALSE(SetParameterByAddress({nullptr, 1, "NoSuchRow", 0, 0}, 1.0f));
    EXPECT_FALSE(SetParameterByAddress({nullptr, 1, "Gain ", 0, 0}, 1.0f));  // paths have no blanks
}
