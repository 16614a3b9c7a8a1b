// The plug-in's display and editor constructors for the panel scripts, their colour methods, the MIDI
// browse button, and sendOSC shared with the remote scripting.
#include <lua5.1/lua.hpp>

#include "PluginLuaGui.h"
#include "ZPmanager.h"
#include "remote/OSCHelper.h"
#include "widgets/Button.h"
#include "widgets/Group.h"
#include "widgets/InfoDisplays.h"
#include "widgets/ModuleDisplay.h"
#include "widgets/StepEditors.h"

namespace BR {

namespace {

float Num(lua_State* L, int index) {
    return float(luaL_checknumber(L, index));
}

// Places an element in the root group and pushes it with `metatable`.
int Push(lua_State* L, UIElement* element, float x, float y, float w, float h, const char* metatable) {
    LuaGui& gui = *LuaGui::FromState(L);
    element->SetRect(x, y, w, h);
    gui.manager->rootGroup->Add(element);
    LuaGui::PushElement(L, element, metatable);
    return 1;
}

int32_t CheckId(lua_State* L, int index, int32_t last, const char* message) {
    const auto id = int32_t(luaL_checknumber(L, index));
    if (id < 0 || id > last) luaL_error(L, "%s", message);
    return id;
}

// The order of the envelope display's arguments is kept as the scripts write it: height before width.
int LuaEnvelopeDisplay(lua_State* L) {
    const int32_t id = CheckId(L, 1, 2, "envelopeDisplay id out of range");
    Manager* manager = LuaGui::FromState(L)->manager;
    return Push(L, new EnvDisplay(manager, id), Num(L, 2), Num(L, 3), Num(L, 5), Num(L, 4),
                "BRgui.EnvDisplay");
}

int LuaCalibrationDisplay(lua_State* L) {
    Manager* manager = LuaGui::FromState(L)->manager;
    return Push(L, new CalibrationDisplay(manager), Num(L, 1), Num(L, 2), Num(L, 3), Num(L, 4),
                "BRgui.CalibrationDisplay");
}

int LuaWaveformDisplay(lua_State* L) {
    const int32_t id = CheckId(L, 1, 1, "waveformDisplay id out of range");
    Manager* manager = LuaGui::FromState(L)->manager;
    return Push(L, new WaveformDisplay(manager, id), Num(L, 2), Num(L, 3), Num(L, 4), Num(L, 5),
                "BRgui.WaveformDisplay");
}

int LuaFunctionDisplay(lua_State* L) {
    const int32_t id = CheckId(L, 1, 1, "functionDisplay id out of range");
    Manager* manager = LuaGui::FromState(L)->manager;
    return Push(L, new FunctionDisplay(manager, id), Num(L, 2), Num(L, 3), Num(L, 4), Num(L, 5),
                "BRgui.FunctionDisplay");
}

// stepEditor( id, x, y, w, h [, firstStep, stepCount] ): by default all 96 steps of the lane.
int LuaStepEditor(lua_State* L) {
    const int32_t id = CheckId(L, 1, 1, "stepEditor id out of range");
    Manager* manager = LuaGui::FromState(L)->manager;
    const auto first = int32_t(luaL_optnumber(L, 6, 1));
    const auto count = int32_t(luaL_optnumber(L, 7, 97 - first));
    if (first < 1 || count < 1 || first + count > 97) luaL_error(L, "stepEditor steps out of range");
    return Push(L, new StepEditor(manager, id, first, count), Num(L, 2), Num(L, 3), Num(L, 4), Num(L, 5),
                "BRgui.StepEditor");
}

int LuaDACEditor(lua_State* L) {
    const int32_t id = CheckId(L, 1, 1, "dacEditor id out of range");
    Manager* manager = LuaGui::FromState(L)->manager;
    return Push(L, new DACEditor(manager, id), Num(L, 2), Num(L, 3), Num(L, 4), Num(L, 5), "BRgui.DACEditor");
}

int LuaRandomRegister(lua_State* L) {
    const int32_t id = CheckId(L, 1, 1, "randomRegister id out of range");
    Manager* manager = LuaGui::FromState(L)->manager;
    return Push(L, new RandomRegisterEditor(manager, id), Num(L, 2), Num(L, 3), Num(L, 4), Num(L, 5),
                "BRgui.RandomRegister");
}

int LuaInfoDisplay(lua_State* L) {
    Manager* manager = LuaGui::FromState(L)->manager;
    return Push(L, new InfoDisplay(manager, int32_t(luaL_checknumber(L, 5))), Num(L, 1), Num(L, 2), Num(L, 3),
                Num(L, 4), "BRgui.Element");
}

int LuaQuantizerInfoDisplay(lua_State* L) {
    const auto index = int32_t(luaL_checknumber(L, 5));
    if (index < 0 || index > 1) luaL_error(L, "infoDisplay index out of range: %d", int(index));
    Manager* manager = LuaGui::FromState(L)->manager;
    return Push(L, new QuantizerInfoDisplay(manager, index), Num(L, 1), Num(L, 2), Num(L, 3), Num(L, 4),
                "BRgui.Element");
}

template <class Display>
int LuaPlainDisplay(lua_State* L, const char* metatable) {
    Manager* manager = LuaGui::FromState(L)->manager;
    return Push(L, new Display(manager), Num(L, 1), Num(L, 2), Num(L, 3), Num(L, 4), metatable);
}
int LuaFollowerInfoDisplay(lua_State* L) {
    return LuaPlainDisplay<FollowerInfoDisplay>(L, "BRgui.Element");
}
int LuaFollowerEnvDisplay(lua_State* L) {
    return LuaPlainDisplay<FollowerEnvDisplay>(L, "BRgui.FollowerEnvDisplay");
}
int LuaFollowerPitchDisplay(lua_State* L) {
    return LuaPlainDisplay<FollowerPitchDisplay>(L, "BRgui.FollowerPitchDisplay");
}
int LuaLearnerInfoDisplay(lua_State* L) {
    return LuaPlainDisplay<LearnerInfoDisplay>(L, "BRgui.Element");
}

// midiBrowseButton( label, tooltip, property, x, y, w, h ): opens the MIDI browser for the property.
int LuaMidiBrowseButton(lua_State* L) {
    auto& gui = static_cast<PluginLuaGui&>(*LuaGui::FromState(L));
    const char* label = luaL_checkstring(L, 1);
    const char* tooltip = luaL_optstring(L, 2, "");
    const auto property = uint32_t(luaL_checknumber(L, 3));
    PluginLuaGui* owner = &gui;
    auto* button = new MIDIBrowseButton(gui.manager, label, tooltip, [owner, property] {
        // The browser dialog belongs to the window; until it is there the request is kept.
        owner->midiBrowseRequests.push_back(property);
    });
    return Push(L, button, Num(L, 4), Num(L, 5), Num(L, 6), Num(L, 7), "BRgui.Element");
}

int LuaSendOSC(lua_State* L) {
    luaL_checkstring(L, 1);
    luaL_checkstring(L, 2);
    return OSCHelper::SendOSC(L);
}

// Colour methods: upvalue 1 the metatable, 2 the type error, 3 which colour (0 background, 1 fill,
// 2 line, 3 peak line).
int SetDisplayColour(lua_State* L) {
    const char* metatable = lua_tostring(L, lua_upvalueindex(1));
    void* data = lua_touserdata(L, 1);
    bool same = false;
    if (data && lua_getmetatable(L, 1)) {
        lua_getfield(L, LUA_REGISTRYINDEX, metatable);
        same = lua_rawequal(L, -1, -2);
        lua_pop(L, 2);
    }
    if (!same) luaL_error(L, "%s", lua_tostring(L, lua_upvalueindex(2)));
    auto* element = *static_cast<UIElement**>(data);
    const auto which = int(lua_tonumber(L, lua_upvalueindex(3)));
    float* colour = nullptr;
    if (auto* display = dynamic_cast<ModuleDisplay*>(element)) {
        float* colours[4] = {display->backgroundColour, display->fillColour, display->lineColour,
                             display->peakLineColour};
        colour = colours[which];
    } else if (auto* row = dynamic_cast<RowEditor*>(element)) {
        float* colours[4] = {row->backgroundColour, row->fillColour, row->lineColour, row->lineColour};
        colour = colours[which];
    } else if (auto* cells = dynamic_cast<RandomRegisterEditor*>(element)) {
        float* colours[4] = {cells->backgroundColour, cells->fillColour, cells->lineColour,
                             cells->lineColour};
        colour = colours[which];
    }
    if (colour)
        for (int i = 0; i < 4; ++i)
            colour[i] = float(luaL_optnumber(L, 2 + i, 1.0));
    return 0;
}

struct DisplayMetatable {
    const char* name;
    const char* expected;
    int colours;  // 2: background and line; 3: with fill; 4: with the peak line too
};

const DisplayMetatable kDisplayMetatables[] = {
    {"BRgui.EnvDisplay", "envdisplay expected", 3},
    {"BRgui.CalibrationDisplay", "calibrationdisplay expected", 2},
    {"BRgui.WaveformDisplay", "waveformdisplay expected", 2},
    {"BRgui.FollowerEnvDisplay", "followerenvdisplay expected", 4},
    {"BRgui.FollowerPitchDisplay", "followerpitchdisplay expected", 3},
    {"BRgui.StepEditor", "stepeditor expected", 3},
    {"BRgui.FunctionDisplay", "functiondisplay expected", 2},
    {"BRgui.RandomRegister", "randomregister expected", 3},
    {"BRgui.DACEditor", "daceditor expected", 3},
};

const luaL_Reg kDisplayGlobals[] = {{"envelopeDisplay", LuaEnvelopeDisplay},
                                    {"calibrationDisplay", LuaCalibrationDisplay},
                                    {"waveformDisplay", LuaWaveformDisplay},
                                    {"functionDisplay", LuaFunctionDisplay},
                                    {"stepEditor", LuaStepEditor},
                                    {"dacEditor", LuaDACEditor},
                                    {"randomRegister", LuaRandomRegister},
                                    {"infoDisplay", LuaInfoDisplay},
                                    {"quantizerInfoDisplay", LuaQuantizerInfoDisplay},
                                    {"followerInfoDisplay", LuaFollowerInfoDisplay},
                                    {"followerEnvDisplay", LuaFollowerEnvDisplay},
                                    {"followerPitchDisplay", LuaFollowerPitchDisplay},
                                    {"learnerInfoDisplay", LuaLearnerInfoDisplay},
                                    {"midiBrowseButton", LuaMidiBrowseButton},
                                    {"sendOSC", LuaSendOSC},
                                    {nullptr, nullptr}};

}  // namespace

// Registers the constructors, and adds the colour methods to the display metatables made before.
void RegisterDisplayFunctions(lua_State* L) {
    for (const luaL_Reg* f = kDisplayGlobals; f->name; ++f)
        lua_register(L, f->name, f->func);
    const char* methods[4] = {"setBackgroundColour", "setFillColour", "setLineColour", "setPeakLineColour"};
    for (const DisplayMetatable& table : kDisplayMetatables) {
        luaL_getmetatable(L, table.name);
        for (int which = 0; which < 4; ++which) {
            const bool wanted = which == 0 || which == 2 || (which == 1 && table.colours >= 3) ||
                                (which == 3 && table.colours == 4);
            if (!wanted) continue;
            lua_pushstring(L, table.name);
            lua_pushstring(L, table.expected);
            lua_pushinteger(L, which);
            lua_pushcclosure(L, SetDisplayColour, 3);
            lua_setfield(L, -2, methods[which]);
        }
        lua_pop(L, 1);
    }
}

}  // namespace BR
