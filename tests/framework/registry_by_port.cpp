// Instances name each other by "OSC Port Offset" (property 64009): the setters act on every instance
// with that offset, the getters on the first, giving 0 or false when none has it.
#include <gtest/gtest.h>

#include "framework/InstanceRegistry.h"
#include "tests/support/ProbeModule.h"

using namespace BR::Test;
namespace Registry = BR::InstanceRegistry;

namespace {
struct ThreeInstances {
    ProbeModule a, b, c;
    ManualHost hostA{a}, hostB{b}, hostC{c};
    ThreeInstances() {
        a.SetTableValue(kOSCPort, 5);
        b.SetTableValue(kOSCPort, 5);
        c.SetTableValue(kOSCPort, 7);
    }
};
}  // namespace

TEST(RegistryByPort, PropertyGivesTheOffset) {
    ThreeInstances t;
    int32_t port = 0;
    ASSERT_EQ(t.c.GetProperty(64009, &port), BR::kNoErr);
    EXPECT_EQ(port, 7);
}

TEST(RegistryByPort, SetReachesEveryMatchGetReadsTheFirst) {
    ThreeInstances t;
    Registry::SetParameterByPort(5, kGain, 0.3f);
    EXPECT_EQ(t.a.GetTableValue(kGain), 0.3f);
    EXPECT_EQ(t.b.GetTableValue(kGain), 0.3f);
    EXPECT_EQ(t.c.GetTableValue(kGain), 0.0f);

    t.a.SetTableValue(kGain, 0.1f);
    t.b.SetTableValue(kGain, 0.2f);
    EXPECT_EQ(Registry::GetParameterByPort(5, kGain), 0.1f);
    EXPECT_EQ(Registry::GetParameterByPort(7, kCutoff), 1000.0f);
}

TEST(RegistryByPort, NoMatchOrNoRowGivesZeroAndChangesNothing) {
    ThreeInstances t;
    t.a.SetTableValue(kGain, 0.1f);
    Registry::SetParameterByPort(9, kGain, 0.7f);
    EXPECT_EQ(t.a.GetTableValue(kGain), 0.1f);
    EXPECT_EQ(t.c.GetTableValue(kGain), 0.0f);
    EXPECT_EQ(Registry::GetParameterByPort(9, kGain), 0.0f);

    Registry::SetParameterByPort(5, kNumProbeRows, 1.0f);  // past the table
    EXPECT_EQ(Registry::GetParameterByPort(5, kNumProbeRows), 0.0f);
    EXPECT_EQ(Registry::GetParameterByPort(5, kNumProbeRows + 40), 0.0f);
}

TEST(RegistryByPort, IndicatorsAreTheStatusBlockBooleans) {
    ThreeInstances t;
    Registry::SetIndicatorByPort(5, 3, true);
    EXPECT_TRUE(t.a.GetStatusBlock()->GUIBoolValues[3]);
    EXPECT_TRUE(t.b.GetStatusBlock()->GUIBoolValues[3]);
    EXPECT_FALSE(t.c.GetStatusBlock()->GUIBoolValues[3]);
    EXPECT_TRUE(Registry::GetIndicatorByPort(5, 3));
    EXPECT_FALSE(Registry::GetIndicatorByPort(7, 3));
    EXPECT_FALSE(Registry::GetIndicatorByPort(9, 3));

    t.a.GetStatusBlock()->GUIBoolValues[7] = true;
    EXPECT_TRUE(Registry::GetIndicatorByPort(5, 7));  // the first: a
    Registry::SetIndicatorByPort(5, 8, true);         // there are eight, 0 to 7
    EXPECT_FALSE(Registry::GetIndicatorByPort(5, 8));
    EXPECT_FALSE(Registry::GetIndicatorByPort(5, -1));
}
