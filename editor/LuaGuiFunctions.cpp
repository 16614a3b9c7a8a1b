// The global functions of the panel language and the methods of groups, elements, labels and fields.
#include <cctype>
#include <cstring>
#include <lua5.1/lua.hpp>
#include <map>
#include <string>

#include "LuaGui.h"
#include "Manager.h"
#include "framework/BrelCorvaneBase.h"
#include "widgets/Button.h"
#include "widgets/Group.h"
#include "widgets/Label.h"
#include "widgets/TextField.h"

namespace BR {

using ButtonLookup = std::map<std::string, ButtonAction>;

namespace {

LuaGui& Gui(lua_State* L) {
    return *LuaGui::FromState(L);
}

float Num(lua_State* L, int index) {
    return float(luaL_checknumber(L, index));
}

char FirstLetter(lua_State* L, int index) {
    const char* text = lua_tostring(L, index);
    return text && *text ? char(std::tolower(static_cast<unsigned char>(*text))) : 0;
}

void* CheckUser(lua_State* L, int index, const char* metatable, const char* expected) {
    void* data = lua_touserdata(L, index);
    if (data && lua_getmetatable(L, index)) {
        lua_getfield(L, LUA_REGISTRYINDEX, metatable);
        const bool same = lua_rawequal(L, -1, -2);
        lua_pop(L, 2);
        if (same) return *static_cast<void**>(data);
    }
    luaL_error(L, "%s", expected);
    return nullptr;
}

Group* CheckGroup(lua_State* L, int index) {
    return static_cast<Group*>(CheckUser(L, index, "BRgui.Group", "group expected"));
}

int LuaGroup(lua_State* L) {
    LuaGui& gui = Gui(L);
    auto* group = new NamedGroup(gui.manager, luaL_checkstring(L, 1), 10);
    if (lua_isnumber(L, 2)) {
        for (float& side : group->sides)
            side = float(lua_tonumber(L, 2));
    } else if (lua_istable(L, 2)) {
        // {left, bottom, right, top}; missing entries are 0.
        for (int i = 0; i < 4; ++i) {
            lua_rawgeti(L, 2, i + 1);
            group->sides[i] = lua_isnumber(L, -1) ? float(lua_tonumber(L, -1)) : 0.0f;
            lua_pop(L, 1);
        }
    }
    gui.manager->rootGroup->Add(group);
    LuaGui::PushElement(L, group, "BRgui.Group");
    return 1;
}

UIElement* ElementOrGroup(lua_State* L, int index) {
    void* data = lua_touserdata(L, index);
    if (data && lua_getmetatable(L, index)) {
        lua_getfield(L, LUA_REGISTRYINDEX, "BRgui.Group");
        const bool isGroup = lua_rawequal(L, -1, -2);
        lua_pop(L, 2);
        if (isGroup) return *static_cast<UIElement**>(data);
    }
    return Gui(L).CheckElement(L, index);
}

// Moves an element out of its present group into `target`.
void Reparent(UIElement* element, Group* target) {
    if (element->parent) {
        auto& list = element->parent->children;
        for (auto it = list.begin(); it != list.end(); ++it)
            if (*it == element) {
                list.erase(it);
                break;
            }
        element->parent = nullptr;
    }
    target->Add(element);
}

int LuaAdd(lua_State* L) {
    Reparent(ElementOrGroup(L, 1), Gui(L).manager->rootGroup);
    return 0;
}

int LuaKnob(lua_State* L) {
    LuaGui& gui = Gui(L);
    const int32_t parameter = gui.ParameterArgument(L, 1);
    // knob(param, renderer, x, y, size) is tolerated: a non-number second argument is skipped.
    const int first = lua_type(L, 2) == LUA_TNUMBER ? 2 : 3;
    return gui.CreateKnob(L, parameter, Num(L, first), Num(L, first + 1), Num(L, first + 2));
}

int LuaSlider(lua_State* L) {
    LuaGui& gui = Gui(L);
    const int32_t parameter = gui.ParameterArgument(L, 1);
    const char letter = FirstLetter(L, 6);
    if (letter != 'h' && letter != 'v')
        luaL_error(L, "unknown slider orientation: %s", lua_tostring(L, 6) ? lua_tostring(L, 6) : "nil");
    return gui.CreateSlider(L, lua_gettop(L), parameter, Num(L, 2), Num(L, 3), Num(L, 4), Num(L, 5),
                            letter == 'v');
}

int LuaButton(lua_State* L) {
    LuaGui& gui = Gui(L);
    const char* action = luaL_checkstring(L, 1);
    lua_getfield(L, LUA_REGISTRYINDEX, "BRgui::kButtonLookup");
    auto* lookup = static_cast<ButtonLookup*>(lua_touserdata(L, -1));
    lua_pop(L, 1);
    if (!lookup) luaL_error(L, "no button lookup table");
    auto it = lookup->find(action);
    if (it == lookup->end()) luaL_error(L, "button not found: %s", action);
    return gui.CreateButton(L, lua_gettop(L), luaL_checkstring(L, 2), it->second.id, Num(L, 3), Num(L, 4),
                            Num(L, 5), Num(L, 6), "");
}

int LuaLuaButton(lua_State* L) {
    LuaGui& gui = Gui(L);
    if (!lua_isfunction(L, 1)) luaL_error(L, "first argument to luaButton() is not a function");
    const char* label = luaL_checkstring(L, 2);
    const char* tooltip = luaL_optstring(L, 3, "");
    const bool toggle = FirstLetter(L, 4) == 't';
    const float x = Num(L, 5), y = Num(L, 6), w = Num(L, 7), h = Num(L, 8);
    lua_pushvalue(L, 1);
    gui.luaButtonContexts.push_back({&gui, luaL_ref(L, LUA_REGISTRYINDEX)});
    return gui.CreateLuaButton(L, lua_gettop(L), label, &gui.luaButtonContexts.back(), x, y, w, h, tooltip,
                               toggle);
}

int LuaPropertyTriggerButton(lua_State* L) {
    LuaGui& gui = Gui(L);
    const auto property = uint32_t(luaL_checknumber(L, 1));
    gui.propertyContexts.push_back({&gui, property});
    return gui.CreatePropertyTriggerButton(L, lua_gettop(L), luaL_checkstring(L, 2),
                                           &gui.propertyContexts.back(), Num(L, 4), Num(L, 5), Num(L, 6),
                                           Num(L, 7), luaL_optstring(L, 3, ""));
}

int LuaPropertyButton(lua_State* L) {
    LuaGui& gui = Gui(L);
    const char letter = FirstLetter(L, 4);
    const int mode = letter == 't' ? 1 : letter == 'i' ? 2 : 0;
    return gui.CreatePropertyButton(L, lua_gettop(L), luaL_checkstring(L, 2),
                                    uint32_t(luaL_checknumber(L, 1)), Num(L, 5), Num(L, 6), Num(L, 7),
                                    Num(L, 8), luaL_optstring(L, 3, ""), mode);
}

int LuaDropDown(lua_State* L) {
    LuaGui& gui = Gui(L);
    return gui.CreateDropDown(L, gui.ParameterArgument(L, 1), Num(L, 2), Num(L, 3), Num(L, 4), Num(L, 5));
}

int LuaLabel(lua_State* L) {
    LuaGui& gui = Gui(L);
    int align = 0;
    float w = 0, h = 0;
    if (lua_gettop(L) >= 4) {
        const char letter = FirstLetter(L, 4);
        align = letter == 'l' ? 1 : letter == 'r' ? 2 : 0;
        w = float(luaL_optnumber(L, 5, 0));
        h = float(luaL_optnumber(L, 6, 0));
    }
    auto* label = new Label(gui.manager, luaL_checkstring(L, 1), Num(L, 2), Num(L, 3), align, w, h);
    gui.manager->rootGroup->Add(label);
    LuaGui::PushElement(L, label, "BRgui.Label");
    return 1;
}

int LuaTextField(lua_State* L) {
    LuaGui& gui = Gui(L);
    const int32_t parameter = gui.ParameterArgument(L, 1);
    auto* field = new TextField(gui.manager, parameter, luaL_optstring(L, 6, ""));
    field->SetRect(Num(L, 2), Num(L, 3), Num(L, 4), Num(L, 5));
    gui.manager->rootGroup->Add(field);
    LuaGui::PushElement(L, field, "BRgui.TextField");
    return 1;
}

int LuaPropertyTextField(lua_State* L) {
    LuaGui& gui = Gui(L);
    auto* field = new PropertyTextField(gui.manager, uint32_t(luaL_checknumber(L, 1)));
    field->tooltip = luaL_optstring(L, 2, "");
    field->SetRect(Num(L, 3), Num(L, 4), Num(L, 5), Num(L, 6));
    gui.manager->rootGroup->Add(field);
    LuaGui::PushElement(L, field, "BRgui.PropertyTextFied");
    return 1;
}

void ReadColour(lua_State* L, int first, float* colour, int count) {
    for (int i = 0; i < count; ++i)
        colour[i] = float(luaL_optnumber(L, first + i, 1.0));
}

int LuaSetBackgroundColour(lua_State* L) {
    ReadColour(L, 1, Gui(L).manager->backgroundColour, 3);
    return 0;
}
int LuaSetBannerColour(lua_State* L) {
    ReadColour(L, 1, Gui(L).manager->bannerColour, 4);
    return 0;
}
int LuaSetBannerTextColour(lua_State* L) {
    ReadColour(L, 1, Gui(L).manager->bannerTextColour, 4);
    return 0;
}
int LuaSetBannerPosition(lua_State* L) {
    Manager& manager = *Gui(L).manager;
    const float height = manager.bannerBounds[3] - manager.bannerBounds[1];
    manager.bannerBounds[1] = Num(L, 1);
    manager.bannerBounds[3] = manager.bannerBounds[1] + height;
    if (lua_gettop(L) >= 2 && !lua_toboolean(L, 2)) manager.bannerMode = 2;
    return 0;
}
int LuaSetBannerBounds(lua_State* L) {
    Gui(L).manager->SetBannerBounds(Num(L, 1), Num(L, 2), Num(L, 3), Num(L, 4));
    return 0;
}
int LuaSetBannerContent(lua_State* L) {
    Manager& manager = *Gui(L).manager;
    const char* mode = luaL_checkstring(L, 1);
    manager.bannerMode = std::strcmp(mode, "none") == 0 ? 2 : FirstLetter(L, 1) == 'n' ? 1 : 0;
    manager.bannerTextX = Num(L, 2);
    manager.statusX = Num(L, 3);
    return 0;
}
int LuaSetGroupActiveColour(lua_State* L) {
    ReadColour(L, 1, gGroupActiveColour, 4);
    return 0;
}
int LuaSetGroupInactiveColour(lua_State* L) {
    ReadColour(L, 1, gGroupInactiveColour, 4);
    return 0;
}
int LuaRedrawLabels(lua_State* L) {
    Gui(L).manager->RedrawLabels();
    return 0;
}

int LuaSetParameter(lua_State* L) {
    LuaGui& gui = Gui(L);
    const int32_t parameter = gui.ParameterArgument(L, 1);
    Manager& manager = *gui.manager;
    if (parameter < 0 || parameter >= manager.NumParameters()) luaL_error(L, "parameter out of range");
    // A gesture of its own, as a control makes one.
    manager.BeginParameterEdit(parameter);
    manager.SetParameterValue(parameter, Num(L, 2));
    if (manager.editedParameter == parameter) manager.EndParameterEdit(parameter);
    return 0;
}
int LuaGetParameter(lua_State* L) {
    LuaGui& gui = Gui(L);
    const int32_t parameter = gui.ParameterArgument(L, 1);
    if (parameter < 0 || parameter >= gui.manager->NumParameters()) luaL_error(L, "parameter out of range");
    lua_pushnumber(L, gui.manager->GetParameterValue(parameter));
    return 1;
}
int LuaGetParameterID(lua_State* L) {
    lua_pushinteger(L, Gui(L).ParameterArgument(L, 1));
    return 1;
}
int LuaGetChannelCount(lua_State* L) {
    lua_pushinteger(L, 2);
    return 1;
}
int LuaGetBooleanProperty(lua_State* L) {
    LuaGui& gui = Gui(L);
    const auto property = uint32_t(luaL_checknumber(L, 1));
    uint8_t value[256] = {};
    bool result = false;
    if (gui.module) {
        if (property == 16) {
            uint32_t size = 0;
            bool writable = false;
            result = gui.module->GetPropertyInfo(property, &size, &writable) == kNoErr && size != 0;
        } else {
            result = gui.module->GetProperty(property, value) == kNoErr && value[0] != 0;
        }
    }
    lua_pushboolean(L, result);
    return 1;
}
int LuaSetStringProperty(lua_State* L) {
    LuaGui& gui = Gui(L);
    size_t length = 0;
    const char* text = luaL_checklstring(L, 2, &length);
    if (gui.module) gui.module->SetProperty(uint32_t(luaL_checknumber(L, 1)), text, uint32_t(length + 1));
    return 0;
}
int LuaSetVisible(lua_State* L) {
    ElementOrGroup(L, 1)->SetVisible(lua_toboolean(L, 2) != 0);
    return 0;
}
int LuaIsVisible(lua_State* L) {
    lua_pushboolean(L, ElementOrGroup(L, 1)->visible != 0);
    return 1;
}

// Methods of groups.
int GroupAdd(lua_State* L) {
    Reparent(ElementOrGroup(L, 2), CheckGroup(L, 1));
    return 0;
}
Box PaddedBounds(Group* group) {
    Box box;
    if (auto* named = dynamic_cast<NamedGroup*>(group)) {
        named->PaddedBounds(box);
    } else {
        for (UIElement* child : group->children)
            child->GetBounds(box);
        if (group->children.empty()) box = Box{{0, 0, 0, 0, 0, 0}};
    }
    return box;
}
int GroupSetPosition(lua_State* L) {
    Group* group = CheckGroup(L, 1);
    float x = Num(L, 2), y = Num(L, 3);
    if (lua_toboolean(L, 4)) {
        // The content's lower left bound, not the origin, lands at (x, y).
        const Box box = PaddedBounds(group);
        x -= box.v[0], y -= box.v[1];
    }
    group->SetPosition(x, y);
    return 0;
}
int GroupWidth(lua_State* L) {
    const Box box = PaddedBounds(CheckGroup(L, 1));
    lua_pushnumber(L, box.v[3] - box.v[0]);
    return 1;
}
int GroupHeight(lua_State* L) {
    const Box box = PaddedBounds(CheckGroup(L, 1));
    lua_pushnumber(L, box.v[4] - box.v[1]);
    return 1;
}
int GroupBounds(lua_State* L) {
    Group* group = CheckGroup(L, 1);
    const Box box = PaddedBounds(group);
    lua_pushnumber(L, box.v[0] + group->offsetX);
    lua_pushnumber(L, box.v[1] + group->offsetY);
    lua_pushnumber(L, box.v[3] + group->offsetX);
    lua_pushnumber(L, box.v[4] + group->offsetY);
    return 4;
}

// Methods of elements.
int ElementSetState(lua_State* L) {
    UIElement* element = Gui(L).CheckElement(L, 1);
    if (auto* stateful = dynamic_cast<StatefulButton*>(element))
        stateful->SetState(int32_t(Num(L, 2)));
    else if (auto* control = dynamic_cast<Control*>(element))
        control->SetValue(Num(L, 2));
    return 0;
}
int ElementGetState(lua_State* L) {
    UIElement* element = Gui(L).CheckElement(L, 1);
    if (auto* stateful = dynamic_cast<StatefulButton*>(element))
        lua_pushinteger(L, stateful->GetState());
    else if (auto* control = dynamic_cast<Control*>(element))
        lua_pushnumber(L, control->Value());
    else
        lua_pushnil(L);
    return 1;
}

Label* CheckLabel(lua_State* L) {
    return static_cast<Label*>(CheckUser(L, 1, "BRgui.Label", "label expected"));
}
TextField* CheckField(lua_State* L) {
    return static_cast<TextField*>(CheckUser(L, 1, "BRgui.TextField", "textfield expected"));
}
int LabelBackground(lua_State* L) {
    ReadColour(L, 2, CheckLabel(L)->backgroundColour, 4);
    return 0;
}
int LabelForeground(lua_State* L) {
    ReadColour(L, 2, CheckLabel(L)->foregroundColour, 4);
    return 0;
}
int FieldBackground(lua_State* L) {
    ReadColour(L, 2, CheckField(L)->backgroundColour, 4);
    return 0;
}
int FieldActive(lua_State* L) {
    ReadColour(L, 2, CheckField(L)->activeColour, 4);
    return 0;
}
int FieldChanged(lua_State* L) {
    ReadColour(L, 2, CheckField(L)->changedColour, 4);
    return 0;
}
int FieldText(lua_State* L) {
    ReadColour(L, 2, CheckField(L)->textColour, 4);
    return 0;
}
int PropertyFieldEditable(lua_State* L) {
    auto* field = static_cast<PropertyTextField*>(
        CheckUser(L, 1, "BRgui.PropertyTextFied", "propertytextfield expected"));
    field->SetEditable(lua_toboolean(L, 2) != 0);
    return 0;
}

const luaL_Reg kGlobals[] = {{"group", LuaGroup},
                             {"add", LuaAdd},
                             {"knob", LuaKnob},
                             {"slider", LuaSlider},
                             {"button", LuaButton},
                             {"luaButton", LuaLuaButton},
                             {"propertyTriggerButton", LuaPropertyTriggerButton},
                             {"propertyButton", LuaPropertyButton},
                             {"dropDown", LuaDropDown},
                             {"label", LuaLabel},
                             {"textField", LuaTextField},
                             {"propertyTextField", LuaPropertyTextField},
                             {"setBackgroundColour", LuaSetBackgroundColour},
                             {"setBannerColour", LuaSetBannerColour},
                             {"setBannerTextColour", LuaSetBannerTextColour},
                             {"setBannerPosition", LuaSetBannerPosition},
                             {"setBannerBounds", LuaSetBannerBounds},
                             {"setBannerContent", LuaSetBannerContent},
                             {"setGroupActiveColour", LuaSetGroupActiveColour},
                             {"setGroupInactiveColour", LuaSetGroupInactiveColour},
                             {"redrawLabels", LuaRedrawLabels},
                             {"setParameter", LuaSetParameter},
                             {"getParameter", LuaGetParameter},
                             {"getParameterID", LuaGetParameterID},
                             {"getChannelCount", LuaGetChannelCount},
                             {"getBooleanProperty", LuaGetBooleanProperty},
                             {"setStringProperty", LuaSetStringProperty},
                             {"elementSetVisible", LuaSetVisible},
                             {"elementIsVisible", LuaIsVisible},
                             {nullptr, nullptr}};

const luaL_Reg kGroupMethods[] = {{"add", GroupAdd},           {"setPosition", GroupSetPosition},
                                  {"width", GroupWidth},       {"height", GroupHeight},
                                  {"bounds", GroupBounds},     {"setVisible", LuaSetVisible},
                                  {"isVisible", LuaIsVisible}, {nullptr, nullptr}};
const luaL_Reg kElementMethods[] = {{"setVisible", LuaSetVisible},
                                    {"isVisible", LuaIsVisible},
                                    {"setState", ElementSetState},
                                    {"getState", ElementGetState},
                                    {nullptr, nullptr}};
const luaL_Reg kLabelMethods[] = {
    {"setBackgroundColour", LabelBackground}, {"setForegroundColour", LabelForeground}, {nullptr, nullptr}};
const luaL_Reg kFieldMethods[] = {{"setBackgroundColour", FieldBackground},
                                  {"setActiveColour", FieldActive},
                                  {"setChangedColour", FieldChanged},
                                  {"setTextColour", FieldText},
                                  {nullptr, nullptr}};
const luaL_Reg kPropertyFieldMethods[] = {{"setEditable", PropertyFieldEditable}, {nullptr, nullptr}};

}  // namespace

// Makes `name` with its __index set to itself, holding the element methods and then `methods`.
void MakeMetatable(lua_State* L, const char* name, const luaL_Reg* methods, bool elementMethods) {
    luaL_newmetatable(L, name);
    lua_pushvalue(L, -1);
    lua_setfield(L, -2, "__index");
    if (elementMethods)
        for (const luaL_Reg* m = kElementMethods; m->name; ++m)
            lua_pushcfunction(L, m->func), lua_setfield(L, -2, m->name);
    for (const luaL_Reg* m = methods; m && m->name; ++m)
        lua_pushcfunction(L, m->func), lua_setfield(L, -2, m->name);
    lua_pop(L, 1);
}

void RegisterLuaGuiFunctions(lua_State* L) {
    for (const luaL_Reg* f = kGlobals; f->name; ++f)
        lua_register(L, f->name, f->func);
}

void RegisterLuaGuiMetatables(lua_State* L) {
    MakeMetatable(L, "BRgui.Group", kGroupMethods, false);
    MakeMetatable(L, "BRgui.Element", nullptr, true);
    MakeMetatable(L, "BRgui.Label", kLabelMethods, true);
    MakeMetatable(L, "BRgui.TextField", kFieldMethods, true);
    MakeMetatable(L, "BRgui.PropertyTextFied", kPropertyFieldMethods, true);
    // Textures and fonts are plain handles without methods.
    luaL_newmetatable(L, "BRgui.Texture");
    luaL_newmetatable(L, "BRgui.Font");
    lua_pop(L, 2);
}

}  // namespace BR
