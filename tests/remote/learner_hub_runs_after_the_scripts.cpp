// Every MIDI item a module dispatches goes to the script callbacks and then to the learn table: a
// controller that a script and a learned mapping both turn into a value of one parameter leaves the
// mapping's value; the script sees channel pressure and the table applies it too.
#include <gtest/gtest.h>

#include "RemoteRig.h"
#include "framework/ActiveParameter.h"
#include "modules/events/Learner.h"

using namespace BR::Test;

TEST(LearnHub, TableActsAfterTheScripts) {
    // The Learner installs the table's hook for the whole process; the tests after this one find the
    // process as it was.
    const GlobalMIDIHookScope restore(BR::GetGlobalMIDIHook());
    BrelCorvaneLearner::RemoveAllMappings();
    auto dc = MakeRemoteDriver("dc", 7700);  // offset 0: no socket
    auto learner = MakeDriver("learner");
    ASSERT_EQ(
        RunLua(
            *dc,
            "log = ''\n"
            "requestAllCC(function(c, n, v) setParameter('Output Positive L', 0.25) log = log .. 'cc;' end)\n"
            "requestChannelPressure(function(c, v) log = log .. 'cp ' .. v .. ';' end)\n"),
        "");
    BR::SetActiveParameter(&dc->Module(), 0);
    BrelCorvaneLearner::SetLearnActive(true);
    RenderFrames(*dc, 64, 64, {}, {{0, {0xB0, 7, 127}}});
    BrelCorvaneLearner::SetLearnActive(false);
    EXPECT_EQ(BrelCorvaneLearner::NumMappings(), 1);
    EXPECT_FLOAT_EQ(dc->Module().GetTableValue(0), 1.0f);  // the script's 0.25 came first
    RenderFrames(*dc, 64, 64, {}, {{0, {0xB0, 7, 0}}});
    EXPECT_EQ(dc->Module().GetTableValue(0), 0.0f);

    BR::SetActiveParameter(&dc->Module(), 5);  // "Output Positive R"
    BrelCorvaneLearner::SetLearnActive(true);
    RenderFrames(*dc, 64, 64, {}, {{0, {0xD0, 127}}});
    BrelCorvaneLearner::SetLearnActive(false);
    EXPECT_FLOAT_EQ(dc->Module().GetTableValue(5), 1.0f);
    lua_State* L = BR::LuaHelperOf(dc->Module())->GetLuaState();
    {
        std::lock_guard<std::recursive_mutex> guard(BR::LuaHelperOf(dc->Module())->LuaLock());
        lua_getglobal(L, "log");
        EXPECT_STREQ(lua_tostring(L, -1), "cc;cc;cp 127;");
        lua_pop(L, 1);
    }

    // Without a mapping the script's value stays.
    BrelCorvaneLearner::RemoveAllMappings();
    RenderFrames(*dc, 64, 64, {}, {{0, {0xB0, 7, 127}}});
    EXPECT_EQ(dc->Module().GetTableValue(0), 0.25f);
    BR::SetActiveParameter(nullptr, -1);
}
