// A module's panel built by its script in a Lua state of its own, without a window; user folders point
// at a fresh temporary home so that no real preference or skin leaks in.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <lua5.1/lua.hpp>
#include <memory>
#include <string>

#include "EditorRig.h"
#include "editor/PluginLuaGui.h"
#include "editor/widgets/Group.h"
#include "tests/support/Render.h"

namespace BR::Test {

// XDG_CONFIG_HOME and XDG_DATA_HOME under a new temporary folder, removed at the end.
struct TempHome {
    TempHome() {
        char pattern[] = "/tmp/corvane-panel-XXXXXX";
        root = mkdtemp(pattern);
        setenv("XDG_CONFIG_HOME", (root + "/config").c_str(), 1);
        setenv("XDG_DATA_HOME", (root + "/data").c_str(), 1);
    }
    ~TempHome() { std::filesystem::remove_all(root); }
    // Writes the preference "Skin" and a file of the skin's resources folder.
    void SetSkin(const std::string& name) const {
        std::filesystem::create_directories(root + "/config/Brelmont");
        std::ofstream(root + "/config/Brelmont/com.brelmont.Corvane2.conf") << "Skin=" << name << "\n";
    }
    void WriteSkinFile(const std::string& folder, const std::string& file, const std::string& text) const {
        const std::string dir = root + "/data/Brelmont/Corvane/Skins/" + folder + "/Contents/Resources";
        std::filesystem::create_directories(dir);
        std::ofstream(dir + "/" + file) << text;
    }
    std::string root;
};

struct LuaPanelRig {
    explicit LuaPanelRig(const std::string& stem) : LuaPanelRig(MakeDriver(stem)) {}
    // Around a module made by the test, such as a stand-in with a given table.
    explicit LuaPanelRig(std::unique_ptr<HostDriver> driver_)
        : driver(std::move(driver_)), manager(&driver->Module()) {
        std::copy(gGroupActiveColour, gGroupActiveColour + 4, savedActive);
        std::copy(gGroupInactiveColour, gGroupInactiveColour + 4, savedInactive);
    }
    // The group colours are process-wide: put them back for the tests that follow in this process.
    ~LuaPanelRig() {
        std::copy(savedActive, savedActive + 4, gGroupActiveColour);
        std::copy(savedInactive, savedInactive + 4, gGroupInactiveColour);
    }
    // Builds the panel as an editor opening does.
    void Open() {
        gui = std::make_unique<PluginLuaGui>(&driver->Module());
        gui->OpenPanel(&manager);
        manager.Animate();
    }
    // Only the state and the button table, for running snippets against an empty panel.
    void InitOnly() {
        gui = std::make_unique<PluginLuaGui>(&driver->Module());
        gui->Init(&manager);
    }
    // Runs `code` in the panel's state; the error text, or "" when it ran.
    std::string Run(const std::string& code) {
        lua_State* L = gui->luaState;
        if (luaL_dostring(L, code.c_str()) == 0) return "";
        std::string text = lua_tostring(L, -1);
        lua_pop(L, 1);
        return text;
    }
    double Number(const std::string& expression) {
        lua_State* L = gui->luaState;
        luaL_dostring(L, ("return " + expression).c_str());
        const double value = lua_tonumber(L, -1);
        lua_pop(L, 1);
        return value;
    }
    // The named groups directly under the root, in order of creation.
    std::vector<NamedGroup*> Groups() const {
        std::vector<NamedGroup*> groups;
        for (UIElement* child : manager.rootGroup->children)
            if (auto* group = dynamic_cast<NamedGroup*>(child)) groups.push_back(group);
        return groups;
    }

    TempHome home;
    std::unique_ptr<HostDriver> driver;
    ZPmanager manager;
    std::unique_ptr<PluginLuaGui> gui;
    float savedActive[4], savedInactive[4];
};

}  // namespace BR::Test
