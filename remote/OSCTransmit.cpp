// The OSC transmit hook on oscpack: host look-up, and UDP sockets that send one-message bundles.
#include "framework/OSCTransmit.h"

#include <oscpack/ip/IpEndpointName.h>
#include <oscpack/ip/NetworkingUtils.h>
#include <oscpack/ip/UdpSocket.h>
#include <oscpack/osc/OscOutboundPacketStream.h>

#include <mutex>
#include <stdexcept>

#include "OSCHelper.h"
#include "RemoteServices.h"

namespace BR {

namespace {

class UdpFloatSocket : public OSCDatagramSocket {
public:
    explicit UdpFloatSocket(const IpEndpointName& target) : socket(target) {}

    void SendFloatBundle(const char* path, float value) override {
        char buffer[1024];  // on the stack: a path is at most 255 characters
        osc::OutboundPacketStream stream(buffer, sizeof buffer);
        stream << osc::BeginBundleImmediate << osc::BeginMessage(path) << value << osc::EndMessage
               << osc::EndBundle;
        socket.Send(stream.Data(), stream.Size());
    }

private:
    UdpTransmitSocket socket;
};

class OscpackTransmitter : public OSCTransmitter {
public:
    bool ResolveHost(const char* name, uint32_t& address) override {
        unsigned long found = 0;
        {
            std::lock_guard<std::mutex> guard(HostLookupLock());
            found = GetHostByName(name);
        }
        // The look-up gives 0 for a name it cannot resolve; the all-ones address is no target either.
        if (found == 0 || found == IpEndpointName::ANY_ADDRESS) return false;
        address = uint32_t(found);
        return true;
    }

    std::unique_ptr<OSCDatagramSocket> Connect(uint32_t address, int32_t port) override {
        if (port < 1 || port > 65535) throw std::runtime_error("no port to send OSC to");
        return std::make_unique<UdpFloatSocket>(IpEndpointName(static_cast<unsigned long>(address), port));
    }
};

}  // namespace

void InstallOSCTransmitter() {
    static OscpackTransmitter transmitter;
    SetOSCTransmitter(&transmitter);
}

}  // namespace BR
