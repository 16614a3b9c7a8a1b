// The helper every module owns: MIDI reaches the module's hooks before the scripts, indicator bits
// live in the status block, and scripts add scales through addScale.
#include <lua.hpp>

#include "LuaMIDIHelper.h"
#include "LuaNumbers.h"
#include "framework/BrelCorvaneBase.h"

namespace BR {

namespace {

LuaMIDIHelper* Helper(lua_State* L) {
    lua_getfield(L, LUA_REGISTRYINDEX, "BR::LuaMIDIHelper::kRefcon");
    auto* helper = static_cast<LuaMIDIHelper*>(lua_touserdata(L, -1));
    lua_pop(L, 1);
    return helper;
}

// addScale(name, {degrees}): degree d (1 to 16) sets bit d - 1 of a 16-bit mask.
int AddScale(lua_State* L) {
    const char* name = luaL_checkstring(L, 1);
    luaL_checktype(L, 2, LUA_TTABLE);
    uint32_t mask = 0;
    const int count = int(lua_objlen(L, 2));
    for (int i = 1; i <= count; ++i) {
        lua_rawgeti(L, 2, i);
        const int32_t degree = SaturatedInt32(lua_tonumber(L, -1));
        lua_pop(L, 1);
        // The shift counts modulo 32, as the processor's does; the 16-bit cut drops the rest.
        mask |= uint32_t(1) << ((int64_t(degree) - 1) & 31);
    }
    Helper(L)->Owner()->AddScale(name, mask & 0xFFFF);
    return 0;
}

}  // namespace

void CorvLuaMIDIHelper::NoteOn(int32_t channel, int32_t note, int32_t velocity) {
    owner->HandleNoteOn(channel, note, velocity);
    LuaMIDIHelper::NoteOn(channel, note, velocity);
}

void CorvLuaMIDIHelper::NoteOff(int32_t channel, int32_t note, int32_t velocity) {
    owner->HandleNoteOff(channel, note, velocity);
    LuaMIDIHelper::NoteOff(channel, note, velocity);
}

void CorvLuaMIDIHelper::ControlChange(int32_t channel, int32_t controller, int32_t value) {
    owner->HandleControlChange(channel, controller, value);
    LuaMIDIHelper::ControlChange(channel, controller, value);
}

void CorvLuaMIDIHelper::PitchWheel(int32_t channel, int32_t lsb, int32_t msb) {
    owner->HandlePitchBend(channel, lsb, msb);
    LuaMIDIHelper::PitchWheel(channel, lsb, msb);
}

void CorvLuaMIDIHelper::SetGUIBoolValue(int32_t id, bool value) {
    if (id >= 0 && id < kNumGUIBoolValues) owner->GetStatusBlock()->GUIBoolValues[id] = value;
}

bool CorvLuaMIDIHelper::GetGUIBoolValue(int32_t id) {
    return id >= 0 && id < kNumGUIBoolValues && owner->GetStatusBlock()->GUIBoolValues[id];
}

void CorvLuaMIDIHelper::RegisterExtraFunctions() {
    lua_register(luaState, "addScale", AddScale);
}

}  // namespace BR
