// Cinder Combiner: four 12-bit control voltages in pairs of bytes through one lane of a frame.
#pragma once

#include "CVCombiner.h"

namespace BrelCorvaneCinderCombiner {

enum TableIndex : int32_t {
    kTargetHardware = 0,
    kTargetChannel = 1,
    kOffset1 = 2,
    kOSCPortOffset = 6,
    kTestSignal = 7,
    kInputThru = 8,
    kInput1 = 9,
    kFilter1 = 13,
    kSMUXProof = 17,
    kInterfaceCategory = 18,
    kNumParameters = 19,
};

class BrelCorvane : public BrelCVCombinerBase {
public:
    BrelCorvane();
    const char* GetModuleName() const override { return "Corvane Cinder Combiner"; }
    const char* GetGuiScriptName() const override { return "gui_cindercombiner.lua"; }
};

BrelCorvaneBase* Create();

}  // namespace BrelCorvaneCinderCombiner
