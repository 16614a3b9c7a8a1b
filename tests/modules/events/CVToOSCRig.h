// CV To OSC behind the host driver with the real OSC transmitter, and a UDP listener on loopback
// that reads what the module's sender thread sends.
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <oscpack/osc/OscReceivedElements.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "modules/events/CVToOSC.h"
#include "remote/RemoteServices.h"
#include "tests/support/Render.h"

namespace BR::Test {

// Polls `done` every millisecond for up to `milliseconds`.
inline bool WaitUntil(const std::function<bool()>& done, int milliseconds = 3000) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    while (!done()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

// A UDP socket bound on 127.0.0.1 at a given port. Each packet reads as "PATH VALUE" when it is an
// immediate bundle of one message with one float argument, and as a description of what it is
// otherwise.
class OSCListener {
public:
    explicit OSCListener(int port) {
        fd = socket(AF_INET, SOCK_DGRAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(uint16_t(port));
        bound = bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
    }
    ~OSCListener() { Close(); }
    OSCListener(const OSCListener&) = delete;
    OSCListener& operator=(const OSCListener&) = delete;

    bool Bound() const { return bound; }
    void Close() {
        if (fd >= 0) close(fd);
        fd = -1;
    }

    // The next packet, or "" after the time-out.
    std::string Receive(int milliseconds = 2000) const {
        pollfd p{fd, POLLIN, 0};
        if (poll(&p, 1, milliseconds) <= 0) return "";
        char buffer[2048];
        const ssize_t n = recv(fd, buffer, sizeof buffer, 0);
        if (n <= 0) return "";
        try {
            const osc::ReceivedPacket packet(buffer, osc::osc_bundle_element_size_t(n));
            if (!packet.IsBundle()) return "not a bundle";
            const osc::ReceivedBundle bundle(packet);
            if (bundle.TimeTag() != 1) return "bundle not immediate";
            if (bundle.ElementCount() != 1) return "bundle of " + std::to_string(bundle.ElementCount());
            const osc::ReceivedMessage message(*bundle.ElementsBegin());
            if (message.ArgumentCount() != 1 || !message.ArgumentsBegin()->IsFloat()) return "not one float";
            char value[64];
            std::snprintf(value, sizeof value, " %.9g", double(message.ArgumentsBegin()->AsFloat()));
            return message.AddressPattern() + std::string(value);
        } catch (const osc::Exception& e) {
            return std::string("undecodable: ") + e.what();
        }
    }

    // Every packet that arrives until none has come for `quiet` milliseconds.
    std::vector<std::string> ReceiveAll(int quiet = 300) const {
        std::vector<std::string> all;
        for (std::string text = Receive(quiet); !text.empty(); text = Receive(quiet))
            all.push_back(text);
        return all;
    }

private:
    int fd = -1;
    bool bound = false;
};

struct CVToOSCRig {
    std::unique_ptr<HostDriver> driver;

    explicit CVToOSCRig(float rate = 48000.0f) {
        InstallOSCTransmitter();
        driver = MakeDriver("cvtoosc", rate);
    }
    BrelCorvaneCVToOSC::BrelCorvane& Module() {
        return static_cast<BrelCorvaneCVToOSC::BrelCorvane&>(driver->Module());
    }
    BR::OSCSender& Sender() { return Module().Sender(); }
    void Set(const char* name, float value) { EXPECT_TRUE(driver->SetParameterByName(name, value)) << name; }
    void SetText(uint32_t id, const std::string& text) {
        EXPECT_EQ(Module().SetProperty(id, text.c_str(), uint32_t(text.size() + 1)), 0) << id;
    }
    void Target(int port) {
        SetText(BrelCorvaneCVToOSC::kPropertyTarget, "127.0.0.1:" + std::to_string(port));
    }
    // Renders the two inputs in host blocks of `block` frames.
    Channels Render(const std::vector<float>& left, const std::vector<float>& right, uint32_t block = 256) {
        return RenderFrames(*driver, uint32_t(left.size()), block, {left, right});
    }
    // Waits until the sender thread has read every entry posted.
    bool Drained() {
        return WaitUntil(
            [&] { return (Sender().ReadIndex() + 1) % OSCSender::kEntries == Sender().WriteIndex(); });
    }
};

}  // namespace BR::Test
