// The functions every script sees: parameters of this and other instances, MIDI callback requests,
// time and timers, indicator bits, OSC paths and sends.
#include <chrono>
#include <cstring>
#include <lua.hpp>

#include "LuaMIDIHelper.h"
#include "LuaNumbers.h"
#include "OSCHelper.h"
#include "framework/BrelCorvaneBase.h"
#include "framework/InstanceRegistry.h"

namespace BR {

namespace {

LuaMIDIHelper* Helper(lua_State* L) {
    lua_getfield(L, LUA_REGISTRYINDEX, "BR::LuaMIDIHelper::kRefcon");
    auto* helper = static_cast<LuaMIDIHelper*>(lua_touserdata(L, -1));
    lua_pop(L, 1);
    return helper;
}

int SetParameter(lua_State* L) {
    LuaMIDIHelper* helper = Helper(L);
    // No range error here, unlike its companions; an id outside the table changes nothing.
    const int32_t id = helper->ParameterArgument(L, 1, false);
    const float value = float(luaL_checknumber(L, 2));
    // A timer may fire while the host is still building the parameter objects (scripts run when the
    // instance is made): until they are all there, a set changes nothing and a get gives 0.
    if (id >= 0 && id < helper->NumParameters() && helper->Owner()->ParametersReady())
        helper->Owner()->SetTableValue(id, value);
    return 0;
}

int GetParameter(lua_State* L) {
    LuaMIDIHelper* helper = Helper(L);
    const int32_t id = helper->ParameterArgument(L, 1, true);
    lua_pushnumber(L, helper->Owner()->ParametersReady() ? helper->Owner()->GetTableValue(id) : 0.0f);
    return 1;
}

int GetParameterID(lua_State* L) {
    LuaMIDIHelper* helper = Helper(L);
    luaL_checkstring(L, 1);
    lua_pushnumber(L, helper->ParameterArgument(L, 1, true));
    return 1;
}

int GetParameterMinMax(lua_State* L) {
    LuaMIDIHelper* helper = Helper(L);
    const ParameterDefinition& row = helper->ParameterTable()[helper->ParameterArgument(L, 1, true)];
    lua_pushnumber(L, row.minimum);
    lua_pushnumber(L, row.maximum);
    return 2;
}

int GetParameterUnit(lua_State* L) {
    LuaMIDIHelper* helper = Helper(L);
    lua_pushnumber(L, helper->ParameterTable()[helper->ParameterArgument(L, 1, true)].unit);
    return 1;
}

int GetParameterName(lua_State* L) {
    LuaMIDIHelper* helper = Helper(L);
    const char* name = helper->ParameterTable()[helper->ParameterArgument(L, 1, true)].name;
    if (name && *name) {
        lua_pushstring(L, name);
    } else {
        lua_pushnil(L);
    }
    return 1;
}

int IsParameterUsed(lua_State* L) {
    LuaMIDIHelper* helper = Helper(L);
    lua_pushboolean(L, helper->IsParameterUsed(helper->ParameterArgument(L, 1, true)));
    return 1;
}

int GetNumParameters(lua_State* L) {
    lua_pushnumber(L, Helper(L)->NumParameters());
    return 1;
}

int SetOthersParameter(lua_State* L) {
    LuaMIDIHelper* helper = Helper(L);
    const int32_t other = SaturatedInt32(luaL_checknumber(L, 1));
    const int32_t id = helper->ParameterArgument(L, 2, true);
    const float value = float(luaL_checknumber(L, 3));
    InstanceRegistry::SetParameterByPort(other, id, value);
    return 0;
}

int GetOthersParameter(lua_State* L) {
    LuaMIDIHelper* helper = Helper(L);
    const int32_t other = SaturatedInt32(luaL_checknumber(L, 1));
    lua_pushnumber(L, InstanceRegistry::GetParameterByPort(other, helper->ParameterArgument(L, 2, true)));
    return 1;
}

int Reference(lua_State* L, int index) {
    lua_pushvalue(L, index);
    return luaL_ref(L, LUA_REGISTRYINDEX);
}

template <LuaMIDIHelper::CallbackList list>
int RequestAll(lua_State* L, const char* name) {
    if (!lua_isfunction(L, 1)) return luaL_error(L, "first argument to %s() is not a function", name);
    Helper(L)->AddCallback(list, Reference(L, 1));
    return 0;
}

template <LuaMIDIHelper::KeyedList list>
int RequestKeyed(lua_State* L, const char* name) {
    const int32_t key = int32_t(luaL_checkinteger(L, 1));
    if (!lua_isfunction(L, 2)) return luaL_error(L, "second argument to %s() is not a function", name);
    Helper(L)->AddKeyedCallback(list, key, Reference(L, 2));
    return 0;
}

int RequestAllNoteOn(lua_State* L) {
    return RequestAll<LuaMIDIHelper::kAllNoteOn>(L, "requestAllNoteOn");
}
int RequestAllNoteOff(lua_State* L) {
    return RequestAll<LuaMIDIHelper::kAllNoteOff>(L, "requestAllNoteOff");
}
int RequestAllCC(lua_State* L) {
    return RequestAll<LuaMIDIHelper::kAllCC>(L, "requestAllCC");
}
int RequestAllNRPN(lua_State* L) {
    return RequestAll<LuaMIDIHelper::kAllNRPN>(L, "requestAllNRPN");
}
int RequestAllProgramChange(lua_State* L) {
    return RequestAll<LuaMIDIHelper::kAllProgramChange>(L, "requestAllProgramChange");
}
int RequestAllPolyPressure(lua_State* L) {
    return RequestAll<LuaMIDIHelper::kAllPolyPressure>(L, "requestAllPolyPressure");
}
int RequestPitchWheel(lua_State* L) {
    return RequestAll<LuaMIDIHelper::kPitchWheel>(L, "requestPitchWheel");
}
int RequestChannelPressure(lua_State* L) {
    return RequestAll<LuaMIDIHelper::kChannelPressure>(L, "requestChannelPressure");
}
int RequestNoteOn(lua_State* L) {
    return RequestKeyed<LuaMIDIHelper::kNoteOnKey>(L, "requestNoteOn");
}
int RequestNoteOff(lua_State* L) {
    return RequestKeyed<LuaMIDIHelper::kNoteOffKey>(L, "requestNoteOff");
}
int RequestCC(lua_State* L) {
    return RequestKeyed<LuaMIDIHelper::kCCKey>(L, "requestCC");
}
int RequestNRPN(lua_State* L) {
    return RequestKeyed<LuaMIDIHelper::kNRPNKey>(L, "requestNRPN");
}
int RequestProgramChange(lua_State* L) {
    return RequestKeyed<LuaMIDIHelper::kProgramChangeKey>(L, "requestProgramChange");
}
int RequestPolyPressure(lua_State* L) {
    return RequestKeyed<LuaMIDIHelper::kPolyPressureKey>(L, "requestPolyPressure");
}

// Taken when the library is loaded, so that time() counts from the start of the process rather than
// from a script's first call.
const auto processStart = std::chrono::steady_clock::now();

int Time(lua_State* L) {
    const auto start = processStart;
    const double ms =
        std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    lua_pushnumber(L, ms * 1e9 * 0.001 * 1e-9);
    return 1;
}

int RequestTimer(lua_State* L, bool periodic) {
    const double seconds = luaL_checknumber(L, 1);
    // Both timer functions name the same routine in their error.
    if (!lua_isfunction(L, 2))
        return luaL_error(L, "second argument to requestTimerCallback() is not a function");
    Helper(L)->CreateTimer(L, seconds, periodic, Reference(L, 2));
    return 1;
}
int RequestTimedCallback(lua_State* L) {
    return RequestTimer(L, false);
}
int RequestPeriodicCallback(lua_State* L) {
    return RequestTimer(L, true);
}

int CancelTimer(lua_State* L) {
    void* data = lua_touserdata(L, 1);
    bool isTimer = false;
    if (data && lua_getmetatable(L, 1)) {
        luaL_getmetatable(L, "BR::LuaMIDIHelper::Timer");
        isTimer = lua_rawequal(L, -1, -2);
        lua_pop(L, 2);
    }
    if (!isTimer) return luaL_argerror(L, 1, "first argument to cancelTimer() is not a timer");
    Helper(L)->CancelTimer(*static_cast<LuaTimer**>(data));
    return 0;
}

int32_t IndicatorId(lua_State* L, int index) {
    const int32_t id = SaturatedInt32(luaL_checknumber(L, index));
    if (id < 0 || id > 7) luaL_error(L, "indicator id out of range: %d", id);
    return id;
}

int SetGUIBoolValue(lua_State* L) {
    const int32_t id = IndicatorId(L, 1);
    Helper(L)->SetGUIBoolValue(id, lua_toboolean(L, 2) != 0);
    return 0;
}
int GetGUIBoolValue(lua_State* L) {
    const int32_t id = IndicatorId(L, 1);
    lua_pushboolean(L, Helper(L)->GetGUIBoolValue(id));
    return 1;
}
int SetOthersGUIBoolValue(lua_State* L) {
    const int32_t other = SaturatedInt32(luaL_checknumber(L, 1));
    const int32_t id = IndicatorId(L, 2);
    InstanceRegistry::SetIndicatorByPort(other, id, lua_toboolean(L, 3) != 0);
    return 0;
}
int GetOthersGUIBoolValue(lua_State* L) {
    const int32_t other = SaturatedInt32(luaL_checknumber(L, 1));
    const int32_t id = IndicatorId(L, 2);
    lua_pushboolean(L, InstanceRegistry::GetIndicatorByPort(other, id));
    return 1;
}

int RegisterPath(lua_State* L) {
    OSCHelper* osc = Helper(L)->GetOSCHelper();
    return osc ? osc->RegisterOSCPathForParameter(L, false) : 0;
}
int RegisterPathNormalized(lua_State* L) {
    OSCHelper* osc = Helper(L)->GetOSCHelper();
    return osc ? osc->RegisterOSCPathForParameter(L, true) : 0;
}
int RegisterFunctionPath(lua_State* L) {
    OSCHelper* osc = Helper(L)->GetOSCHelper();
    return osc ? osc->RegisterOSCPathForFunction(L) : 0;
}
int SendOSC(lua_State* L) {
    luaL_checkstring(L, 1);
    luaL_checkstring(L, 2);
    return OSCHelper::SendOSC(L);
}

const luaL_Reg kFunctions[] = {
    {"setParameter", SetParameter},
    {"getParameter", GetParameter},
    {"getParameterID", GetParameterID},
    {"getParameterMinMax", GetParameterMinMax},
    {"getParameterUnit", GetParameterUnit},
    {"getParameterName", GetParameterName},
    {"isParameterUsed", IsParameterUsed},
    {"getNumParameters", GetNumParameters},
    {"sendOSC", SendOSC},
    {"setOthersParameter", SetOthersParameter},
    {"getOthersParameter", GetOthersParameter},
    {"requestAllNoteOn", RequestAllNoteOn},
    {"requestAllNoteOff", RequestAllNoteOff},
    {"requestAllCC", RequestAllCC},
    {"requestAllNRPN", RequestAllNRPN},
    {"requestAllProgramChange", RequestAllProgramChange},
    {"requestAllPolyPressure", RequestAllPolyPressure},
    {"requestNoteOn", RequestNoteOn},
    {"requestNoteOff", RequestNoteOff},
    {"requestCC", RequestCC},
    {"requestNRPN", RequestNRPN},
    {"requestPitchWheel", RequestPitchWheel},
    {"requestChannelPressure", RequestChannelPressure},
    {"requestProgramChange", RequestProgramChange},
    {"requestPolyPressure", RequestPolyPressure},
    {"time", Time},
    {"requestTimedCallback", RequestTimedCallback},
    {"requestPeriodicCallback", RequestPeriodicCallback},
    {"cancelTimer", CancelTimer},
    {"setGUIBoolValue", SetGUIBoolValue},
    {"getGUIBoolValue", GetGUIBoolValue},
    {"setOthersGUIBoolValue", SetOthersGUIBoolValue},
    {"getOthersGUIBoolValue", GetOthersGUIBoolValue},
    {"registerOSCPathForParameter", RegisterPath},
    {"registerOSCPathForParameterNormalized", RegisterPathNormalized},
    {"registerOSCPathForFunction", RegisterFunctionPath},
};

}  // namespace

void RegisterLuaAPI(lua_State* L) {
    for (const luaL_Reg& function : kFunctions)
        lua_register(L, function.name, function.func);
}

}  // namespace BR
