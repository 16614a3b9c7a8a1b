// The event modules' sender threads (the Learner's notifications, CV To OSC's values, CV To MIDI's
// messages) send everything written before they are stopped: a render that ends right after its last
// change stops them at once, and that change must still arrive (an offline patch once lost the Learner's
// last notifications this way whenever its thread had not woken before the stop).
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>

#include "modules/events/MIDISender.h"
#include "modules/events/OscNotifySender.h"
#include "tests/modules/events/CVToOSCRig.h"
#include "tests/modules/events/LearnerRig.h"

namespace {

constexpr int kItems = 40;

std::atomic<int> midiSent{0};
std::atomic<int> lastData2{-1};

class CountingDevice : public BR::MIDIOutputDevice {
public:
    void Send(const uint8_t* bytes, int32_t) override {
        lastData2.store(bytes[2]);
        midiSent.fetch_add(1);
    }
};

std::unique_ptr<BR::MIDIOutputDevice> OpenCounting(const std::string& name) {
    if (name != "Counting Port") return nullptr;
    return std::make_unique<CountingDevice>();
}

}  // namespace

TEST(SendersOnStop, LearnerNotificationsWrittenBeforeStopAllArrive) {
    constexpr int kPort = 7652;
    BR::Test::UdpListener listener(kPort);
    ASSERT_TRUE(listener.Bound());
    for (int round = 0; round < 3; ++round) {
        BrelCorvaneLearner::OscNotifySender sender;
        sender.SetDestination(0x7F000001, kPort);
        sender.Start();
        for (int i = 0; i < kItems; ++i)
            ASSERT_TRUE(sender.Write(("/n/" + std::to_string(i)).c_str(), float(i)));
        sender.Stop();
        EXPECT_EQ(sender.Sent(), uint32_t(kItems));
        const auto got = listener.Receive(kItems, 2000);
        ASSERT_EQ(got.size(), size_t(kItems)) << "round " << round;
        for (int i = 0; i < kItems; ++i) {
            EXPECT_EQ(got[size_t(i)].path, "/n/" + std::to_string(i));
            EXPECT_EQ(got[size_t(i)].value, float(i));
        }
    }
}

TEST(SendersOnStop, CVToOSCValuesPostedBeforeStopAllArrive) {
    constexpr int kPort = 7654;
    BR::InstallOSCTransmitter();
    BR::Test::OSCListener listener(kPort);
    ASSERT_TRUE(listener.Bound());
    for (int round = 0; round < 3; ++round) {
        BR::OSCSender sender;
        sender.SetPath(0, "/cv/left", 8);
        sender.SetTarget(0x7F000001, kPort, true);
        sender.Start();
        for (int i = 0; i < kItems; ++i)
            ASSERT_TRUE(sender.Post(0, float(i)));
        sender.Stop();
        EXPECT_EQ(sender.PacketsSent(), uint32_t(kItems));
        for (int i = 0; i < kItems; ++i)
            ASSERT_EQ(listener.Receive(), "/cv/left " + std::to_string(i)) << "round " << round;
    }
}

TEST(SendersOnStop, CVToMIDIMessagesWrittenBeforeStopAllLeave) {
    BR::SetMIDIOutputOpener(&OpenCounting);
    for (int round = 0; round < 3; ++round) {
        midiSent = 0;
        lastData2 = -1;
        BR::MIDISender sender;
        sender.Open("Counting Port");
        ASSERT_TRUE(sender.HasDevice());
        sender.Start();
        for (int i = 0; i < kItems; ++i)
            ASSERT_TRUE(sender.Write(uint64_t(i), 0x80, 60, uint8_t(i)));
        sender.Stop();
        EXPECT_EQ(midiSent.load(), kItems) << "round " << round;
        EXPECT_EQ(lastData2.load(), kItems - 1);
    }
    BR::SetMIDIOutputOpener(nullptr);
}
