// Dunmore Combiner: eight 12-bit control voltages in triples of bytes through one lane of a frame,
// refreshing changing channels more often than unchanged ones.
#pragma once

#include "CVCombiner.h"

namespace BrelCorvaneDunmoreCombiner {

enum TableIndex : int32_t {
    kTargetHardware = 0,
    kTargetChannel = 1,
    kOffset1 = 2,
    kOSCPortOffset = 10,
    kTestSignal = 11,
    kInputThru = 12,
    kInput1 = 13,
    kFilter1 = 21,
    kSMUXProof = 29,
    kInterfaceCategory = 30,
    kAdaptiveMode = 31,
    kNumParameters = 32,
};

class BrelCorvane : public BrelCVCombinerBase {
public:
    BrelCorvane();
    const char* GetModuleName() const override { return "Corvane Dunmore Combiner"; }
    const char* GetGuiScriptName() const override { return "gui_dunmorecombiner.lua"; }
};

BrelCorvaneBase* Create();

}  // namespace BrelCorvaneDunmoreCombiner
