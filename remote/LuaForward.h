// How a Lua 5.1 call is forwarded to the library opened privately at first use (see LuaLibrary.cpp
// for why the plug-in links no Lua): the one handle, the look-up of a function, and the macro that
// defines a forwarding function. Included only by the files that define forwards.
#pragma once

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

// The sanitizer runtimes refuse RTLD_DEEPBIND; sanitized builds are not plug-ins. GCC says so with
// __SANITIZE_*__, clang through __has_feature.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define CORVANE_SANITIZED_BUILD 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define CORVANE_SANITIZED_BUILD 1
#endif
#endif

namespace BR {

// One handle for every forwarding file of a binary (an inline function's static is one object);
// dlopen would hand back the same library anyway. A missing library or function is fatal: no Lua
// call could be made without it, and a half-bound library would fail later in a worse place.
inline void* LuaLibraryHandle() {
    static void* handle = [] {
        int flags = RTLD_NOW | RTLD_LOCAL;
#if !defined(CORVANE_SANITIZED_BUILD)
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
F ResolveLuaFunction(const char* name) {
    void* symbol = dlsym(LuaLibraryHandle(), name);
    if (!symbol) {
        std::fprintf(stderr, "Lua 5.1 has no function %s\n", name);
        std::abort();
    }
    return reinterpret_cast<F>(symbol);
}

}  // namespace BR

#define CORVANE_LUA_FORWARD(ret, name, params, args)                             \
    extern "C" ret name params {                                                 \
        using Function = ret(*) params;                                          \
        static const Function forward = BR::ResolveLuaFunction<Function>(#name); \
        return forward args;                                                     \
    }
