// The OSC server of one LFO over loopback: /set messages a second served without loss (sent in
// bursts of 48, each burst waited for, so that the socket's buffer never overflows), and the round
// trip of /get from a client's socket and back. The plain UDP round trip is the baseline.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <oscpack/osc/OscOutboundPacketStream.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "BenchSupport.h"
#include "framework/ModuleServices.h"
#include "modules/ModuleFactory.h"
#include "remote/OSCHelper.h"
#include "remote/RemoteServices.h"

namespace {

constexpr int kBase = 17900;

int Socket(int port) {
    const int fd = socket(AF_INET, SOCK_DGRAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(uint16_t(port));
    bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address);
    return fd;
}

void SendTo(int fd, int port, const char* data, size_t size) {
    sockaddr_in to{};
    to.sin_family = AF_INET;
    to.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    to.sin_port = htons(uint16_t(port));
    sendto(fd, data, size, 0, reinterpret_cast<sockaddr*>(&to), sizeof to);
}

bool ReceiveOne(int fd) {
    pollfd p{fd, POLLIN, 0};
    if (poll(&p, 1, 1000) <= 0) return false;
    char buffer[2048];
    return recv(fd, buffer, sizeof buffer, 0) > 0;
}

// The services are installed and the base port set before the module is made.
const char* WithServices(const char* stem) {
    BR::SetOSCBasePortOverride(kBase);
    BR::InstallRemoteServices();
    return stem;
}

struct Server {
    explicit Server(int offset) : rig(WithServices("lfo"), 256) {
        rig.driver->SetParameterByName("OSC Port Offset", float(offset));
        osc = BR::OSCHelperOf(rig.driver->Module());
        const int port = kBase + offset;
        while (osc->ActivePort() != port)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    BR::Bench::ModuleRig rig;
    BR::OSCHelper* osc;
};

void BM_OSCSetServed(benchmark::State& state) {
    Server server(1);
    const int fd = Socket(0);
    constexpr int kBurst = 48;
    char packets[kBurst][64];
    size_t sizes[kBurst];
    for (int i = 0; i < kBurst; ++i) {
        osc::OutboundPacketStream s(packets[i], sizeof packets[i]);
        s << osc::BeginMessage("/set") << osc::int32(1) << float(1 + i % 10) << osc::EndMessage;
        sizes[i] = s.Size();
    }
    uint64_t lost = 0;
    for (auto _ : state) {
        const uint64_t before = server.osc->NumMessages();
        for (int i = 0; i < kBurst; ++i)
            SendTo(fd, kBase + 1, packets[i], sizes[i]);
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(1);
        while (server.osc->NumMessages() < before + kBurst && std::chrono::steady_clock::now() < deadline)
            std::this_thread::yield();
        lost += before + kBurst - std::min(server.osc->NumMessages(), before + kBurst);
    }
    close(fd);
    state.SetItemsProcessed(int64_t(state.iterations()) * kBurst);
    state.counters["lost"] = double(lost);
}

void BM_OSCGetRoundTrip(benchmark::State& state) {
    Server server(2);
    const int fd = Socket(kBase + 50);
    char packet[128];
    osc::OutboundPacketStream s(packet, sizeof packet);
    s << osc::BeginMessage("/get") << osc::int32(1) << "osc.udp://127.0.0.1:17950"
      << "/got" << osc::EndMessage;
    int64_t missed = 0;
    for (auto _ : state) {
        SendTo(fd, kBase + 2, s.Data(), s.Size());
        if (!ReceiveOne(fd)) ++missed;
    }
    close(fd);
    state.counters["missed"] = double(missed);
}

// The baseline: a datagram to a plain socket on another thread that sends one back.
void BM_UdpEchoRoundTrip(benchmark::State& state) {
    const int echo = Socket(kBase + 60);
    std::atomic<bool> stop{false};
    std::thread echoer([&] {
        char buffer[2048];
        while (!stop.load()) {
            pollfd p{echo, POLLIN, 0};
            if (poll(&p, 1, 50) <= 0) continue;
            sockaddr_in from{};
            socklen_t length = sizeof from;
            const ssize_t n =
                recvfrom(echo, buffer, sizeof buffer, 0, reinterpret_cast<sockaddr*>(&from), &length);
            if (n > 0) sendto(echo, buffer, size_t(n), 0, reinterpret_cast<sockaddr*>(&from), length);
        }
    });
    const int fd = Socket(0);
    const char data[40] = "/get\0\0\0\0,iss";
    for (auto _ : state) {
        SendTo(fd, kBase + 60, data, sizeof data);
        ReceiveOne(fd);
    }
    stop.store(true);
    echoer.join();
    close(fd);
    close(echo);
}

BENCHMARK(BM_OSCSetServed)->UseRealTime()->MinTime(1.0);
BENCHMARK(BM_OSCGetRoundTrip)->UseRealTime();
BENCHMARK(BM_UdpEchoRoundTrip)->UseRealTime();

}  // namespace

int main(int argc, char** argv) {
    return BR::Bench::RunWithRatios(argc, argv,
                                    {{"BM_OSCGetRoundTrip/real_time", "BM_UdpEchoRoundTrip/real_time"}});
}
