// Rendering CV To MIDI with notes and controllers going into an open device's ring, and to the
// Learner hook, performs no heap allocation; NaN input sends nothing odd and never stalls.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <limits>
#include <thread>

#include "CVToMIDIRig.h"
#include "framework/ModuleServices.h"
#include "tests/support/AllocationCounter.h"

namespace {
std::atomic<int> delivered{0};
class CountingDevice : public BR::MIDIOutputDevice {
public:
    void Send(const uint8_t*, int32_t) override { delivered.fetch_add(1); }
};
std::unique_ptr<BR::MIDIOutputDevice> Open(const std::string& name) {
    return name == "Counting" ? std::make_unique<CountingDevice>() : nullptr;
}
int hookCalls = 0;
void Hook(BrelCorvaneBase&, const BR::MessageQueueItem& item) {
    if (item.kind == 1) ++hookCalls;
}
}  // namespace

TEST(CVToMIDIRealtime, RenderAllocatesNothing) {
    BR::SetMIDIOutputOpener(&Open);
    BR::GlobalMIDIHook previous = BR::GetGlobalMIDIHook();
    BR::SetGlobalMIDIHook(&Hook);
    auto driver = BR::Test::MakeDriver("cvtomidi", 48000.0f);
    for (const char* name : {"Enable Note L", "Enable CC L", "Enable CC R", "Send To Learner"})
        driver->SetParameterByName(name, 1.0f);
    const char port[] = "Counting";
    driver->Module().SetProperty(64100, port, sizeof port);
    const uint32_t block = 256;
    std::vector<float> l(block), r(block), outL(block), outR(block);
    float* outputs[2] = {outL.data(), outR.data()};
    const float* inputs[2] = {l.data(), r.data()};
    driver->Process(inputs, outputs, block, nullptr, 0);
    {
        BR::Test::AllocationScope scope;
        for (int b = 0; b < 100; ++b) {
            for (uint32_t i = 0; i < block; ++i) {
                l[i] = float((b * 37 + int(i)) % 100) / 50.0f - 1.0f;
                r[i] = (b % 3 == 0 && i == 7) ? std::numeric_limits<float>::quiet_NaN() : -l[i];
            }
            driver->Process(inputs, outputs, block, nullptr, 0);
        }
        EXPECT_EQ(scope.Count(), 0u);
    }
    EXPECT_GT(hookCalls, 100);
    EXPECT_EQ(outL, l);  // audio passes through
    // The sender thread takes what the ring holds, at its own pace; a full ring loses messages.
    auto& sender = static_cast<BrelCorvaneCVToMIDI::BrelCorvane&>(driver->Module()).Sender();
    EXPECT_TRUE(sender.HasDevice());
    for (int i = 0; i < 5000 && sender.ReadIndex() != (sender.WriteIndex() + 63) % 64; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    EXPECT_GT(delivered.load(), 0);
    EXPECT_EQ(sender.ReadIndex(), (sender.WriteIndex() + 63) % 64);  // all read
    driver.reset();
    BR::SetGlobalMIDIHook(previous);
    BR::SetMIDIOutputOpener(nullptr);
}
