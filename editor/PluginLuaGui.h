// The plug-in's part of the panel language: knob and slider renderers, textures, parameter buttons,
// and the actions of the button lookup table.
#pragma once

#include <map>
#include <string>

#include "LuaGui.h"

class BrelCorvaneView;

namespace BR {

class PluginLuaGui : public LuaGui {
public:
    explicit PluginLuaGui(BrelCorvaneBase* module);
    ~PluginLuaGui() override;
    // Builds the state with the plug-in's functions and the button lookup table.
    void Init(Manager* manager) override;
    int CreateKnob(lua_State* L, int32_t parameter, float x, float y, float size) override;
    int CreateSlider(lua_State* L, int argumentCount, int32_t parameter, float x, float y, float w, float h,
                     bool vertical) override;
    int CreateButton(lua_State* L, int argumentCount, const char* labelText, int32_t actionId, float x,
                     float y, float w, float h, const char* tooltip) override;
    int CreateLuaButton(lua_State* L, int argumentCount, const char* labelText, LuaButtonContext* context,
                        float x, float y, float w, float h, const char* tooltip, bool isToggle) override;
    int CreatePropertyTriggerButton(lua_State* L, int argumentCount, const char* labelText,
                                    PropertyContext* context, float x, float y, float w, float h,
                                    const char* tooltip) override;
    int CreatePropertyButton(lua_State* L, int argumentCount, const char* labelText, uint32_t property,
                             float x, float y, float w, float h, const char* tooltip, int mode) override;
    int CreateDropDown(lua_State* L, int32_t parameter, float x, float y, float w, float h) override;
    void AddElementMetatableNames() override;

    // The whole opening of a panel: Init, size, createUI, fonts.
    void OpenPanel(Manager* manager);
    // The action ids pressed so far, for the file and dialog buttons whose dialogs come later.
    std::vector<int32_t> pressedActions;
    // The properties whose MIDI browser a midiBrowseButton asked for.
    std::vector<uint32_t> midiBrowseRequests;

    void* callbackForMidiBrowse = nullptr;
    BrelCorvaneView* view = nullptr;
    std::map<std::string, ButtonAction>* buttonLookup = nullptr;

protected:
    void RegisterFunctions(lua_State* L) override;
};

}  // namespace BR
