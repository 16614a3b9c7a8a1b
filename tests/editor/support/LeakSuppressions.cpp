// The leak checker's suppressions for this test program: caches that the system's GL, X and font
// libraries keep for the life of the process, not leaks of the editor.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libGLX_mesa.so\n"
           "leak:swrast_dri.so\n"
           "leak:libLLVM\n"
           "leak:libX11.so\n"
           "leak:libfontconfig.so\n"
           "leak:libglapi.so\n"
           "leak:libdrm\n";
}

#include <dlfcn.h>

namespace {
// Keeps the GL driver loaded for the whole run, so that the leak checker can name its frames (a
// driver unloaded when its display closes leaves only unknown modules in the reports).
struct PinDriver {
    PinDriver() {
        dlopen("libGLX_mesa.so.0", RTLD_LAZY | RTLD_NODELETE);
        dlopen("/usr/lib/x86_64-linux-gnu/dri/swrast_dri.so", RTLD_LAZY | RTLD_NODELETE);
    }
} pinDriver;
}  // namespace
