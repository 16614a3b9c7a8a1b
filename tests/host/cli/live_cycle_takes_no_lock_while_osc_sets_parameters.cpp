// The live host's period (the transport taken from outside, then the patch rendered) with every
// instance's OSC server running: while a client sets parameters over loopback (a plain /set, and a
// path a Lua script registered) and subscribes to updates, the period takes no lock and allocates
// nothing, also in the periods where the changes land, and the changes show in the output.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "host/cli/LiveHost.h"
#include "tests/remote/RemoteRig.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/LockCounter.h"
#include "tests/support/RunCommand.h"

using namespace BR::Test;

TEST(LiveCycle, TakesNoLockWhileOscSetsParameters) {
    const std::string f = MakeTempFolder();
    std::ofstream(f + "/level.lua") << "registerOSCPathForParameter(\"/level\", \"Output Positive R\")\n";
    std::ofstream(f + "/p.json") << R"({"rate": 48000, "block": 256, "instances": [
      {"name": "lfo", "module": "lfo", "set": {"Sine L": 1}},
      {"name": "vc", "module": "voicecontroller"},
      {"name": "sync", "module": "sync", "inputs": ["lfo:0"]},
      {"name": "d", "module": "dc", "set": {"OSC Port Offset": 7, "Output Positive L": 0.1},
       "scripts": ["level.lua"]}], "midi_in": ["vc"]})";
    BR::SetOSCBasePortOverride(7420);
    BR::InstallRemoteServices();
    {
        const BR::Patch patch = BR::ParsePatch(f + "/p.json");
        BR::LiveHost host(patch);
        ASSERT_TRUE(WaitListening(host.Engine().Driver(3), 7427));
        const uint32_t period = 256;
        std::vector<std::vector<float>> buffers;
        for (size_t i = 0; i < 4; ++i)
            for (int32_t c = 0; c < host.Engine().Driver(i).NumHostOutputs(); ++c) {
                buffers.emplace_back(period);
                host.Output(i, size_t(c)) = buffers.back().data();
            }
        const float* left = host.Output(3, 0);
        const float* right = host.Output(3, 1);
        host.Cycle(period, 0);  // the first period outside the count
        ASSERT_FLOAT_EQ(left[period - 1], 0.1f);

        UdpPeer client;
        ASSERT_TRUE(client.Bound());
        client.Send(7427, "/registerUpdate", [&](osc::OutboundPacketStream& s) {
            s << osc::int32(0) << client.Client().c_str() << "/u";
        });
        const uint8_t noteOn[3] = {0x90, 0x3C, 0x64};
        BR::OutsideTransport outside;
        outside.rolling = true;
        uint64_t allocations = 0, locks = 0;
        bool sent = false, landed = false;
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
        for (int cycle = 0; !landed && std::chrono::steady_clock::now() < end; ++cycle) {
            if (cycle == 20) {
                client.Send(7427, "/set", [](osc::OutboundPacketStream& s) { s << osc::int32(0) << 0.75f; });
                client.Send(7427, "/level", [](osc::OutboundPacketStream& s) { s << 0.25f; });
                sent = true;
            }
            host.MidiSlots()[0] = BR::TimedMidi{17, 3, noteOn};
            {
                AllocationScope allocationScope;
                LockScope lockScope;
                host.Follow(outside);  // the transport taken from JACK's, as the callback does
                host.Cycle(period, cycle % 8 == 0 ? 1 : 0);
                allocations += allocationScope.Count();
                locks += lockScope.Count();
            }
            outside.frame += period;
            landed = sent && left[period - 1] == 0.75f && right[period - 1] == 0.25f;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        EXPECT_TRUE(landed) << "left " << left[period - 1] << ", right " << right[period - 1];
        EXPECT_EQ(allocations, 0u);
        EXPECT_EQ(locks, 0u);
        // The subscriber hears of the change that the period applied.
        EXPECT_EQ(client.Receive(), "/u i:0 f:0.75");
        // The counter does see a lock the thread takes.
        std::mutex m;
        LockScope scope;
        m.lock();
        m.unlock();
        EXPECT_EQ(scope.Count(), 1u);
    }
    BR::SetModuleServicesFactory(nullptr);
    BR::SetOSCBasePortOverride(0);
    std::filesystem::remove_all(f);
}
