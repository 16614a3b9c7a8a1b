// Parameter index 0 is always Master Bypass, and its changes never reach the OSC helper or the
// notification receivers; table rows reach both, with their table index.
#include <gtest/gtest.h>

#include "framework/InstanceRegistry.h"
#include "tests/support/ProbeModule.h"

using namespace BR::Test;

namespace {
struct Heard {
    std::vector<std::pair<int32_t, float>> osc;
    std::vector<int32_t> ports;
};
Heard* heard = nullptr;

class RecordingServices : public BR::ModuleServices {
public:
    void Start() override {}
    void Stop() override {}
    void SetOSCPort(int32_t port) override { heard->ports.push_back(port); }
    void ParameterChanged(int32_t tableIndex, float value) override {
        heard->osc.push_back({tableIndex, value});
    }
    void HandleMIDI(const BR::MessageQueueItem&) override {}
    void* OSCHelperPointer() override { return this; }
};

struct Receiver : IBrelParameterNotificationReceiver {
    void ParameterChanged(BrelCorvaneBase*, int32_t tableIndex, float value) override {
        got.push_back({tableIndex, value});
    }
    std::vector<std::pair<int32_t, float>> got;
};
}  // namespace

TEST(MasterBypass, IsIndexZeroAndNeverNotifies) {
    Heard record;
    heard = &record;
    BR::SetModuleServicesFactory([](BrelCorvaneBase&) -> std::unique_ptr<BR::ModuleServices> {
        return std::make_unique<RecordingServices>();
    });
    Receiver receiver;
    BR::InstanceRegistry::AddReceiver(&receiver);
    {
        ProbeModule module;
        ManualHost host(module);
        EXPECT_EQ(module.GetParameter(0)->Identifier(), "MasterBypassID");
        EXPECT_EQ(module.GetParameter(0)->Name(), "Master Bypass");

        module.SetParameterValue(0, 1.0f);
        module.UpdateParameterNormalizedValue("MasterBypassID", 0.0);
        EXPECT_TRUE(record.osc.empty());
        EXPECT_TRUE(receiver.got.empty());

        module.SetParameterValue(1 + kGain, 0.25f);
        ASSERT_EQ(record.osc.size(), 1u);
        EXPECT_EQ(record.osc[0], std::make_pair(int32_t(kGain), 0.25f));
        ASSERT_EQ(receiver.got.size(), 1u);
        EXPECT_EQ(receiver.got[0], std::make_pair(int32_t(kGain), 0.25f));
    }
    BR::InstanceRegistry::RemoveReceiver(&receiver);
    BR::SetModuleServicesFactory(nullptr);
    heard = nullptr;
}

TEST(MasterBypass, OSCPortOffsetOpensBasePlusOffsetAndZeroCloses) {
    Heard record;
    heard = &record;
    BR::SetModuleServicesFactory([](BrelCorvaneBase&) -> std::unique_ptr<BR::ModuleServices> {
        return std::make_unique<RecordingServices>();
    });
    {
        ProbeModule module;
        ManualHost host(module);
        BR::SetOSCBasePort(7000);
        module.SetParameterValue(1 + kOSCPort, 12.7f);
        module.SetParameterValue(1 + kOSCPort, 0.0f);
        EXPECT_EQ(record.ports, (std::vector<int32_t>{7012, 0}));
        int32_t offset = -1;
        module.SetParameterValue(1 + kOSCPort, 5.0f);
        ASSERT_EQ(module.GetProperty(BR::kPropertyOSCPortOffset, &offset), BR::kNoErr);
        EXPECT_EQ(offset, 5);
        // A write of 64008 re-applies the value, which reopens the server.
        const uint8_t one = 1;
        EXPECT_EQ(module.SetProperty(BR::kPropertyReopenOSC, &one, 1), BR::kNoErr);
        EXPECT_EQ(record.ports.back(), 7005);
        EXPECT_EQ(record.ports.size(), 4u);
    }
    BR::SetModuleServicesFactory(nullptr);
    heard = nullptr;
}
