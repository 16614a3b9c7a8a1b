// A hook beside those of ModuleServices.h: modules that send OSC of their own (CV To OSC) reach UDP
// through it, so that the framework and the modules stay free of the socket and OSC libraries. The
// remote layer installs the one implementation.
#pragma once

#include <cstdint>
#include <memory>

namespace BR {

// A UDP socket connected to one target, made for one pass of a sender thread.
class OSCDatagramSocket {
public:
    virtual ~OSCDatagramSocket() = default;
    // Sends an immediate bundle holding one message: `path` with one float argument. Throws when the
    // packet cannot be built or sent.
    virtual void SendFloatBundle(const char* path, float value) = 0;
};

class OSCTransmitter {
public:
    virtual ~OSCTransmitter() = default;
    // The IPv4 address of a host name or dotted address, in host byte order; false when the name
    // does not resolve.
    virtual bool ResolveHost(const char* name, uint32_t& address) = 0;
    // A socket connected to address:port. Throws when it cannot be made, a port outside 1 to 65535
    // included.
    virtual std::unique_ptr<OSCDatagramSocket> Connect(uint32_t address, int32_t port) = 0;
};

void SetOSCTransmitter(OSCTransmitter* transmitter);
OSCTransmitter* GetOSCTransmitter();

}  // namespace BR
