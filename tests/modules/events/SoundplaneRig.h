// Soundplane behind the host driver, and touch frames as the outside party sends them: a bundle that
// starts with "/t3d/frm", sent over UDP on loopback to an instance's OSC server.
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <oscpack/osc/OscOutboundPacketStream.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <thread>
#include <vector>

#include "framework/ModuleServices.h"
#include "framework/SharedState.h"
#include "modules/events/Soundplane.h"
#include "remote/RemoteServices.h"
#include "tests/support/Render.h"

namespace BR::Test {

struct Touch {
    int number;  // 1 to 16
    float x, y, z, note;
};

// Sends one touch frame: "/t3d/frm" then one "/t3d/tchN" per touch, in one bundle.
inline void SendTouchFrame(int port, const std::vector<Touch>& touches) {
    char buffer[1024];
    osc::OutboundPacketStream s(buffer, sizeof buffer);
    s << osc::BeginBundleImmediate << osc::BeginMessage("/t3d/frm") << osc::int32(1) << osc::int32(0)
      << osc::EndMessage;
    for (const Touch& t : touches) {
        const std::string address = "/t3d/tch" + std::to_string(t.number);
        s << osc::BeginMessage(address.c_str()) << t.x << t.y << t.z << t.note << osc::EndMessage;
    }
    s << osc::EndBundle;
    const int fd = socket(AF_INET, SOCK_DGRAM, 0);
    sockaddr_in to{};
    to.sin_family = AF_INET;
    to.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    to.sin_port = htons(uint16_t(port));
    sendto(fd, s.Data(), s.Size(), 0, reinterpret_cast<sockaddr*>(&to), sizeof to);
    close(fd);
}

// Polls `done` every millisecond for up to three seconds.
template <class Done>
bool WaitFor(Done done) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(3);
    while (!done()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

// Writes a touch straight into the table, as the OSC receive thread does.
inline void PutTouch(const Touch& t) {
    TouchEntry& e = touchTable[t.number - 1];
    e.values[kTouchX].store(t.x);
    e.values[kTouchY].store(t.y);
    e.values[kTouchZ].store(t.z);
    e.values[kTouchNote].store(t.note);
    e.active.store(0 >= t.z ? 0 : 1);
}

inline void ClearTouches() {
    for (int n = 1; n <= kNumTouches; ++n)
        PutTouch({n, 0, 0, 0, 0});
}

struct SoundplaneRig {
    std::unique_ptr<HostDriver> driver;

    explicit SoundplaneRig(float rate = 48000.0f) : driver(MakeDriver("soundplane", rate)) {}
    BrelCorvaneSoundplane::BrelCorvane& Module() {
        return static_cast<BrelCorvaneSoundplane::BrelCorvane&>(driver->Module());
    }
    void Set(const std::string& name, float value) {
        EXPECT_TRUE(driver->SetParameterByName(name, value)) << name;
    }
    Channels Render(uint32_t frames, uint32_t block = 64) { return RenderFrames(*driver, frames, block); }
};

}  // namespace BR::Test
