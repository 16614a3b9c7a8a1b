// Dunmore Combiner: its table; the stream itself is the combiners' shared body. It declares eight
// sidechains and is served six, so rows that pick inputs 9 and 10 read silence.
#include "DunmoreCombiner.h"

namespace BrelCorvaneDunmoreCombiner {

namespace {

BR::ParameterDefinition parameterTable[kNumParameters] = {
    {"Target Hardware", BR::kUnitIndexed, 0, 1, 0},    {"Target Channel", BR::kUnitIndexed, 0, 5, 0},
    {"Offset 1", BR::kUnitGeneric, -5.34f, 5.34f, 0},  {"Offset 2", BR::kUnitGeneric, -5.34f, 5.34f, 0},
    {"Offset 3", BR::kUnitGeneric, -5.34f, 5.34f, 0},  {"Offset 4", BR::kUnitGeneric, -5.34f, 5.34f, 0},
    {"Offset 5", BR::kUnitGeneric, -5.34f, 5.34f, 0},  {"Offset 6", BR::kUnitGeneric, -5.34f, 5.34f, 0},
    {"Offset 7", BR::kUnitGeneric, -5.34f, 5.34f, 0},  {"Offset 8", BR::kUnitGeneric, -5.34f, 5.34f, 0},
    {"OSC Port Offset", BR::kUnitIndexed, 0, 100, 0},  {"Test Signal", BR::kUnitIndexed, 0, 3, 0},
    {"Input Thru", BR::kUnitIndexed, 0, 5, 1},         {"Input 1", BR::kUnitIndexed, 0, 10, 3},
    {"Input 2", BR::kUnitIndexed, 0, 10, 4},           {"Input 3", BR::kUnitIndexed, 0, 10, 5},
    {"Input 4", BR::kUnitIndexed, 0, 10, 6},           {"Input 5", BR::kUnitIndexed, 0, 10, 7},
    {"Input 6", BR::kUnitIndexed, 0, 10, 8},           {"Input 7", BR::kUnitIndexed, 0, 10, 9},
    {"Input 8", BR::kUnitIndexed, 0, 10, 10},          {"Filter 1", BR::kUnitBoolean, 0, 1, 0},
    {"Filter 2", BR::kUnitBoolean, 0, 1, 0},           {"Filter 3", BR::kUnitBoolean, 0, 1, 0},
    {"Filter 4", BR::kUnitBoolean, 0, 1, 0},           {"Filter 5", BR::kUnitBoolean, 0, 1, 0},
    {"Filter 6", BR::kUnitBoolean, 0, 1, 0},           {"Filter 7", BR::kUnitBoolean, 0, 1, 0},
    {"Filter 8", BR::kUnitBoolean, 0, 1, 0},           {"SMUX Proof", BR::kUnitBoolean, 0, 1, 0},
    {"Interface Category", BR::kUnitIndexed, 0, 1, 0}, {"Adaptive Mode", BR::kUnitBoolean, 0, 1, 1},
};

float defaultsValues[kNumParameters];
BR::PresetDefinition presetTable[] = {{"Defaults", 0, defaultsValues}};

constexpr BR::ModuleConfig kConfig{
    10, 2, 8, 0, kOSCPortOffset, 1, presetTable, kNumParameters, parameterTable, kInterfaceCategory};

constexpr BrelCombinerRows kRows{8,       kOffset1,    kOSCPortOffset, kTestSignal,        kInputThru,
                                 kInput1, kFilter1,    kSMUXProof,     kInterfaceCategory, kAdaptiveMode,
                                 10,      0.041666668f};

}  // namespace

BrelCorvane::BrelCorvane() : BrelCVCombinerBase(kConfig, kRows) {
    BrelCVCombinerBase::InitModule();
}

BrelCorvaneBase* Create() {
    return new BrelCorvane;
}

}  // namespace BrelCorvaneDunmoreCombiner
