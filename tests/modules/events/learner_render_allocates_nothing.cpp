// Rendering with learned controllers allocates nothing: the table's lookups under the registry lock,
// the parameter setter, and the notification written into the sender's ring and sent by its thread; the
// Learner's own pass-through neither.
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "LearnerRig.h"
#include "tests/support/AllocationCounter.h"

using BR::Test::LearnerTest;

namespace {
constexpr int kPort = 7630;
}

TEST_F(LearnerTest, RenderWithMappingsAllocatesNothing) {
    BR::Test::UdpListener listener(kPort);
    ASSERT_TRUE(listener.Bound());
    auto dc = BR::Test::MakeDriver("dc");
    auto driver = BR::Test::MakeDriver("learner");
    BrelCorvaneBase& learner = driver->Module();
    const std::string destination = "127.0.0.1:" + std::to_string(kPort);
    learner.SetProperty(64110, destination.c_str(), uint32_t(destination.size() + 1));
    learner.SetTableValue(1, 1.0f);  // "Long", the form with most to build
    BR::Test::Learn(*dc, "Output Positive L", *dc, {0xB0, 7, 0});
    BR::Test::Learn(*dc, "Output Symmetric R", *dc, {0xD0, 0});
    listener.Receive(8, 300);

    const uint32_t block = 128;
    std::vector<float> in(block, 0.5f), outL(block), outR(block), thruL(block), thruR(block);
    const float* inputs[2] = {in.data(), in.data()};
    float* outputs[2] = {outL.data(), outR.data()};
    float* thru[2] = {thruL.data(), thruR.data()};
    uint8_t events[2][3] = {{0xB0, 7, 0}, {0xD0, 0, 0}};
    const BR::TimedMidi midi[2] = {{3, 3, events[0]}, {70, 2, events[1]}};
    dc->Process(inputs, outputs, block, midi, 2);
    listener.Receive(8, 300);  // what learning and this first block sent
    uint64_t allocations = 0;
    {
        BR::Test::AllocationScope scope;
        for (int b = 0; b < 40; ++b) {
            events[0][2] = uint8_t(b * 3);
            events[1][1] = uint8_t(127 - b * 3);
            dc->Process(inputs, outputs, block, midi, 2);
            driver->Process(inputs, thru, block, nullptr, 0);
            // At the pace of a host (a block of 128 frames lasts 2.7 ms), which the sender keeps up with.
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
        allocations = scope.Count();
    }
    EXPECT_EQ(allocations, 0u);
    EXPECT_FLOAT_EQ(BR::Test::Value(*dc, "Output Positive L"), 39 * 3 * 0.007874016f);
    EXPECT_EQ(thruL, in);
    EXPECT_EQ(thruR, in);
    // Each message changed one parameter, and each change was sent (the ring is far from full at
    // two changes a block).
    const auto got = listener.Receive(81, 500);
    ASSERT_EQ(got.size(), 80u);
    EXPECT_EQ(got[78].path, "/brel/CRDC/1/OutputPositiveL");
    EXPECT_EQ(got[79].path, "/brel/CRDC/1/OutputSymmetricR");
}
