// Where the OSC server meets Lua: registered parameter and function paths, /exec and /call with
// their argument conversions, and the sendOSC function of scripts.
#include <oscpack/osc/OscOutboundPacketStream.h>

#include <cstring>
#include <lua.hpp>
#include <mutex>
#include <string>

#include "LuaMIDIHelper.h"
#include "LuaNumbers.h"
#include "OSCHelper.h"
#include "framework/BrelCorvaneBase.h"

namespace BR {

namespace {

constexpr int kCallResults = 16;

// Pushes every argument from `arg` on; restores the stack and throws on a type Lua has no value for.
int PushArguments(lua_State* L, osc::ReceivedMessage::const_iterator arg,
                  osc::ReceivedMessage::const_iterator end) {
    const int top = lua_gettop(L);
    int count = 0;
    for (; arg != end; ++arg, ++count) {
        // Lua guarantees a caller only a few free stack slots; a packet can carry thousands of
        // arguments, and pushing past the stack's end would write over the state's memory.
        if (!lua_checkstack(L, 1)) {
            lua_settop(L, top - 1);
            throw osc::Exception("too many arguments to exec");
        }
        switch (arg->TypeTag()) {
            case osc::TRUE_TYPE_TAG:
                lua_pushboolean(L, 1);
                break;
            case osc::FALSE_TYPE_TAG:
                lua_pushboolean(L, 0);
                break;
            case osc::FLOAT_TYPE_TAG:
                lua_pushnumber(L, arg->AsFloatUnchecked());
                break;
            case osc::DOUBLE_TYPE_TAG:
                lua_pushnumber(L, arg->AsDoubleUnchecked());
                break;
            case osc::INT32_TYPE_TAG:
                lua_pushnumber(L, arg->AsInt32Unchecked());
                break;
            case osc::INT64_TYPE_TAG:
                lua_pushnumber(L, lua_Number(arg->AsInt64Unchecked()));
                break;
            case osc::STRING_TYPE_TAG: {
                const char* s = arg->AsStringUnchecked();
                if (s) {
                    lua_pushstring(L, s);
                } else {
                    lua_pushnil(L);
                }
                break;
            }
            case osc::NIL_TYPE_TAG:
                lua_pushnil(L);
                break;
            default:
                lua_settop(L, top - 1);  // the function below the arguments goes too
                throw osc::Exception("unhandled argument type to exec");
        }
    }
    return count;
}

}  // namespace

int OSCHelper::RegisterOSCPathForParameter(lua_State* L, bool normalised) {
    const std::string address = luaL_checkstring(L, 1);
    std::vector<int32_t> ids;
    if (lua_istable(L, 2)) {
        const int count = int(lua_objlen(L, 2));
        for (int i = 1; i <= count; ++i) {
            lua_rawgeti(L, 2, i);
            ids.push_back(luaHelper->ParameterArgument(L, lua_gettop(L), true));
            lua_pop(L, 1);
        }
    } else {
        ids.push_back(luaHelper->ParameterArgument(L, 2, true));
    }
    std::lock_guard<std::mutex> guard(pathLock);
    auto existing = parameterPaths.find(address);
    if (existing != parameterPaths.end() && existing->second.size() != ids.size()) {
        LuaMIDIHelper::LogError("inconsistent sizes in RegisterOSCPathForParameter\n");
        return 0;
    }
    std::vector<OSCParameterTarget> targets;
    for (int32_t id : ids) {
        if (normalised) {
            const ParameterDefinition& row = parameterTable[id];
            targets.push_back({id, row.minimum, row.maximum - row.minimum});
        } else {
            targets.push_back({id, 0.0f, 1.0f});
        }
    }
    parameterPaths.emplace(address, std::move(targets));
    return 0;
}

int OSCHelper::RegisterOSCPathForFunction(lua_State* L) {
    const std::string address = luaL_checkstring(L, 1);
    if (!lua_isfunction(L, 2))
        return luaL_error(L, "second argument to registerOSCPathForFunction is not a function");
    if (!luaHelper) return 0;
    lua_pushvalue(L, 2);
    const int ref = luaL_ref(L, LUA_REGISTRYINDEX);
    std::lock_guard<std::mutex> guard(pathLock);
    functionPaths.emplace(address, ref);
    return 0;
}

int OSCHelper::SendOSC(lua_State* L) {
    const int n = lua_gettop(L);
    const IpEndpointName endpoint = ParseClientAddress(luaL_checkstring(L, 1));
    const char* path = luaL_checkstring(L, 2);
    const char* format = n == 4 ? luaL_checkstring(L, 3) : nullptr;
    const int table = n == 4 ? 4 : n == 3 ? 3 : 0;
    std::string failure;
    try {
        char buffer[kPacketBytes];
        osc::OutboundPacketStream stream(buffer, sizeof buffer);
        stream << osc::BeginBundleImmediate << osc::BeginMessage(path);
        if (table != 0) {
            luaL_checktype(L, table, LUA_TTABLE);
            const size_t count = lua_objlen(L, table);
            if (format && std::strlen(format) != count)
                throw osc::Exception("format string length mismatch in sendOSC");
            for (size_t i = 1; i <= count; ++i) {
                lua_rawgeti(L, table, int(i));
                if (lua_isnil(L, -1)) {
                    stream << osc::OscNil;
                } else if (lua_isnumber(L, -1)) {
                    // Only "i" in the format has an effect; every other character means a float.
                    if (format && format[i - 1] == 'i') {
                        stream << osc::int32(SaturatedInt32(lua_tonumber(L, -1)));
                    } else {
                        stream << float(lua_tonumber(L, -1));
                    }
                } else if (lua_isstring(L, -1)) {
                    stream << lua_tostring(L, -1);
                } else {
                    lua_pop(L, 1);
                    throw osc::Exception("unhandled argument type return from call");
                }
                lua_pop(L, 1);
            }
        }
        stream << osc::EndMessage << osc::EndBundle;
        SendPacket(endpoint, stream.Data(), stream.Size());
    } catch (const osc::Exception& e) {
        failure = e.what();
    }
    // A script sees the failure as a Lua error with the same text.
    if (!failure.empty()) return luaL_error(L, "%s", failure.c_str());
    return 0;
}

void OSCHelper::HandleFunctionPath(const std::string& address, const osc::ReceivedMessage& message) {
    if (!luaHelper) throw osc::Exception("no Lua support from OSC");
    lua_State* L = luaHelper->GetLuaState();
    std::vector<int> refs;
    {
        std::lock_guard<std::mutex> guard(pathLock);
        auto [first, last] = functionPaths.equal_range(address);
        for (auto it = first; it != last; ++it)
            refs.push_back(it->second);
    }
    for (int ref : refs) {
        // The lock covers the pushes too, so that no other thread's call can disturb the stack.
        std::lock_guard<std::recursive_mutex> guard(luaHelper->LuaLock());
        lua_rawgeti(L, LUA_REGISTRYINDEX, ref);
        const int count = PushArguments(L, message.ArgumentsBegin(), message.ArgumentsEnd());
        if (lua_pcall(L, count, 0, 0) != 0) {
            lua_pop(L, 1);
            throw osc::Exception("failed to pcall function");
        }
    }
}

void OSCHelper::HandleLuaCall(const osc::ReceivedMessage& message, bool withReply) {
    if (!luaHelper) throw osc::Exception("no Lua support from OSC");
    lua_State* L = luaHelper->GetLuaState();
    osc::ReceivedMessageArgumentStream args = message.ArgumentStream();
    const char* function = nullptr;
    const char* client = nullptr;
    const char* replyPath = nullptr;
    args >> function;
    auto arg = message.ArgumentsBegin();
    ++arg;
    if (withReply) {
        args >> client >> replyPath;
        ++arg;
        ++arg;
    }
    // Unlike the design, which leaves these two commands outside the Lua lock, the lock is held
    // from the first push to the last pop: a client colliding with a running script must not be
    // able to corrupt the state and bring the host down.
    std::lock_guard<std::recursive_mutex> guard(luaHelper->LuaLock());
    const int top = lua_gettop(L);
    // Room for the function (the arguments check their own) and for the results a reply takes.
    if (!lua_checkstack(L, kCallResults + 1)) throw osc::Exception("failed to exec function");
    lua_getglobal(L, function);
    int count = 0;
    try {
        count = PushArguments(L, arg, message.ArgumentsEnd());
    } catch (const osc::Exception&) {
        lua_settop(L, top);
        throw;
    }
    if (lua_pcall(L, count, withReply ? kCallResults : 0, 0) != 0) {
        lua_settop(L, top);
        throw osc::Exception("failed to exec function");
    }
    if (!withReply) return;
    std::string failure;
    try {
        char buffer[kPacketBytes];
        osc::OutboundPacketStream stream(buffer, sizeof buffer);
        stream << osc::BeginBundleImmediate << osc::BeginMessage(replyPath);
        for (int i = 1; i <= kCallResults; ++i) {
            const int index = top + i;
            if (lua_isnil(L, index)) break;
            if (lua_isnumber(L, index)) {
                stream << float(lua_tonumber(L, index));
            } else if (lua_type(L, index) == LUA_TSTRING) {
                stream << lua_tostring(L, index);
            } else {
                throw osc::Exception("unhandled argument type return from call");
            }
        }
        stream << osc::EndMessage << osc::EndBundle;
        lua_settop(L, top);
        SendPacket(ParseClientAddress(client), stream.Data(), stream.Size());
    } catch (const osc::Exception&) {
        lua_settop(L, top);
        throw;
    }
}

}  // namespace BR
