// The Lua state of one open editor: the constructor functions the panel scripts call, the element
// metatables, skin lookup, and the running of "gui.lua" and a module's panel script.
#pragma once

#include <cstdint>
#include <list>
#include <map>
#include <string>
#include <vector>

struct lua_State;
class BrelCorvaneBase;

namespace BR {

class Manager;
class UIElement;

class LuaGui;

// The action of a key of the button lookup table.
struct ButtonAction {
    void (*function)(LuaGui* gui);
    int32_t id;
};

class LuaGui {
public:
    struct LuaButtonContext {
        LuaGui* gui;
        int functionRef;
    };
    struct PropertyContext {
        LuaGui* gui;
        uint32_t property;
    };

    // Reads the preference "Skin" and finds its folder under the per-user Skins folder.
    explicit LuaGui(BrelCorvaneBase* module);
    virtual ~LuaGui();
    virtual void Init(Manager* manager) = 0;
    // Each pushes the new element onto the Lua stack and returns 1, or raises a Lua error.
    virtual int CreateKnob(lua_State* L, int32_t parameter, float x, float y, float size) = 0;
    virtual int CreateSlider(lua_State* L, int argumentCount, int32_t parameter, float x, float y, float w,
                             float h, bool vertical) = 0;
    virtual int CreateButton(lua_State* L, int argumentCount, const char* labelText, int32_t actionId,
                             float x, float y, float w, float h, const char* tooltip) = 0;
    virtual int CreateLuaButton(lua_State* L, int argumentCount, const char* labelText,
                                LuaButtonContext* context, float x, float y, float w, float h,
                                const char* tooltip, bool isToggle) = 0;
    virtual int CreatePropertyTriggerButton(lua_State* L, int argumentCount, const char* labelText,
                                            PropertyContext* context, float x, float y, float w, float h,
                                            const char* tooltip) = 0;
    virtual int CreatePropertyButton(lua_State* L, int argumentCount, const char* labelText,
                                     uint32_t property, float x, float y, float w, float h,
                                     const char* tooltip, int mode) = 0;
    virtual int CreateDropDown(lua_State* L, int32_t parameter, float x, float y, float w, float h) = 0;
    virtual void AddElementMetatableNames() {}

    // Builds the state once: libraries, functions, metatables, globals, then the four scripts in order.
    lua_State* GetLuaState();
    // Runs a file from the skin (nothing when there is no skin) or from the built-in files. A failure is
    // logged as "failed to run buffer: <error>" and the caller goes on.
    void RunScript(const std::string& name, bool fromSkin);
    // The script's getWindowSize(); 0 by 0 when the call fails.
    void GetWindowSize(int& width, int& height);
    // Calls createUI() with pcall; its result is deliberately not checked (a partial panel stays usable),
    // but the text of a failure is logged and shown in the status line.
    void CreateUI();
    // getFont, getLabelFont, getTextFieldFont: the first font of each list that can be found.
    void ApplyFonts();
    // A line of the Lua error log, also shown in the status line.
    void LogError(const std::string& text);

    // Pushes a new userdata for `element` with the metatable `metatable`.
    static void PushElement(lua_State* L, void* element, const char* metatable);
    // The element of argument `index` if its metatable is one of `elementMetatables`; else raises
    // "%s expected, got %s".
    UIElement* CheckElement(lua_State* L, int index);
    static LuaGui* FromState(lua_State* L);
    int32_t ParameterArgument(lua_State* L, int index);

    Manager* manager = nullptr;
    std::string skinName;
    std::string skinPath;
    std::vector<std::string> elementMetatables;
    lua_State* luaState = nullptr;
    std::map<std::string, uint32_t> resourceIds;
    std::list<LuaButtonContext> luaButtonContexts;
    std::list<PropertyContext> propertyContexts;
    BrelCorvaneBase* module;
    std::map<std::string, int32_t> parameterLookup;
    std::vector<std::string> errorLog;

protected:
    virtual void RegisterFunctions(lua_State* L);
};

// The text of a built-in file ("gui.lua", "gui_dc.lua"), or null.
const std::string* FindBuiltInScript(const std::string& name);

}  // namespace BR
