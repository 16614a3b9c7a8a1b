// The Lua 5.1 functions the editor calls beyond those the remote scripting forwards (remote/LuaLibrary.cpp),
// forwarded the same way for the plug-in: a host may export a Lua of its own (Ardour exports 5.3's), so
// corvane.so links no Lua and binds every call to the library it opens privately, its own symbols
// first. Only the plug-in carries this file; the command and the tests link the library itself. A
// function the remote scripting starts forwarding too must leave this list (the link says so).
#include <lua.hpp>

#include "remote/LuaForward.h"

CORVANE_LUA_FORWARD(const char*, luaL_optlstring, (lua_State * L, int n, const char* d, size_t* l),
                    (L, n, d, l))
CORVANE_LUA_FORWARD(lua_Number, luaL_optnumber, (lua_State * L, int n, lua_Number d), (L, n, d))
CORVANE_LUA_FORWARD(void, lua_createtable, (lua_State * L, int a, int r), (L, a, r))
CORVANE_LUA_FORWARD(void, lua_pushinteger, (lua_State * L, lua_Integer n), (L, n))
CORVANE_LUA_FORWARD(const char*, lua_typename, (lua_State * L, int t), (L, t))
