// The process-wide touch table and learn switch.
#include "SharedState.h"

namespace BR {

TouchEntry touchTable[kNumTouches];

namespace {
std::atomic<uint8_t> learnActive{0};
}

uint8_t GetLearnActive() {
    return learnActive.load(std::memory_order_relaxed);
}

void SetLearnActive(uint8_t on) {
    learnActive.store(on, std::memory_order_relaxed);
}

}  // namespace BR
