// Bundles are taken apart in order; a Soundplane frame fills the process-wide touch table, and a
// bundle whose first message is a touch, not a frame, is an ordinary bundle.
#include <gtest/gtest.h>

#include "RemoteRig.h"

using namespace BR::Test;

namespace {
void SendBundle(const UdpPeer& client, int port,
                const std::function<void(osc::OutboundPacketStream&)>& fill) {
    char buffer[2048];
    osc::OutboundPacketStream s(buffer, sizeof buffer);
    s << osc::BeginBundleImmediate;
    fill(s);
    s << osc::EndBundle;
    client.SendRaw(port, s.Data(), s.Size());
}
void Touch(osc::OutboundPacketStream& s, const char* address, float z) {
    s << osc::BeginMessage(address) << 0.25f << 0.5f << z << 60.0f << osc::EndMessage;
}
}  // namespace

TEST(OSCMessages, BundleStartingWithATouchIsAnOrdinaryBundle) {
    auto driver = MakeRemoteDriver("dc", 17190, 1);
    ASSERT_TRUE(WaitListening(*driver, 17191));
    for (auto& touch : BR::touchTable) {
        touch.active.store(0);
        for (auto& v : touch.values)
            v.store(0.0f);
    }
    UdpPeer client;
    SendBundle(client, 17191, [&](osc::OutboundPacketStream& s) {
        Touch(s, "/t3d/tch1", 0.9f);
        s << osc::BeginMessage("/set") << osc::int32(0) << 0.5f << osc::EndMessage;
        s << osc::BeginMessage("/ping") << client.Client().c_str() << "/p" << osc::EndMessage;
    });
    EXPECT_NE(client.Receive(), "");
    EXPECT_EQ(driver->Module().GetTableValue(0), 0.5f);
    EXPECT_EQ(BR::touchTable[0].active.load(), 0);
    EXPECT_EQ(BR::touchTable[0].values[2].load(), 0.0f);

    // A frame: touch 3 lands in entry 2; a zero third value marks a released touch; numbers
    // outside 1 to 16 are passed over.
    SendBundle(client, 17191, [&](osc::OutboundPacketStream& s) {
        s << osc::BeginMessage("/t3d/frm") << osc::int32(1) << osc::int32(0) << osc::EndMessage;
        Touch(s, "/t3d/tch3", 0.8f);
        Touch(s, "/t3d/tch4", 0.0f);
        Touch(s, "/t3d/tch17", 0.7f);
    });
    BR::OSCHelper* osc = BR::OSCHelperOf(driver->Module());
    ASSERT_TRUE(WaitFor([&] { return BR::touchTable[2].active.load() == 1; }));
    EXPECT_EQ(BR::touchTable[2].values[0].load(), 0.25f);
    EXPECT_EQ(BR::touchTable[2].values[2].load(), 0.8f);
    EXPECT_EQ(BR::touchTable[2].values[3].load(), 60.0f);
    ASSERT_TRUE(WaitFor([&] { return BR::touchTable[3].values[3].load() == 60.0f; }));
    EXPECT_EQ(BR::touchTable[3].active.load(), 0);
    EXPECT_NE(osc->MessageHistory(osc->MessageHistoryIndex()).find("/t3d/tch4"), std::string::npos);
}

TEST(OSCMessages, HistoryKeepsTheLastFiveFromSlotOne) {
    auto driver = MakeRemoteDriver("dc", 17195, 1);
    ASSERT_TRUE(WaitListening(*driver, 17196));
    BR::OSCHelper* osc = BR::OSCHelperOf(driver->Module());
    UdpPeer client;
    client.Send(17196, "/set", [](osc::OutboundPacketStream& s) { s << osc::int32(0) << 0.5f; });
    ASSERT_TRUE(WaitFor([&] { return osc->MessageHistoryIndex() == 1; }));
    EXPECT_NE(osc->MessageHistory(1).find("/set"), std::string::npos);
    for (int i = 0; i < 5; ++i)
        client.Send(17196, "/nothing");
    ASSERT_TRUE(WaitFor(
        [&] { return osc->MessageHistoryIndex() == 1 && osc->MessageHistory(1).find("/nothing") == 1; }));
}
