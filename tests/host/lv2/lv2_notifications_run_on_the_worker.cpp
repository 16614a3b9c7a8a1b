// With a host worker, a port change is stored on the audio thread and its notifications (registry
// receivers, OSC echo) run in the worker; without one they run in the block, as the framework's setter.
#include <gtest/gtest.h>

#include "framework/InstanceRegistry.h"
#include "tests/host/lv2/support/Lv2TestHost.h"

namespace {

struct Receiver : IBrelParameterNotificationReceiver {
    std::vector<std::pair<int32_t, float>> heard;
    void ParameterChanged(BrelCorvaneBase*, int32_t tableIndex, float value) override {
        heard.emplace_back(tableIndex, value);
    }
};

struct Registered {
    Receiver receiver;
    Registered() { BR::InstanceRegistry::AddReceiver(&receiver); }
    ~Registered() { BR::InstanceRegistry::RemoveReceiver(&receiver); }
};

}  // namespace

TEST(Lv2Notifications, WorkerRunsThemAfterTheBlock) {
    BR::Test::Lv2TestHost host(BR::Test::CorvaneLibrary(), "urn:brelmont:corvane:dc");
    Registered r;
    host.Control("output_positive_l") = 0.5f;
    host.Control("smoothing_r") = 10.0f;
    host.Control("enabled") = 0.0f;
    host.Run(32);
    EXPECT_EQ(host.Module().GetTableValue(0), 0.5f);  // stored for this block
    EXPECT_TRUE(r.receiver.heard.empty());            // but nobody told yet
    EXPECT_EQ(host.ScheduledWork(), 1u);              // one request for all changes of the block
    host.RunWork();
    ASSERT_EQ(r.receiver.heard.size(), 2u);  // Master Bypass never notifies
    EXPECT_EQ(r.receiver.heard[0], std::make_pair(0, 0.5f));
    EXPECT_EQ(r.receiver.heard[1], std::make_pair(12, 10.0f));
    host.Run(32);
    host.RunWork();
    EXPECT_EQ(r.receiver.heard.size(), 2u);  // nothing changed, nothing told
    EXPECT_EQ(host.ScheduledWork(), 1u);
}

TEST(Lv2Notifications, WithoutWorkerTheyRunInTheBlock) {
    BR::Test::HostOptions options;
    options.worker = false;
    BR::Test::Lv2TestHost host(BR::Test::CorvaneLibrary(), "urn:brelmont:corvane:dc", options);
    Registered r;
    host.Control("multiplier_r") = -1.0f;
    host.Run(32);
    ASSERT_EQ(r.receiver.heard.size(), 1u);
    EXPECT_EQ(r.receiver.heard[0], std::make_pair(7, -1.0f));
}
