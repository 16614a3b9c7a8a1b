// The Lua 5.1 functions this code calls, each forwarding to the library loaded privately at first
// use. A plug-in host may embed a Lua of its own and export its lua_* symbols (Ardour exports Lua
// 5.3's); linked in the ordinary way, the plug-in's calls, and the library's calls to itself, would
// bind to the host's functions and break both. Defined here, inside a plug-in whose version script
// exports one symbol, the calls bind to these; the library is opened with its own symbols first.
#include <cstdarg>
#include <lua.hpp>

#include "LuaForward.h"

CORVANE_LUA_FORWARD(lua_State*, luaL_newstate, (void), ())
CORVANE_LUA_FORWARD(void, luaL_openlibs, (lua_State * L), (L))
CORVANE_LUA_FORWARD(void, lua_close, (lua_State * L), (L))
CORVANE_LUA_FORWARD(int, luaL_argerror, (lua_State * L, int n, const char* m), (L, n, m))
CORVANE_LUA_FORWARD(lua_Integer, luaL_checkinteger, (lua_State * L, int n), (L, n))
CORVANE_LUA_FORWARD(lua_Number, luaL_checknumber, (lua_State * L, int n), (L, n))
CORVANE_LUA_FORWARD(const char*, luaL_checklstring, (lua_State * L, int n, size_t* l), (L, n, l))
CORVANE_LUA_FORWARD(void, luaL_checktype, (lua_State * L, int n, int t), (L, n, t))
CORVANE_LUA_FORWARD(int, luaL_loadstring, (lua_State * L, const char* s), (L, s))
CORVANE_LUA_FORWARD(int, luaL_loadbuffer, (lua_State * L, const char* b, size_t s, const char* n),
                    (L, b, s, n))
CORVANE_LUA_FORWARD(int, luaL_newmetatable, (lua_State * L, const char* n), (L, n))
CORVANE_LUA_FORWARD(int, luaL_ref, (lua_State * L, int t), (L, t))
CORVANE_LUA_FORWARD(void, luaL_where, (lua_State * L, int l), (L, l))
CORVANE_LUA_FORWARD(void, lua_call, (lua_State * L, int a, int r), (L, a, r))
CORVANE_LUA_FORWARD(int, lua_pcall, (lua_State * L, int a, int r, int e), (L, a, r, e))
CORVANE_LUA_FORWARD(void, lua_getfield, (lua_State * L, int i, const char* k), (L, i, k))
CORVANE_LUA_FORWARD(void, lua_setfield, (lua_State * L, int i, const char* k), (L, i, k))
CORVANE_LUA_FORWARD(int, lua_getmetatable, (lua_State * L, int i), (L, i))
CORVANE_LUA_FORWARD(int, lua_setmetatable, (lua_State * L, int i), (L, i))
CORVANE_LUA_FORWARD(int, lua_checkstack, (lua_State * L, int n), (L, n))
CORVANE_LUA_FORWARD(int, lua_gettop, (lua_State * L), (L))
CORVANE_LUA_FORWARD(void, lua_settop, (lua_State * L, int i), (L, i))
CORVANE_LUA_FORWARD(int, lua_type, (lua_State * L, int i), (L, i))
CORVANE_LUA_FORWARD(int, lua_isnumber, (lua_State * L, int i), (L, i))
CORVANE_LUA_FORWARD(int, lua_isstring, (lua_State * L, int i), (L, i))
CORVANE_LUA_FORWARD(int, lua_rawequal, (lua_State * L, int a, int b), (L, a, b))
CORVANE_LUA_FORWARD(void*, lua_newuserdata, (lua_State * L, size_t s), (L, s))
CORVANE_LUA_FORWARD(size_t, lua_objlen, (lua_State * L, int i), (L, i))
CORVANE_LUA_FORWARD(void, lua_pushboolean, (lua_State * L, int b), (L, b))
CORVANE_LUA_FORWARD(void, lua_pushlightuserdata, (lua_State * L, void* p), (L, p))
CORVANE_LUA_FORWARD(void, lua_pushnil, (lua_State * L), (L))
CORVANE_LUA_FORWARD(void, lua_pushnumber, (lua_State * L, lua_Number n), (L, n))
CORVANE_LUA_FORWARD(void, lua_pushstring, (lua_State * L, const char* s), (L, s))
CORVANE_LUA_FORWARD(void, lua_pushvalue, (lua_State * L, int i), (L, i))
CORVANE_LUA_FORWARD(void, lua_pushcclosure, (lua_State * L, lua_CFunction f, int n), (L, f, n))
CORVANE_LUA_FORWARD(const char*, lua_pushvfstring, (lua_State * L, const char* f, va_list a), (L, f, a))
CORVANE_LUA_FORWARD(void, lua_concat, (lua_State * L, int n), (L, n))
CORVANE_LUA_FORWARD(int, lua_error, (lua_State * L), (L))
CORVANE_LUA_FORWARD(void, lua_rawgeti, (lua_State * L, int i, int n), (L, i, n))
CORVANE_LUA_FORWARD(int, lua_toboolean, (lua_State * L, int i), (L, i))
CORVANE_LUA_FORWARD(lua_Number, lua_tonumber, (lua_State * L, int i), (L, i))
CORVANE_LUA_FORWARD(const char*, lua_tolstring, (lua_State * L, int i, size_t* l), (L, i, l))
CORVANE_LUA_FORWARD(void*, lua_touserdata, (lua_State * L, int i), (L, i))

// Variadic, so it cannot forward: the place, the formatted message, then the error, as the
// library's own does.
extern "C" int luaL_error(lua_State* L, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    luaL_where(L, 1);
    lua_pushvfstring(L, format, arguments);
    va_end(arguments);
    lua_concat(L, 2);
    return lua_error(L);
}
