// Scripts of the per-user folder run in name order after the scale list; a user "midi.lua"
// replaces the default list; a failing file is logged with "@@@ failed to run file: " and the
// next one still runs; print writes to standard error; extra scripts run last.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "RemoteRig.h"
#include "ScaleModule.h"
#include "framework/PreferenceStore.h"
#include "tests/support/RunCommand.h"
#include "tests/support/ScopedEnvironment.h"

using namespace BR::Test;

namespace {
void Write(const std::string& path, const std::string& text) {
    std::ofstream(path) << text;
}
}  // namespace

TEST(LuaScripts, FolderScriptsRunInNameOrderAndAFailureDoesNotStopTheNext) {
    ScopedEnvironment environment;
    const std::string data = MakeTempFolder();
    environment.Set("XDG_DATA_HOME", data.c_str());
    const std::string folder = BR::ScriptsFolder("Corvane Scale Probe");
    ASSERT_TRUE(BR::CreateFolders(folder));
    Write(folder + "b.lua", "order = order .. 'b'\nlocal x = nil + 1\n");
    Write(folder + "a.lua", "order = (order or '') .. 'a'\nprint('hello', 1, nil)\n");
    Write(folder + "c.lua", "order = order .. 'c'\n");
    Write(folder + "notes.txt", "order = 'broken'\n");
    const std::string extra = data + "/extra.lua";
    Write(extra, "order = order .. 'x'\n");
    BR::InstallRemoteServices();
    BR::SetScriptsForNextModules({extra});
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    ScaleModule module;
    BR::SetScriptsForNextModules({});
    const std::string out = testing::internal::GetCapturedStdout();
    const std::string err = testing::internal::GetCapturedStderr();
    EXPECT_EQ(out, "@@@ failed to run file: b.lua:2: attempt to perform arithmetic on a nil value\n");
    EXPECT_EQ(err, "hello\t1\tnil\n");
    EXPECT_EQ(module.scales.size(), 12u);  // no user midi.lua: the default list ran
    lua_State* L = BR::LuaHelperOf(module)->GetLuaState();
    lua_getglobal(L, "order");
    EXPECT_STREQ(lua_tostring(L, -1), "abcx");
    lua_pop(L, 1);
    std::filesystem::remove_all(data);
}

TEST(LuaScripts, UserMidiLuaReplacesTheDefaultList) {
    ScopedEnvironment environment;
    const std::string data = MakeTempFolder();
    environment.Set("XDG_DATA_HOME", data.c_str());
    const std::string folder = BR::ScriptsFolder("Corvane Scale Probe");
    ASSERT_TRUE(BR::CreateFolders(folder));
    Write(folder + "midi.lua", "addScale('Only', { 1, 8 })\n");
    BR::InstallRemoteServices();
    ScaleModule module;
    const std::vector<std::pair<std::string, uint32_t>> expected = {{"Only", 0x81}};
    EXPECT_EQ(module.scales, expected);
    std::filesystem::remove_all(data);
}

TEST(LuaScripts, BrokenDefaultCannotHappenButPrintRejectsNonStrings) {
    ScopedEnvironment environment;
    const std::string data = MakeTempFolder();
    environment.Set("XDG_DATA_HOME", data.c_str());
    BR::InstallRemoteServices();
    ScaleModule module;
    lua_State* L = BR::LuaHelperOf(module)->GetLuaState();
    ASSERT_NE(luaL_dostring(L, "tostring = function() return {} end print(1)"), 0);
    EXPECT_NE(std::string(lua_tostring(L, -1)).find("'tostring' must return a string to 'print'"),
              std::string::npos);
    lua_pop(L, 1);
    std::filesystem::remove_all(data);
}
