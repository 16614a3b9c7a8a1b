// Knobs, sliders, buttons and drop-downs made for the scripts, the renderers, and the button actions.
#include "PluginLuaGui.h"

#include <fstream>
#include <lua5.1/lua.hpp>

#include "GuiTexture.h"
#include "ZPmanager.h"
#include "framework/BrelCorvaneBase.h"
#include "widgets/ArcKnobRenderer.h"
#include "widgets/Button.h"
#include "widgets/DropDown.h"
#include "widgets/Group.h"
#include "widgets/Knob.h"
#include "widgets/Slider.h"

namespace BR {

void MakeMetatable(lua_State* L, const char* name, const luaL_Reg* methods, bool elementMethods);

namespace {

const char* kPluginMetatables[] = {
    "BRgui.EnvDisplay",         "BRgui.CalibrationDisplay",   "BRgui.WaveformDisplay",
    "BRgui.FollowerEnvDisplay", "BRgui.FollowerPitchDisplay", "BRgui.StepEditor",
    "BRgui.FunctionDisplay",    "BRgui.RandomRegister",       "BRgui.DACEditor"};

// The action a file or dialog button takes is recorded; its dialog belongs to the window's dialogs.
void RecordAction(LuaGui* gui, int32_t id) {
    static_cast<PluginLuaGui*>(gui)->pressedActions.push_back(id);
}

Effect* CheckRenderer(lua_State* L, int index, const char* metatable, const char* message) {
    void* data = lua_touserdata(L, index);
    if (data && lua_getmetatable(L, index)) {
        lua_getfield(L, LUA_REGISTRYINDEX, metatable);
        const bool same = lua_rawequal(L, -1, -2);
        lua_pop(L, 2);
        if (same) return *static_cast<Effect**>(data);
    }
    luaL_error(L, "%s", message);
    return nullptr;
}

GuiTexture* CheckTexture(lua_State* L, int index) {
    return reinterpret_cast<GuiTexture*>(CheckRenderer(L, index, "BRgui.Texture", "texture expected"));
}

void Place(lua_State* L, UIElement* element, float x, float y, float w, float h, const char* metatable) {
    LuaGui& gui = *LuaGui::FromState(L);
    element->SetRect(x, y, w, h);
    gui.manager->rootGroup->Add(element);
    LuaGui::PushElement(L, element, metatable);
}

int LuaTexture(lua_State* L) {
    LuaGui& gui = *LuaGui::FromState(L);
    const std::string file = luaL_checkstring(L, 1);
    std::string name;
    if (!gui.skinPath.empty()) {
        const std::string path = gui.skinPath + "/Contents/Resources/" + file;
        if (std::ifstream(path)) name = path;
    }
    if (name.empty()) {
        if (!gui.resourceIds.count(file)) luaL_error(L, "failed to find texture in resouce id lookup");
        name = file;
    }
    LuaGui::PushElement(L, gui.manager->AddTexture(name), "BRgui.Texture");
    return 1;
}

int LuaFont(lua_State* L) {
    // Fonts are chosen by getFont and friends; a handle records the name and size only.
    lua_newtable(L);
    lua_pushvalue(L, 1), lua_setfield(L, -2, "name");
    lua_pushvalue(L, 2), lua_setfield(L, -2, "size");
    luaL_getmetatable(L, "BRgui.Font");
    lua_setmetatable(L, -2);
    return 1;
}

int LuaSetBackgroundTexture(lua_State* L) {
    LuaGui& gui = *LuaGui::FromState(L);
    GuiTexture* texture = CheckTexture(L, 1);
    const char* mode = luaL_optstring(L, 2, "tile");
    if (auto* zp = dynamic_cast<ZPmanager*>(gui.manager))
        zp->SetBackgroundTexture(texture->name, std::string(mode) == "tile" ? 1 : 0);
    return 0;
}

int LuaArcKnobRenderer(lua_State* L) {
    LuaGui& gui = *LuaGui::FromState(L);
    auto* renderer = new ArcKnobRenderer(CheckTexture(L, 1), float(luaL_checknumber(L, 2)),
                                         float(luaL_checknumber(L, 3)), float(luaL_checknumber(L, 4)),
                                         float(luaL_checknumber(L, 5)), float(luaL_checknumber(L, 6)));
    gui.manager->animatedElements.push_back(renderer);
    LuaGui::PushElement(L, renderer, "BRgui.KnobRenderer");
    return 1;
}

int LuaSpinKnobRenderer(lua_State* L) {
    LuaGui& gui = *LuaGui::FromState(L);
    auto* renderer = new TexturedKnobRenderer(CheckTexture(L, 1), float(luaL_checknumber(L, 2)),
                                              float(luaL_checknumber(L, 3)), float(luaL_checknumber(L, 4)));
    gui.manager->animatedElements.push_back(renderer);
    LuaGui::PushElement(L, static_cast<ArcKnobRenderer*>(renderer), "BRgui.KnobRenderer");
    return 1;
}

int LuaSliderRenderer(lua_State* L) {
    LuaGui& gui = *LuaGui::FromState(L);
    auto* renderer = new TexturedSliderRenderer(CheckTexture(L, 1), CheckTexture(L, 2));
    gui.manager->animatedElements.push_back(renderer);
    LuaGui::PushElement(L, renderer, "BRgui.SliderRenderer");
    return 1;
}

int LuaParamButton(lua_State* L) {
    LuaGui& gui = *LuaGui::FromState(L);
    const int32_t parameter = gui.ParameterArgument(L, 1);
    Place(L, new CorvButton(gui.manager, parameter, luaL_checkstring(L, 2)), float(luaL_checknumber(L, 3)),
          float(luaL_checknumber(L, 4)), float(luaL_checknumber(L, 5)), float(luaL_checknumber(L, 6)),
          "BRgui.Element");
    return 1;
}

const luaL_Reg kPluginGlobals[] = {{"texture", LuaTexture},
                                   {"font", LuaFont},
                                   {"setBackgroundTexture", LuaSetBackgroundTexture},
                                   {"arcKnobRenderer", LuaArcKnobRenderer},
                                   {"spinKnobRenderer", LuaSpinKnobRenderer},
                                   {"sliderRenderer", LuaSliderRenderer},
                                   {"paramButton", LuaParamButton},
                                   {nullptr, nullptr}};

}  // namespace

void RegisterLuaGuiFunctions(lua_State* L);
void RegisterDisplayFunctions(lua_State* L);

PluginLuaGui::PluginLuaGui(BrelCorvaneBase* module) : LuaGui(module) {}

PluginLuaGui::~PluginLuaGui() {
    // The state goes first (in the base), then the lookup entries.
    if (luaState) {
        lua_close(luaState);
        luaState = nullptr;
    }
    delete buttonLookup;
}

void PluginLuaGui::RegisterFunctions(lua_State* L) {
    RegisterLuaGuiFunctions(L);
    for (const luaL_Reg* f = kPluginGlobals; f->name; ++f)
        lua_register(L, f->name, f->func);
    luaL_newmetatable(L, "BRgui.KnobRenderer");
    luaL_newmetatable(L, "BRgui.SliderRenderer");
    lua_pop(L, 2);
    for (const char* name : kPluginMetatables)
        MakeMetatable(L, name, nullptr, true);
    RegisterDisplayFunctions(L);
}

void PluginLuaGui::AddElementMetatableNames() {
    for (const char* name : kPluginMetatables)
        elementMetatables.push_back(name);
}

void PluginLuaGui::Init(Manager* manager_) {
    manager = manager_;
    if (!buttonLookup) {
        buttonLookup = new std::map<std::string, ButtonAction>{
            {"Prefs", {[](LuaGui* gui) { RecordAction(gui, -2); }, -2}},
            {"VCSave", {[](LuaGui* gui) { RecordAction(gui, -3); }, -3}},
            {"VCLoad", {[](LuaGui* gui) { RecordAction(gui, -4); }, -4}},
            {"QuantizerLoad", {[](LuaGui* gui) { RecordAction(gui, -5); }, -5}},
            {"Transfer", {[](LuaGui* gui) { RecordAction(gui, -6); }, -6}}};
    }
    lua_State* L = GetLuaState();
    lua_pushlightuserdata(L, buttonLookup);
    lua_setfield(L, LUA_REGISTRYINDEX, "BRgui::kButtonLookup");
}

void PluginLuaGui::OpenPanel(Manager* manager_) {
    Init(manager_);
    int width = 0, height = 0;
    GetWindowSize(width, height);
    manager->SetDesignSize(width, height);
    CreateUI();
    ApplyFonts();
    manager->RedrawLabels();
}

int PluginLuaGui::CreateKnob(lua_State* L, int32_t parameter, float x, float y, float size) {
    lua_getglobal(L, "theKnobRenderer");
    auto* renderer = static_cast<ArcKnobRenderer*>(
        CheckRenderer(L, -1, "BRgui.KnobRenderer", "couldn't get theKnobRenderer"));
    lua_pop(L, 1);
    if (parameter < 0 || parameter >= manager->NumParameters()) luaL_error(L, "parameter out of range");
    Place(L, new ArcKnob(manager, parameter, renderer), x, y, size, size, "BRgui.Element");
    return 1;
}

int PluginLuaGui::CreateSlider(lua_State* L, int, int32_t parameter, float x, float y, float w, float h,
                               bool vertical) {
    lua_getglobal(L, "theSliderRenderer");
    auto* renderer = static_cast<TexturedSliderRenderer*>(
        CheckRenderer(L, -1, "BRgui.SliderRenderer", "couldn't get theSliderRenderer"));
    lua_pop(L, 1);
    Place(L, new TexturedSlider(manager, parameter, vertical, renderer), x, y, w, h, "BRgui.Element");
    return 1;
}

int PluginLuaGui::CreateButton(lua_State* L, int, const char* labelText, int32_t actionId, float x, float y,
                               float w, float h, const char* tooltip) {
    void (*function)(LuaGui*) = nullptr;
    for (auto& [key, action] : *buttonLookup)
        if (action.id == actionId) function = action.function;
    Place(L, new ZephButton(manager, labelText, tooltip, [this, function] { function(this); }), x, y, w, h,
          "BRgui.Element");
    return 1;
}

int PluginLuaGui::CreateLuaButton(lua_State* L, int, const char* labelText, LuaButtonContext* context,
                                  float x, float y, float w, float h, const char* tooltip, bool isToggle) {
    auto callback = [context] {
        // Window thread; a failing callback is ignored.
        lua_State* state = context->gui->luaState;
        lua_rawgeti(state, LUA_REGISTRYINDEX, context->functionRef);
        if (lua_pcall(state, 0, 0, 0) != 0) lua_pop(state, 1);
    };
    Place(L,
          new ZephStatefulButton(manager, labelText, tooltip, callback,
                                 isToggle ? StatefulButton::kToggle : StatefulButton::kPush),
          x, y, w, h, "BRgui.Element");
    return 1;
}

int PluginLuaGui::CreatePropertyTriggerButton(lua_State* L, int, const char* labelText,
                                              PropertyContext* context, float x, float y, float w, float h,
                                              const char* tooltip) {
    auto callback = [context] {
        const uint8_t one = 1;
        if (context->gui->module) context->gui->module->SetProperty(context->property, &one, 1);
    };
    Place(L, new ZephButton(manager, labelText, tooltip, callback), x, y, w, h, "BRgui.Element");
    return 1;
}

int PluginLuaGui::CreatePropertyButton(lua_State* L, int, const char* labelText, uint32_t property, float x,
                                       float y, float w, float h, const char* tooltip, int mode) {
    Place(L, new ZephPropertyButton(manager, property, labelText, tooltip, PropertyButton::Mode(mode)), x, y,
          w, h, "BRgui.Element");
    return 1;
}

int PluginLuaGui::CreateDropDown(lua_State* L, int32_t parameter, float x, float y, float w, float h) {
    Place(L, new ZPDropDown(manager, parameter), x, y, w, h, "BRgui.Element");
    return 1;
}

}  // namespace BR
