// The slot of the OSC transmit hook.
#include "OSCTransmit.h"

#include <atomic>

namespace BR {

namespace {
std::atomic<OSCTransmitter*> transmitter{nullptr};
}

void SetOSCTransmitter(OSCTransmitter* value) {
    transmitter.store(value, std::memory_order_release);
}

OSCTransmitter* GetOSCTransmitter() {
    return transmitter.load(std::memory_order_acquire);
}

}  // namespace BR
