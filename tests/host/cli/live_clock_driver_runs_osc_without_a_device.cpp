// `corvane live --driver clock`: the patch runs against a real-time clock with no audio device and
// no JACK server; its OSC server answers while it runs, --seconds ends it with status 0, it has
// rendered about as many frames as the time it ran, and its state file is written.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <thread>

#include "tests/remote/RemoteRig.h"
#include "tests/support/RunCommand.h"

using namespace BR::Test;

TEST(LiveClock, RunsOscWithoutADeviceAndSavesItsState) {
    const std::string f = MakeTempFolder();
    std::ofstream(f + "/p.json") << R"({"instances": [
      {"name": "lfo", "module": "lfo"},
      {"name": "d", "module": "dc", "set": {"OSC Port Offset": 5, "Output Positive L": 0.3}, "state": "d.state"}]})";
    CommandResult result;
    // No server under this name: the clock driver needs none.
    std::thread run([&] {
        result = RunCorvane("live " + f + "/p.json --driver clock --seconds 1.5 --osc-base-port 7460");
    });
    UdpPeer client;
    std::string pong;
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(1400);
    while (pong.empty() && std::chrono::steady_clock::now() < end) {
        client.Send(7465, "/ping",
                    [&](osc::OutboundPacketStream& s) { s << client.Client().c_str() << "/pong"; });
        pong = client.Receive(50);
    }
    run.join();
    EXPECT_EQ(pong.rfind("/pong", 0), 0u) << pong;
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_NE(result.err.find("corvane: live on the clock at 48000 Hz, period 256 frames\n"),
              std::string::npos)
        << result.err;
    std::smatch m;
    ASSERT_TRUE(std::regex_search(result.err, m, std::regex("--seconds: stopped after (\\d+) frames\n")))
        << result.err;
    const long frames = std::stol(m[1]);
    EXPECT_GE(frames, 24000);         // it ran, paced by the clock
    EXPECT_LE(frames, 72000 + 4800);  // and not ahead of it (the wait ticks every 20 ms)
    EXPECT_NE(result.err.find("saved the state of \"d\" to " + f + "/d.state"), std::string::npos);
    const CommandResult check =
        RunCorvane("render dc --frames 256 --state-in " + f + "/d.state --out " + f + "/check.wav");
    EXPECT_EQ(check.status, 0) << check.err;
    std::filesystem::remove_all(f);
}
