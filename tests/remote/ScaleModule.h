// A small module that records the scales its scripts add.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "framework/BrelCorvaneBase.h"

namespace BR::Test {

class ScaleModule : public BrelCorvaneBase {
public:
    ScaleModule() : BrelCorvaneBase(Config()) { InitModule(); }
    ~ScaleModule() override { ShutdownModule(); }
    void AddScale(const char* name, uint32_t mask) override { scales.emplace_back(name, mask); }
    uint32_t GetParameterFlags(int32_t) override { return 0; }
    int32_t GetParameterDisplayString(DisplayStringRequest&) override { return kErrInvalidParameter; }
    const char* GetModuleName() const override { return "Corvane Scale Probe"; }
    const char* GetGuiScriptName() const override { return "gui_scale.lua"; }

    std::vector<std::pair<std::string, uint32_t>> scales;

private:
    static ModuleConfig Config() {
        static ParameterDefinition table[] = {{"OSC Port Offset", kUnitIndexed, 0, 100, 0}};
        static float defaults[1];
        static PresetDefinition presets[] = {{"Defaults", 0, defaults}};
        return ModuleConfig{0, 2, 0, 0, 0, 1, presets, 1, table, -1};
    }
};

}  // namespace BR::Test
