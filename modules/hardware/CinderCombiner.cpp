// Cinder Combiner: its table; the stream itself is the combiners' shared body.
#include "CinderCombiner.h"

namespace BrelCorvaneCinderCombiner {

namespace {

// The limits of the offsets are the float nearest 5.34 volts.
BR::ParameterDefinition parameterTable[kNumParameters] = {
    {"Target Hardware", BR::kUnitIndexed, 0, 1, 0},
    {"Target Channel", BR::kUnitIndexed, 0, 5, 0},
    {"Offset 1", BR::kUnitGeneric, -5.34f, 5.34f, 0},
    {"Offset 2", BR::kUnitGeneric, -5.34f, 5.34f, 0},
    {"Offset 3", BR::kUnitGeneric, -5.34f, 5.34f, 0},
    {"Offset 4", BR::kUnitGeneric, -5.34f, 5.34f, 0},
    {"OSC Port Offset", BR::kUnitIndexed, 0, 100, 0},
    {"Test Signal", BR::kUnitIndexed, 0, 3, 0},
    {"Input Thru", BR::kUnitIndexed, 0, 3, 1},
    {"Input 1", BR::kUnitIndexed, 0, 6, 3},
    {"Input 2", BR::kUnitIndexed, 0, 6, 4},
    {"Input 3", BR::kUnitIndexed, 0, 6, 5},
    {"Input 4", BR::kUnitIndexed, 0, 6, 6},
    {"Filter 1", BR::kUnitBoolean, 0, 1, 0},
    {"Filter 2", BR::kUnitBoolean, 0, 1, 0},
    {"Filter 3", BR::kUnitBoolean, 0, 1, 0},
    {"Filter 4", BR::kUnitBoolean, 0, 1, 0},
    {"SMUX Proof", BR::kUnitBoolean, 0, 1, 0},
    {"Interface Category", BR::kUnitIndexed, 0, 1, 0},
};

float defaultsValues[kNumParameters];
BR::PresetDefinition presetTable[] = {{"Defaults", 0, defaultsValues}};

constexpr BR::ModuleConfig kConfig{
    6, 2, 4, 0, kOSCPortOffset, 1, presetTable, kNumParameters, parameterTable, kInterfaceCategory};

constexpr BrelCombinerRows kRows{4,       kOffset1,   kOSCPortOffset, kTestSignal,        kInputThru,
                                 kInput1, kFilter1,   kSMUXProof,     kInterfaceCategory, -1,
                                 6,       0.04464286f};

}  // namespace

BrelCorvane::BrelCorvane() : BrelCVCombinerBase(kConfig, kRows) {
    BrelCVCombinerBase::InitModule();
}

BrelCorvaneBase* Create() {
    return new BrelCorvane;
}

}  // namespace BrelCorvaneCinderCombiner
