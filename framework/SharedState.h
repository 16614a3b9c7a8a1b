// What every instance of every module in the process shares besides the instance registry: the table
// of Soundplane touches that any instance's OSC server fills, and the Learner's learn switch.
#pragma once

#include <atomic>
#include <cstdint>

namespace BR {

// One touch as the last "/t3d/tch" message gave it: values are x, y, z and note, in the order of the
// message's arguments; `active` is set while z is above 0. No lock guards it: the OSC receive thread
// writes while audio threads read, and a torn read is repaired by the next frame.
struct TouchEntry {
    std::atomic<uint8_t> active{0};
    std::atomic<float> values[4] = {};
};
constexpr int kNumTouches = 16;
extern TouchEntry touchTable[kNumTouches];

// Indices of TouchEntry::values.
enum TouchValue : int { kTouchX = 0, kTouchY = 1, kTouchZ = 2, kTouchNote = 3 };

// Learn mode of the process-wide MIDI mapping table: a plain byte any instance may read and write
// (property 64130 of the Learner and of Soundplane).
constexpr uint32_t kPropertyLearnActive = 64130;
uint8_t GetLearnActive();
void SetLearnActive(uint8_t on);

}  // namespace BR
