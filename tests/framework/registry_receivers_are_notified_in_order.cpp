// Receivers hear every change of a table parameter of any instance, in the order they were added,
// until they remove themselves; Master Bypass reaches none of them.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "framework/InstanceRegistry.h"
#include "tests/support/ProbeModule.h"

using namespace BR::Test;

namespace {
std::vector<std::string> heard;

struct Receiver : IBrelParameterNotificationReceiver {
    explicit Receiver(std::string name_) : name(std::move(name_)) {}
    void ParameterChanged(BrelCorvaneBase* instance, int32_t tableIndex, float value) override {
        (void)instance;
        heard.push_back(name + ":" + std::to_string(tableIndex) + "=" + std::to_string(int(value * 10)));
    }
    std::string name;
};
}  // namespace

TEST(RegistryReceivers, CalledInOrderUntilRemoved) {
    heard.clear();
    ProbeModule a, b;
    ManualHost hostA(a), hostB(b);
    Receiver first("first"), second("second");
    BR::InstanceRegistry::AddReceiver(&first);
    BR::InstanceRegistry::AddReceiver(&second);

    a.SetTableValue(kGain, 0.5f);
    b.SetTableValue(kCutoff, 100.0f);
    a.SetParameterValue(0, 1.0f);  // Master Bypass
    EXPECT_EQ(heard, (std::vector<std::string>{"first:0=5", "second:0=5", "first:5=1000", "second:5=1000"}));

    BR::InstanceRegistry::RemoveReceiver(&first);
    heard.clear();
    a.SetTableValue(kGain, 0.2f);
    BR::InstanceRegistry::RemoveReceiver(&second);
    b.SetTableValue(kGain, 0.2f);
    EXPECT_EQ(heard, (std::vector<std::string>{"second:0=2"}));
}
