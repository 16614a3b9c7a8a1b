// Soundplane in "corvane patch --realtime": touch frames sent over UDP to one instance's OSC port while
// the patch runs become, in each instance, the six outputs of the touch its "Voice ID" names, pitch
// through the Ardent table that property 64090 made; the release of a touch closes its gate.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <oscpack/osc/OscOutboundPacketStream.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

#include "host/cli/WavFile.h"
#include "tests/support/RunCommand.h"

namespace {

void SendFrame(int fd, int port, float z2, float z3) {
    char buffer[512];
    osc::OutboundPacketStream s(buffer, sizeof buffer);
    s << osc::BeginBundleImmediate << osc::BeginMessage("/t3d/frm") << osc::int32(1) << osc::int32(0)
      << osc::EndMessage;
    s << osc::BeginMessage("/t3d/tch2") << 0.25f << 0.5f << z2 << 60.0f << osc::EndMessage;
    s << osc::BeginMessage("/t3d/tch3") << -0.5f << 0.125f << z3 << 62.0f << osc::EndMessage;
    s << osc::EndBundle;
    sockaddr_in to{};
    to.sin_family = AF_INET;
    to.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    to.sin_port = htons(uint16_t(port));
    sendto(fd, s.Data(), s.Size(), 0, reinterpret_cast<sockaddr*>(&to), sizeof to);
}

std::string ReadFile(const std::string& path) {
    std::ifstream in(path);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

// The first frame at which every channel holds its expected value, or -1.
long FirstFrameWith(const BR::AudioData& audio, const std::vector<float>& expected) {
    const size_t frames = audio.channels[0].size();
    for (size_t i = 0; i < frames; ++i) {
        bool all = true;
        for (size_t k = 0; k < expected.size() && all; ++k)
            all = std::fabs(audio.channels[k][i] - expected[k]) < 1e-6f;
        if (all) return long(i);
    }
    return -1;
}

}  // namespace

TEST(CliRealtimeSoundplane, TouchFramesBecomeTheOutputsOfTheirVoice) {
    const std::string work = BR::Test::MakeTempFolder();
    std::ofstream(work + "/patch.json") << R"({"rate": 48000, "block": 256, "seconds": 2.5,
 "instances": [
  {"name": "a", "module": "soundplane", "set": {"Voice ID": 2, "OSC Port Offset": 5}, "properties": [64090]},
  {"name": "b", "module": "soundplane", "set": {"Voice ID": 3, "Output 6 Offset": 0.5}, "properties": [64090]}
 ]})";
    const std::string command =
        "cd '" + work + "' && XDG_CONFIG_HOME='" + work + "' XDG_DATA_HOME='" + work +
        "' \"$CORVANE_BINARY\" patch patch.json --realtime --osc-base-port 17820 > out.log "
        "2> err.log; echo $? > status";
    std::thread run([&] { std::system(command.c_str()); });
    bool listening = false;
    for (int i = 0; i < 400 && !listening; ++i) {
        listening = ReadFile(work + "/err.log").find("a listens for OSC on port 17825") != std::string::npos;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    const int fd = socket(AF_INET, SOCK_DGRAM, 0);
    // Both touches pressed for about 0.6 s, then touch 2 released.
    for (int i = 0; i < 60; ++i) {
        SendFrame(fd, 17825, 0.75f, 0.3f);
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    for (int i = 0; i < 10; ++i) {
        SendFrame(fd, 17825, 0.0f, 0.3f);
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    close(fd);
    run.join();
    SCOPED_TRACE(ReadFile(work + "/err.log"));
    ASSERT_TRUE(listening);
    EXPECT_EQ(ReadFile(work + "/status"), "0\n");
    const BR::AudioData a = BR::ReadWav(work + "/a.wav"), b = BR::ReadWav(work + "/b.wav");
    ASSERT_EQ(a.channels.size(), 6u);
    ASSERT_EQ(b.channels.size(), 6u);
    // Ardent levels: note 60 is (60 + 16) % 64 steps of 1/63.75, note 62 two more.
    const float note60 = 12 * 0.015686275f, note62 = 14 * 0.015686275f;
    const long pressed = FirstFrameWith(a, {note60, 1.0f, 0.25f, 0.5f, 0.75f, 0.0f});
    EXPECT_GT(pressed, 0);
    const long released = FirstFrameWith(a, {note60, 0.0f, 0.25f, 0.5f, 0.0f, 0.0f});
    EXPECT_GT(released, pressed);
    EXPECT_GE(FirstFrameWith(b, {note62, 1.0f, -0.5f, 0.125f, 0.3f, 0.5f}), 0);
    EXPECT_EQ(b.channels[5][0], 0.5f);
    std::filesystem::remove_all(work);
}
