// A module with nothing but a given parameter table and presets, for tests of the parameter model.
#pragma once

#include "framework/BrelCorvaneBase.h"

namespace BR::Test {

class TableModule : public BrelCorvaneBase {
public:
    TableModule(ParameterDefinition* table, int32_t rows, PresetDefinition* presetRows,
                int32_t presetCount = 1, int32_t oscPortRow = -1)
        : BrelCorvaneBase(ModuleConfig{2, 2, 0, 0, oscPortRow, presetCount, presetRows, rows, table, -1}) {
        TableModule::InitModule();
    }
    uint32_t GetParameterFlags(int32_t) override { return 0; }
    int32_t GetParameterDisplayString(DisplayStringRequest&) override { return kErrInvalidParameter; }
    const char* GetModuleName() const override { return "Corvane Table"; }
    const char* GetGuiScriptName() const override { return "gui_table.lua"; }
};

}  // namespace BR::Test
