// What the Learner tests share: a clean process-wide table, MIDI into any instance behind the host
// driver, a parameter read by name, and a UDP listener on loopback that reads OSC messages.
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <oscpack/osc/OscReceivedElements.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "framework/ActiveParameter.h"
#include "modules/events/Learner.h"
#include "tests/support/Render.h"

namespace BR::Test {

// Empties the table and turns learning off, so that each test starts from a process without mappings.
inline void ResetLearning() {
    BrelCorvaneLearner::SetConfirmHandler(nullptr);
    BrelCorvaneLearner::SetClipboardHandler(nullptr);
    BrelCorvaneLearner::RemoveAllMappings();
    BrelCorvaneLearner::SetLearnActive(false);
    SetActiveParameter(nullptr, -1);
}

// Renders one short block of silence with the MIDI bytes at its first frame.
inline void SendMIDI(HostDriver& driver, std::vector<uint8_t> bytes, uint32_t frames = 16) {
    RenderFrames(driver, frames, frames, {}, {{0, std::move(bytes)}});
}

inline float Value(HostDriver& driver, const std::string& name) {
    const int32_t index = driver.ParameterIndexByName(name);
    EXPECT_GE(index, 1) << name;
    return driver.Module().GetTableValue(index - 1);
}

inline int32_t Row(HostDriver& driver, const std::string& name) {
    return driver.ParameterIndexByName(name) - 1;
}

// Makes `parameter` of `driver` the active one and learns the next message that reaches `source`.
inline void Learn(HostDriver& target, const std::string& parameter, HostDriver& source,
                  std::vector<uint8_t> bytes) {
    SetActiveParameter(&target.Module(), Row(target, parameter));
    BrelCorvaneLearner::SetLearnActive(true);
    SendMIDI(source, std::move(bytes));
    BrelCorvaneLearner::SetLearnActive(false);
}

// Each test starts and ends with an empty table, so that no mapping outlives the instances it names.
class LearnerTest : public ::testing::Test {
protected:
    void SetUp() override { ResetLearning(); }
    void TearDown() override { ResetLearning(); }
};

struct OscMessage {
    std::string path;
    float value;
};

// A UDP socket bound to 127.0.0.1:port that reads one-float OSC messages.
class UdpListener {
public:
    explicit UdpListener(int port) {
        fd = socket(AF_INET, SOCK_DGRAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(uint16_t(port));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        bound = fd >= 0 && bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
    }
    ~UdpListener() { Close(); }
    void Close() {
        if (fd >= 0) close(fd);
        fd = -1;
    }
    bool Bound() const { return bound; }
    // Messages arriving within `milliseconds` of the last one (or of the call), at most `count`.
    std::vector<OscMessage> Receive(size_t count, int milliseconds = 2000) {
        std::vector<OscMessage> out;
        while (out.size() < count) {
            pollfd p{fd, POLLIN, 0};
            if (poll(&p, 1, milliseconds) <= 0) break;
            char buffer[2048];
            const ssize_t n = recv(fd, buffer, sizeof buffer, 0);
            if (n <= 0) break;
            try {
                osc::ReceivedMessage message(osc::ReceivedPacket(buffer, osc::osc_bundle_element_size_t(n)));
                auto arg = message.ArgumentsBegin();
                out.push_back({message.AddressPattern(), arg->AsFloat()});
            } catch (const std::exception& e) {
                ADD_FAILURE() << "not a one-float OSC message: " << e.what();
            }
        }
        return out;
    }

private:
    int fd = -1;
    bool bound = false;
};

}  // namespace BR::Test
