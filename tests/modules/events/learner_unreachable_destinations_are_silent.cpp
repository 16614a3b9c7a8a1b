// Notifications to a destination that cannot be reached are lost silently, never stalling the thread
// that changes parameters: a name the dotted conversion cannot read, a text without a port, a listener
// that goes away (and a new one on the port receives what follows).
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "LearnerRig.h"

using BR::Test::LearnerTest;

namespace {
constexpr int kPort = 7620;

void SetDestination(BrelCorvaneBase& learner, const std::string& text) {
    ASSERT_EQ(learner.SetProperty(64110, text.c_str(), uint32_t(text.size() + 1)), BR::kNoErr);
}

// Waits until the sender has taken every item from its ring.
bool Drained(const BrelCorvaneLearner::BrelCorvane& learner) {
    const auto& s = learner.Sender();
    for (int i = 0; i < 3000; ++i) {
        if ((s.ReadIndex() + 1) % 64 == s.WriteIndex()) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return false;
}
}  // namespace

TEST_F(LearnerTest, UnreadableAddressOrNoPortSendsNothing) {
    BR::Test::UdpListener listener(kPort);
    ASSERT_TRUE(listener.Bound());
    auto dc = BR::Test::MakeDriver("dc");
    auto driver = BR::Test::MakeDriver("learner");
    auto& learner = static_cast<BrelCorvaneLearner::BrelCorvane&>(driver->Module());
    learner.SetTableValue(1, 3.0f);
    SetDestination(learner, "no.such.host:" + std::to_string(kPort));
    for (int i = 0; i < 200; ++i)  // far more than the ring holds
        dc->Module().SetTableValue(0, float(i % 100) / 100.0f);
    EXPECT_TRUE(Drained(learner));
    SetDestination(learner, "127.0.0.1");
    dc->Module().SetTableValue(0, 0.5f);
    EXPECT_TRUE(Drained(learner));
    EXPECT_TRUE(listener.Receive(1, 300).empty());
    // A reachable destination afterwards works at once.
    SetDestination(learner, "127.0.0.1:" + std::to_string(kPort));
    dc->Module().SetTableValue(0, 0.25f);
    const auto got = listener.Receive(1, 1000);
    ASSERT_EQ(got.size(), 1u);
    EXPECT_EQ(got[0].value, 0.25f);
}

TEST_F(LearnerTest, VanishedListener) {
    auto dc = BR::Test::MakeDriver("dc");
    auto driver = BR::Test::MakeDriver("learner");
    auto& learner = static_cast<BrelCorvaneLearner::BrelCorvane&>(driver->Module());
    SetDestination(learner, "127.0.0.1:" + std::to_string(kPort + 1));
    learner.SetTableValue(1, 2.0f);
    {
        BR::Test::UdpListener listener(kPort + 1);
        ASSERT_TRUE(listener.Bound());
        dc->Module().SetTableValue(0, 0.5f);
        ASSERT_EQ(listener.Receive(1, 1000).size(), 1u);
    }
    // Nobody listens now: the sends fail (refused) and are swallowed; rendering goes on.
    for (int i = 0; i < 100; ++i) {
        dc->Module().SetTableValue(0, float(i) / 100.0f);
        BR::Test::RenderFrames(*dc, 64, 64);
        if (i % 10 == 0) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    EXPECT_TRUE(Drained(learner));
    BR::Test::UdpListener again(kPort + 1);
    ASSERT_TRUE(again.Bound());
    dc->Module().SetTableValue(0, 0.125f);
    const auto got = again.Receive(1, 1000);
    ASSERT_EQ(got.size(), 1u);
    EXPECT_EQ(got[0].path, "/brel/CRDC/1/0");
    EXPECT_EQ(got[0].value, 0.125f);
}
