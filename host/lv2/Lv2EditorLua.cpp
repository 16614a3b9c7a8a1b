// The Lua 5.1 functions the editor calls beyond those the remote scripting forwards (remote/LuaLibrary.cpp),
// forwarded the same way for the plug-in: a host may export a Lua of its own (Ardour exports 5.3's), so
// corvane.so links no Lua and binds every call to the library it opens privately, its own symbols
// first. Only the plug-in carries this file; the command and the tests link the library itself. A
// function the remote scripting starts forwarding too must leave this list (the link says so).
#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <lua.hpp>

namespace {

void* Library() {
    // The same library and flags as the remote scripting's: dlopen hands back the one instance.
    static void* handle = [] {
        int flags = RTLD_NOW | RTLD_LOCAL;
#if !defined(__SANITIZE_ADDRESS__)
        flags |= RTLD_DEEPBIND;
#endif
        void* h = dlopen("liblua5.1-c++.so.0", flags);
        if (!h) {
            std::fprintf(stderr, "cannot load Lua 5.1 (liblua5.1-c++.so.0): %s\n", dlerror());
            std::abort();
        }
        return h;
    }();
    return handle;
}

template <class F>
F Resolve(const char* name) {
    void* symbol = dlsym(Library(), name);
    if (!symbol) {
        std::fprintf(stderr, "Lua 5.1 has no function %s\n", name);
        std::abort();
    }
    return reinterpret_cast<F>(symbol);
}

}  // namespace

#define CORVANE_EDITOR_LUA_FORWARD(ret, name, params, args)       \
    extern "C" ret name params {                                  \
        using Function = ret(*) params;                           \
        static const Function forward = Resolve<Function>(#name); \
        return forward args;                                      \
    }

CORVANE_EDITOR_LUA_FORWARD(const char*, luaL_optlstring, (lua_State * L, int n, const char* d, size_t* l),
                           (L, n, d, l))
CORVANE_EDITOR_LUA_FORWARD(lua_Number, luaL_optnumber, (lua_State * L, int n, lua_Number d), (L, n, d))
CORVANE_EDITOR_LUA_FORWARD(void, lua_createtable, (lua_State * L, int a, int r), (L, a, r))
CORVANE_EDITOR_LUA_FORWARD(void, lua_pushinteger, (lua_State * L, lua_Integer n), (L, n))
CORVANE_EDITOR_LUA_FORWARD(const char*, lua_typename, (lua_State * L, int t), (L, t))
