// The state of a panel: skin lookup, the running of the scripts in their order, window size, fonts.
#include "LuaGui.h"

#include <cstdio>
#include <fstream>
#include <lua5.1/lua.hpp>
#include <sstream>

#include "GuiTexture.h"
#include "Manager.h"
#include "framework/BrelCorvaneBase.h"
#include "framework/PreferenceStore.h"

namespace BR {

namespace {

bool Readable(const std::string& path) {
    std::ifstream file(path);
    return bool(file);
}

bool ReadFile(const std::string& path, std::string& text) {
    std::ifstream file(path, std::ios::binary);
    if (!file) return false;
    std::ostringstream buffer;
    buffer << file.rdbuf();
    text = buffer.str();
    return true;
}

const char* kResourceFolder = "/Contents/Resources/";

}  // namespace

void RegisterLuaGuiFunctions(lua_State* L);
void RegisterLuaGuiMetatables(lua_State* L);

LuaGui::LuaGui(BrelCorvaneBase* module_) : module(module_) {
    resourceIds = {{"buttons.png", 120},
                   {"gui.lua", 135},
                   {"gui_acencoder.lua", 150},
                   {"gui_cvinput.lua", 151},
                   {"gui_cvtomidi.lua", 152},
                   {"gui_cvtoosc.lua", 153},
                   {"gui_dc.lua", 154},
                   {"gui_ardentcontroller.lua", 155},
                   {"gui_basaltcontroller.lua", 156},
                   {"gui_cindercombiner.lua", 157},
                   {"gui_dunmorecombiner.lua", 170},
                   {"gui_lfo.lua", 158},
                   {"gui_quantizer.lua", 159},
                   {"gui_smux.lua", 161},
                   {"gui_steplfo.lua", 164},
                   {"gui_sync.lua", 160},
                   {"gui_trigger.lua", 162},
                   {"gui_voicecontroller.lua", 163},
                   {"gui_acencoder6.lua", 165},
                   {"gui_follower.lua", 166},
                   {"gui_learner.lua", 168},
                   {"gui_soundplane.lua", 167},
                   {"gui_function.lua", 169}};
    PreferenceStore::GetString("Skin", skinName);
    if (!skinName.empty()) {
        // The bare name first, then the packaged form with ".bundle"; neither readable: the built-in look.
        std::string path = SkinsFolder("Corvane") + skinName;
        if (!Readable(path)) path += ".bundle";
        if (Readable(path)) skinPath = path;
    }
}

LuaGui::~LuaGui() {
    parameterLookup.clear();
    if (luaState) lua_close(luaState);
    luaState = nullptr;
    luaButtonContexts.clear();
    propertyContexts.clear();
}

LuaGui* LuaGui::FromState(lua_State* L) {
    lua_getfield(L, LUA_REGISTRYINDEX, "BRgui::kViewRefcon");
    auto* gui = static_cast<LuaGui*>(lua_touserdata(L, -1));
    lua_pop(L, 1);
    return gui;
}

void LuaGui::RegisterFunctions(lua_State* L) {
    RegisterLuaGuiFunctions(L);
}

lua_State* LuaGui::GetLuaState() {
    if (luaState) return luaState;
    lua_State* L = luaL_newstate();
    luaState = L;
    luaL_openlibs(L);
    RegisterFunctions(L);
    RegisterLuaGuiMetatables(L);
    elementMetatables = {"BRgui.Element", "BRgui.Label", "BRgui.TextField", "BRgui.PropertyTextFied"};
    AddElementMetatableNames();
    lua_pushlightuserdata(L, this);
    lua_setfield(L, LUA_REGISTRYINDEX, "BRgui::kViewRefcon");
    parameterLookup.clear();
    if (manager)
        for (int32_t i = 0; i < manager->NumParameters(); ++i)
            parameterLookup.emplace(manager->ParameterInfo(i).name, i);
    lua_pushlightuserdata(L, &parameterLookup);
    lua_setfield(L, LUA_REGISTRYINDEX, "BRgui::kParamLookup");
    lua_pushboolean(L, 0), lua_setglobal(L, "isMac");
    lua_pushboolean(L, 0), lua_setglobal(L, "isWin");
    lua_pushboolean(L, 1), lua_setglobal(L, "isVST");
    lua_pushboolean(L, 0), lua_setglobal(L, "isAU");
    lua_pushinteger(L, 2), lua_setglobal(L, "majorVersion");
    lua_pushinteger(L, 0), lua_setglobal(L, "minorVersion");
    lua_pushinteger(L, 0), lua_setglobal(L, "dotVersion");
    lua_pushstring(L, "2.0.0"), lua_setglobal(L, "version");
    const std::string script = module ? module->GetGuiScriptName() : "";
    RunScript("gui.lua", true);
    if (!script.empty()) RunScript(script, true);
    RunScript("gui.lua", false);
    if (!script.empty()) RunScript(script, false);
    return L;
}

void LuaGui::LogError(const std::string& text) {
    errorLog.push_back(text);
    std::fputs(text.c_str(), stderr);
    if (manager) {
        std::string shown = text;
        while (!shown.empty() && shown.back() == '\n')
            shown.pop_back();
        manager->hoveredParameter = manager->MessageIdForText(shown);
    }
}

void LuaGui::RunScript(const std::string& name, bool fromSkin) {
    lua_State* L = luaState;
    std::string text;
    if (fromSkin) {
        if (skinPath.empty()) return;
        if (!ReadFile(skinPath + kResourceFolder + name, text)) {
            // A skin need not carry every file: the built-in one runs after this.
            return;
        }
    } else {
        const std::string* builtIn = resourceIds.count(name) ? FindBuiltInScript(name) : nullptr;
        if (!builtIn) {
            // A missing built-in is a build error; reported once and nothing runs.
            LogError("failed to find gui.lua in resouce id lookup\n");
            return;
        }
        text = *builtIn;
    }
    if (luaL_loadbuffer(L, text.data(), text.size(), name.c_str()) != 0 || lua_pcall(L, 0, 0, 0) != 0) {
        char line[1024];
        std::snprintf(line, sizeof line, "failed to run buffer: %s\n", lua_tostring(L, -1));
        lua_pop(L, 1);
        LogError(line);
    }
}

void LuaGui::GetWindowSize(int& width, int& height) {
    lua_State* L = GetLuaState();
    width = height = 0;
    lua_getglobal(L, "getWindowSize");
    if (lua_pcall(L, 0, 2, 0) != 0) {
        lua_pop(L, 1);
        return;
    }
    width = int(lua_tonumber(L, -2));
    height = int(lua_tonumber(L, -1));
    lua_pop(L, 2);
}

void LuaGui::CreateUI() {
    lua_State* L = GetLuaState();
    lua_getglobal(L, "createUI");
    if (lua_pcall(L, 0, 0, 0) != 0) {
        // What was built so far stays in place and works.
        LogError(std::string(lua_tostring(L, -1) ? lua_tostring(L, -1) : "createUI failed") + "\n");
        lua_pop(L, 1);
    }
}

void LuaGui::ApplyFonts() {
    lua_State* L = GetLuaState();
    const char* functions[3] = {"getFont", "getLabelFont", "getTextFieldFont"};
    std::vector<std::string> names;
    float sizes[3] = {0, 0, 0};
    for (int f = 0; f < 3; ++f) {
        lua_getglobal(L, functions[f]);
        if (!lua_isfunction(L, -1) || lua_pcall(L, 0, 1, 0) != 0) {
            lua_pop(L, 1);
            continue;
        }
        if (lua_istable(L, -1)) {
            for (int i = 1;; ++i) {
                lua_rawgeti(L, -1, i);
                if (!lua_istable(L, -1)) {
                    lua_pop(L, 1);
                    break;
                }
                lua_getfield(L, -1, "name");
                lua_getfield(L, -2, "size");
                if (lua_isstring(L, -2)) {
                    if (f == 0) names.push_back(lua_tostring(L, -2));
                    if (sizes[f] == 0) sizes[f] = float(lua_tonumber(L, -1));
                }
                lua_pop(L, 3);
            }
        }
        lua_pop(L, 1);
    }
    if (manager && !names.empty())
        manager->SetFontChoices(names, sizes[0] > 0 ? sizes[0] : 13, sizes[1] > 0 ? sizes[1] : 11,
                                sizes[2] > 0 ? sizes[2] : 11);
}

void LuaGui::PushElement(lua_State* L, void* element, const char* metatable) {
    void** box = static_cast<void**>(lua_newuserdata(L, sizeof(void*)));
    *box = element;
    luaL_getmetatable(L, metatable);
    lua_setmetatable(L, -2);
}

UIElement* LuaGui::CheckElement(lua_State* L, int index) {
    void* data = lua_touserdata(L, index);
    if (data && lua_getmetatable(L, index)) {
        for (const std::string& name : elementMetatables) {
            lua_getfield(L, LUA_REGISTRYINDEX, name.c_str());
            const bool same = lua_rawequal(L, -1, -2);
            lua_pop(L, 1);
            if (same) {
                lua_pop(L, 1);
                return *static_cast<UIElement**>(data);
            }
        }
        lua_pop(L, 1);
    }
    const char* actual = lua_isnone(L, index) ? "no value" : luaL_typename(L, index);
    luaL_error(L, "%s expected, got %s", "element", actual);
    return nullptr;
}

int32_t LuaGui::ParameterArgument(lua_State* L, int index) {
    if (lua_type(L, index) == LUA_TNUMBER) return int32_t(lua_tonumber(L, index));
    const char* name = luaL_checkstring(L, index);
    auto it = parameterLookup.find(name);
    if (it == parameterLookup.end()) luaL_error(L, "parameter not found: '%s'", name);
    return it->second;
}

const std::string* FindBuiltInScript(const std::string& name) {
    static std::map<std::string, std::string> texts;
    auto it = texts.find(name);
    if (it != texts.end()) return &it->second;
    const std::vector<uint8_t>* bytes = FindEmbeddedResource(name);
    if (!bytes) return nullptr;
    return &texts.emplace(name, std::string(bytes->begin(), bytes->end())).first->second;
}

}  // namespace BR
