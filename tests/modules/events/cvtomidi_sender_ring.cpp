// The sender's ring: before its thread has read anything it takes 64 messages and wraps over the start;
// once the reader is in the ring, 63 unread messages are the most it holds. Without a device nothing is
// queued, and an unknown device name opens none.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "modules/events/MIDISender.h"

namespace {

std::atomic<bool> release{false};
std::atomic<int> sentCount{0};

// Holds the sender thread inside its first Send until `release`.
class HoldingDevice : public BR::MIDIOutputDevice {
public:
    void Send(const uint8_t*, int32_t) override {
        sentCount.fetch_add(1);
        while (!release.load())
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
};

std::unique_ptr<BR::MIDIOutputDevice> OpenHolding(const std::string& name) {
    if (name != "Test Port") return nullptr;
    return std::make_unique<HoldingDevice>();
}

struct OpenerScope {
    OpenerScope() { BR::SetMIDIOutputOpener(&OpenHolding); }
    ~OpenerScope() { BR::SetMIDIOutputOpener(nullptr); }
};

}  // namespace

TEST(CVToMIDISender, UnreadRingTakes64AndWraps) {
    OpenerScope scope;
    BR::MIDISender sender;                        // not started: nothing reads
    EXPECT_FALSE(sender.Write(0, 0x90, 60, 64));  // no device yet
    sender.Open("No Such Port");
    EXPECT_FALSE(sender.HasDevice());
    sender.Open("Test Port");
    ASSERT_TRUE(sender.HasDevice());
    for (int i = 0; i < 64; ++i)
        EXPECT_TRUE(sender.Write(uint64_t(i), 0xB0, 1, uint8_t(i))) << i;
    EXPECT_EQ(sender.WriteIndex(), 0);
    EXPECT_EQ(sender.ReadIndex(), -1);
    // The 65th lands on the first entry again.
    EXPECT_TRUE(sender.Write(64, 0xB0, 1, 99));
    EXPECT_EQ(sender.EntryAt(0).bytes[2], 99);
    EXPECT_EQ(sender.Overflows(), 0u);
}

TEST(CVToMIDISender, ReaderInTheRingLeaves63) {
    OpenerScope scope;
    release = false;
    sentCount = 0;
    BR::MIDISender sender;
    sender.Open("Test Port");
    sender.Start();
    ASSERT_TRUE(sender.Write(0, 0x90, 60, 64));
    // Wait until the thread has taken that message and is held in Send.
    for (int i = 0; i < 2000 && sentCount.load() == 0; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    ASSERT_EQ(sentCount.load(), 1);
    EXPECT_EQ(sender.ReadIndex(), 0);
    int accepted = 0;
    while (sender.Write(1, 0xB0, 1, 2) && accepted < 100)
        ++accepted;
    EXPECT_EQ(accepted, 63);
    EXPECT_EQ(sender.Overflows(), 1u);
    release = true;
    for (int i = 0; i < 2000 && sentCount.load() < 64; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    EXPECT_EQ(sentCount.load(), 64);
    sender.Stop();
}
