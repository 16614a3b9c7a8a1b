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
